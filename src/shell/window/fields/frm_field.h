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
/// A text set by the program passes unfiltered: a stored value that breaks the rules is shown as it is.
class FieldFilter final : public QValidator {
  Q_OBJECT
 public:
  /// `decimalSeparator`: "," or "." of the user's locale. The filter belongs to the line, and watches it.
  FieldFilter(FieldKind kind, char decimalSeparator, QLineEdit* line);
  /// Removes from `text` what the kind of the field does not allow, and keeps the cursor on the same character.
  /// Only what differs from the text before is filtered, so that a paste loses its forbidden characters and no more.
  /// Always Acceptable.
  State validate(QString& text, int& position) const override;
  /// The text as the program sets it, which isn't filtered.
  void hold(const QString& text) { held_ = text; }
  /// Whether what comes next is a single key; else it is pasted, dropped or undone.
  void expectKey(bool key) { key_ = key; }
  /// Called with what is to be said beside the field: a refused key, what was taken out of a pasted text, a number that
  /// was read in one of two ways.
  std::function<void(const QString&)> note;

 private:
  /// What is left of the characters that are new in a text.
  QString filtered(const QString& fresh) const;
  /// The text with a number pasted into it, in the field's own notation; the text before when it is none.
  QString numberOf(const QString& text) const;
  FieldKind kind_;  ///< whose rules apply
  char separator_;
  QString held_;  ///< let through whatever it holds
  bool key_ = false;
};

/// One line. While it is being typed into, a number is brought within its limits.
/// Enter and a loss of the focus are signalled as by any QLineEdit; the binding of the field saves then.
class FieldLine : public QLineEdit {
  Q_OBJECT
 public:
  /// `decimalSeparator`: as FieldFilter.
  FieldLine(FieldKind kind, char decimalSeparator, QWidget* parent = nullptr);
  /// Shows a text of the row, unfiltered, as the last good one.
  /// Called for the row that became current; the cursor goes to the start. No signal of typing is emitted.
  void load(const QString& text);

 signals:
  /// The user typed Escape: what was there before is to be shown again.
  void givenUp();
  /// Something is to be said beside the field about what was typed or pasted last.
  void noted(const QString& note);

 protected:
  /// Escape alone emits givenUp. The decimal key of the number pad types the decimal separator, whatever the layout of
  /// the keyboard prints on it. Every other key is that of a line.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  /// Brings what was typed to the form that the kind allows.
  void applyChange(const QString& text);
  FieldFilter* filter_;  ///< belongs to the line
  FieldKind kind_;
  char separator_;
  QString lastGood_;  ///< the last text that was a number
};

/// Gives a line a mark for what is to be said of its text, until it is typed into again.
/// For a cell of a table, whose text goes to no binding.
void markTyping(FieldLine* line);

/// Many lines. Tab leaves it.
/// The characters "|", "[" and "]" are swallowed when typed, and what is pasted or composed goes through the rules of
/// plain text. Pasted text loses its formats.
class FieldMemo final : public QPlainTextEdit {
  Q_OBJECT
 public:
  explicit FieldMemo(QWidget* parent = nullptr);
  /// Six lines of thirty average characters.
  QSize sizeHint() const override;

 signals:
  // Not emitted when only a menu of the field itself has opened.
  void left();  ///< the focus has gone elsewhere
  /// Something is to be said beside the field: which of the three characters were not taken.
  void noted(const QString& note);

 protected:
  /// Swallows the three characters.
  void keyPressEvent(QKeyEvent* event) override;
  /// Filters what an input method or a dead key composes.
  void inputMethodEvent(QInputMethodEvent* event) override;
  /// Filters what is pasted or dropped; only text is taken.
  void insertFromMimeData(const QMimeData* source) override;
  void focusOutEvent(QFocusEvent* event) override;
};

/// A drop-down list; the wheel turns it only while it has the focus, so that scrolling a page changes nothing.
/// It may be edited, with a FieldLine inside, or only chosen from; typed text is never added to the choices.
class FieldList final : public QComboBox {
  Q_OBJECT
 public:
  /// Starts empty; fill() or `refill` gives it its choices.
  explicit FieldList(QWidget* parent = nullptr);
  /// Called before the list is opened, to fill it again; the text typed is kept.
  /// Unset: the choices given by fill() stay.
  std::function<QStringList()> refill;
  /// Replaces the choices; the text stays.
  /// No signal is emitted. In a list that can't be typed into, a text that isn't offered leaves no choice selected.
  void fill(const QStringList& choices);
  /// Runs `refill` first, so that the list shows what is in use now.
  void showPopup() override;

 protected:
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace kv
