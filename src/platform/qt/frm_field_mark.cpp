#include "platform/qt/frm_field_mark.h"

#include <QAccessible>
#include <QEvent>
#include <QLineEdit>
#include <QStyle>

#include "platform/qt/frm_note.h"

namespace kv {
namespace {

constexpr int pictureSize = 16;
constexpr int pictureGap = 2;

}  // namespace

FieldMark::FieldMark(QWidget* field) : QObject(field), field_(field), picture_(new QLabel(field)) {
  picture_->setObjectName(QStringLiteral("imgAvviso"));
  const QIcon icon = field->style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, field);
  picture_->setPixmap(icon.pixmap(pictureSize, pictureSize));
  picture_->setFixedSize(pictureSize, pictureSize);
  picture_->setCursor(Qt::ArrowCursor);
  picture_->hide();
  field->installEventFilter(this);
}

void FieldMark::show(const QString& reason) {
  if (reason.isEmpty()) return clear();
  if (reason_.isEmpty()) {
    usualTip_ = field_->toolTip();
    usualDescription_ = field_->accessibleDescription();
  }
  reason_ = reason;
  field_->setToolTip(reason);
  field_->setAccessibleDescription(reason);
  picture_->setToolTip(reason);
  picture_->setAccessibleName(reason);
  if (auto* line = qobject_cast<QLineEdit*>(field_)) line->setTextMargins(0, 0, pictureSize + 2 * pictureGap, 0);
  moveToEnd();
  picture_->show();
  picture_->raise();
  if (field_->isVisible()) showNote(*field_, reason);
  QAccessibleEvent changed(field_, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&changed);
}

void FieldMark::clear() {
  if (reason_.isEmpty()) return;
  if (noteOf(*field_->window()) == reason_) showNote(*field_, {});
  reason_.clear();
  field_->setToolTip(usualTip_);
  field_->setAccessibleDescription(usualDescription_);
  if (auto* line = qobject_cast<QLineEdit*>(field_)) line->setTextMargins(0, 0, 0, 0);
  picture_->hide();
}

bool FieldMark::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) moveToEnd();
  return QObject::eventFilter(watched, event);
}

void FieldMark::moveToEnd() {
  picture_->move(field_->width() - pictureSize - 2 * pictureGap, (field_->height() - pictureSize) / 2);
}

}  // namespace kv
