#pragma once
// The fields in which the merchant types: one line, many lines, a list that can be typed into. Each lets through only
// what the rules of its kind allow, typed or pasted.

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QValidator>
#include <functional>

#include "shell/workbench/fields/field_rules.h"

namespace kv {

/// Filters what comes into a line; what stands there already is let be.
class FieldFilter final : public QValidator {
  Q_OBJECT
 public:
  FieldFilter(FieldKind kind, char decimalSeparator, QLineEdit* line);
  State validate(QString& text, int& position) const override;
  /// The text as the program sets it, which isn't filtered.
  void hold(const QString& text) { held_ = text; }

 private:
  FieldKind kind_;
  char separator_;
  QString held_;
};

class FieldLine : public QLineEdit {
  Q_OBJECT
 public:
  FieldLine(FieldKind kind, char decimalSeparator, QWidget* parent = nullptr);
  void load(const QString& text);

 signals:
  /// The user typed Escape: what stood there is to come back.
  void givenUp();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void applyChange(const QString& text);
  FieldFilter* filter_;
  FieldKind kind_;
  char separator_;
  QString lastGood_;
};

class FieldMemo final : public QPlainTextEdit {
  Q_OBJECT
 public:
  explicit FieldMemo(QWidget* parent = nullptr);
  QSize sizeHint() const override;

 signals:
  void left();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void insertFromMimeData(const QMimeData* source) override;
  void focusOutEvent(QFocusEvent* event) override;
};

/// A drop-down list; the wheel turns it only while it has the focus, so that scrolling a page changes nothing.
class FieldList final : public QComboBox {
  Q_OBJECT
 public:
  explicit FieldList(QWidget* parent = nullptr);
  /// Called before the list is opened, to fill it anew; the text typed is kept.
  std::function<QStringList()> refill;
  void fill(const QStringList& choices);
  void showPopup() override;

 protected:
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace kv
