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

/// Filters what is typed or pasted into a line; what is there already stays.
class FieldFilter final : public QValidator {
  Q_OBJECT
 public:
  FieldFilter(FieldKind kind, char decimalSeparator, QLineEdit* line);
  /// Removes from `text` what the kind of the field does not allow, and keeps the cursor on the same character.
  State validate(QString& text, int& position) const override;
  /// The text as the program sets it, which isn't filtered.
  void hold(const QString& text) { held_ = text; }

 private:
  FieldKind kind_;
  char separator_;
  QString held_;  ///< let through whatever it holds
};

/// One line. While it is being typed into, a number is brought within its limits.
class FieldLine : public QLineEdit {
  Q_OBJECT
 public:
  FieldLine(FieldKind kind, char decimalSeparator, QWidget* parent = nullptr);
  /// Shows a text of the row, unfiltered, as the last good one.
  void load(const QString& text);

 signals:
  /// The user typed Escape: what was there before is to be shown again.
  void givenUp();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  /// Brings what was typed to the form that the kind allows.
  void applyChange(const QString& text);
  FieldFilter* filter_;
  FieldKind kind_;
  char separator_;
  QString lastGood_;  ///< the last text that was a number
};

/// Many lines. Tab leaves it.
class FieldMemo final : public QPlainTextEdit {
  Q_OBJECT
 public:
  explicit FieldMemo(QWidget* parent = nullptr);
  QSize sizeHint() const override;

 signals:
  void left();  ///< the focus has gone elsewhere

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
  /// Called before the list is opened, to fill it again; the text typed is kept.
  std::function<QStringList()> refill;
  /// Replaces the choices; the text stays.
  void fill(const QStringList& choices);
  void showPopup() override;

 protected:
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace kv
