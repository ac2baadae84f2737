#pragma once
// A line for a number in a dialog: its keys type the characters of a number alone, what is pasted is read in either
// notation, and it shows its whole text selected when it is entered.

#include <QLineEdit>
#include <QValidator>
#include <functional>

#include "platform/numbers/typed_number.h"

namespace kv {

class FieldMark;

/// Takes what can't be typed out of a text that keys type, and reads a text that comes whole, pasted or dropped, as a
/// number. Every text is acceptable then.
class NumberFilter final : public QValidator {
 public:
  NumberFilter(const NumberKeys& keys, QObject* parent) : QValidator(parent), keys_(keys) {}
  State validate(QString& text, int& position) const override;

  /// Says whether the next change comes from a key.
  void expectKey(bool key) { key_ = key; }
  /// The text of the line before its next change: what stays when a pasted text is no number.
  void hold(const QString& text) { held_ = text; }
  /// Called with what there is to say of a pasted text, in Italian.
  std::function<void(const QString&)> note;

 private:
  QString numberOf(const QString& text) const;

  NumberKeys keys_;
  QString held_;
  bool key_ = false;
};

/// The line. What is no number although its characters are is for whoever reads it on editingFinished.
class NumberLine final : public QLineEdit {
 public:
  explicit NumberLine(const NumberKeys& keys, QWidget* parent = nullptr);
  /// Shows a number that was not typed here; the mark of another one is hidden.
  void load(const QString& number);
  /// The text could not be stored, and stays with a mark that says why; it is modified still, until a number is loaded.
  void keepUnsaved(const QString& reason);

 protected:
  /// Selects the whole text, whatever way the focus has come.
  void focusInEvent(QFocusEvent* event) override;
  /// The point of the keypad types the decimal separator.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void mark(const QString& note);
  void edited();

  NumberKeys keys_;
  NumberFilter* filter_;
  FieldMark* mark_ = nullptr;  ///< made when there is something to say
  bool noted_ = false;         ///< said of the text that is about to change
  bool unsaved_ = false;
};

}  // namespace kv
