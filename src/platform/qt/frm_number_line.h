#pragma once
// A line for a number in a dialog: it takes the characters of a number alone, and shows its whole text selected when
// it is entered.

#include <QLineEdit>
#include <QValidator>

#include "platform/numbers/typed_number.h"

namespace kv {

/// Takes what can't be typed out of a text, typed or pasted. Every text is acceptable then.
class NumberFilter final : public QValidator {
 public:
  NumberFilter(const NumberKeys& keys, QObject* parent) : QValidator(parent), keys_(keys) {}
  State validate(QString& text, int& position) const override;

 private:
  NumberKeys keys_;
};

/// The line. What is no number although its characters are is for whoever reads it on editingFinished.
class NumberLine final : public QLineEdit {
 public:
  explicit NumberLine(const NumberKeys& keys, QWidget* parent = nullptr);

 protected:
  /// Selects the whole text, whatever way the focus has come.
  void focusInEvent(QFocusEvent* event) override;
};

}  // namespace kv
