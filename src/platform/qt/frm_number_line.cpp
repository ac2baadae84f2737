#include "platform/qt/frm_number_line.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QTimer>

#include "platform/numbers/number_reading.h"
#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_field_mark.h"
#include "platform/text/text.h"

namespace kv {

/// The number that a text pasted into the line makes; the text before it when it makes none.
QString NumberFilter::numberOf(const QString& text) const {
  const std::string whole = fromQt(text);
  if (trim(whole).empty()) return {};
  NumberKeys plain = keys_;
  plain.spaces = false;
  const bool asTyped = typedNumber(whole, plain) == whole && text.count(QLatin1Char(keys_.decimalSeparator)) <= 1;
  if (asTyped) return text;
  const NumberReading reading =
      keys_.negative ? readSignedNumber(whole, keys_.decimalSeparator) : readNumber(whole, keys_.decimalSeparator);
  if (!reading.note.empty() && note) note(toQt(reading.note));
  return reading.isNumber ? toQt(reading.text) : held_;
}

QValidator::State NumberFilter::validate(QString& text, int& position) const {
  if (text == held_) return Acceptable;
  const QString kept = key_ ? toQt(typedNumber(fromQt(text), keys_)) : numberOf(text);
  if (kept == text) return Acceptable;
  const QString before = key_ ? toQt(typedNumber(fromQt(text.left(position)), keys_)) : kept;
  text = kept;
  position = static_cast<int>(before.size());
  return Acceptable;
}

NumberLine::NumberLine(const NumberKeys& keys, QWidget* parent)
    : QLineEdit(parent), keys_(keys), filter_(new NumberFilter(keys, this)) {
  setValidator(filter_);
  filter_->note = [this](const QString& note) { mark(note); };
  connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { filter_->hold(text); });
  connect(this, &QLineEdit::textEdited, this, &NumberLine::edited);
}

void NumberLine::load(const QString& number) {
  if (unsaved_) {
    mark_->clear();
    setModified(false);
    unsaved_ = false;
  }
  const QString shown = toQt(typedNumber(fromQt(number), keys_));
  if (shown == text()) return;
  if (mark_ != nullptr) mark_->clear();
  filter_->hold(shown);
  setText(shown);
}

void NumberLine::mark(const QString& note) {
  if (mark_ == nullptr) mark_ = new FieldMark(this);
  noted_ = true;
  mark_->show(note);
}

void NumberLine::keepUnsaved(const QString& reason) {
  mark(reason);
  noted_ = false;
  unsaved_ = true;
  setModified(true);
}

void NumberLine::edited() {
  if (mark_ != nullptr && !noted_) mark_->clear();
  noted_ = false;
}

void NumberLine::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  selectAll();
  // The click that brings the focus sets the cursor afterwards.
  if (event->reason() == Qt::MouseFocusReason) QTimer::singleShot(0, this, &QLineEdit::selectAll);
}

void NumberLine::keyPressEvent(QKeyEvent* event) {
  const bool isDecimalKey = event->modifiers().testFlag(Qt::KeypadModifier) &&
                            (event->key() == Qt::Key_Period || event->key() == Qt::Key_Comma);
  noted_ = false;
  filter_->expectKey(!event->matches(QKeySequence::Paste));
  if (isDecimalKey) {
    QKeyEvent separator(QEvent::KeyPress, event->key(), Qt::NoModifier, QString(QLatin1Char(keys_.decimalSeparator)));
    QLineEdit::keyPressEvent(&separator);
  } else {
    QLineEdit::keyPressEvent(event);
  }
  filter_->expectKey(false);
}

}  // namespace kv
