#include "platform/qt/frm_number_line.h"

#include <QFocusEvent>
#include <QTimer>

#include "platform/qt/frm_dialog.h"

namespace kv {

QValidator::State NumberFilter::validate(QString& text, int& position) const {
  const QString kept = toQt(typedNumber(fromQt(text), keys_));
  if (kept == text) return Acceptable;
  const QString before = toQt(typedNumber(fromQt(text.left(position)), keys_));
  text = kept;
  position = static_cast<int>(before.size());
  return Acceptable;
}

NumberLine::NumberLine(const NumberKeys& keys, QWidget* parent) : QLineEdit(parent) {
  setValidator(new NumberFilter(keys, this));
}

void NumberLine::focusInEvent(QFocusEvent* event) {
  QLineEdit::focusInEvent(event);
  selectAll();
  // The click that brings the focus sets the cursor afterwards.
  if (event->reason() == Qt::MouseFocusReason) QTimer::singleShot(0, this, &QLineEdit::selectAll);
}

}  // namespace kv
