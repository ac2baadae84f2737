#include "media/choice/frm_picture_frame.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>

#include "media/choice/picture_box.h"

namespace kv {
namespace {

constexpr int frameSide = mostLimit;
constexpr int dimming = 150;

/// The bitmap as the screen shows it, no larger than the frame. Its bottom row is the first in memory.
QPixmap pixmapOf(const PixelBuffer& pixels) {
  if (pixels.isEmpty()) return {};
  const QImage stored(pixels.data(), pixels.size().width, pixels.size().height,
                      static_cast<qsizetype>(pixels.rowBytes()), QImage::Format_BGR888);
  const QSize frame(frameSide, frameSide);
  const bool isLarger = stored.width() > frameSide || stored.height() > frameSide;
  const QImage seen = isLarger ? stored.scaled(frame, Qt::KeepAspectRatio, Qt::SmoothTransformation) : stored;
  return QPixmap::fromImage(seen.mirrored());
}

}  // namespace

PictureFrame::PictureFrame(QWidget* parent) : QLabel(parent) {
  setFrameShape(QFrame::StyledPanel);
  setAlignment(Qt::AlignCenter);
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  const int side = frameSide + 2 * frameWidth();
  setFixedSize(side, side);
}

void PictureFrame::showPicture(const PixelBuffer& pixels) {
  whole_ = {};
  setPixmap(pixmapOf(pixels));
  setAccessibleDescription({});
  unsetCursor();
}

void PictureFrame::showReason(const QString& why) {
  if (!why.isEmpty()) setText(why);
  setAccessibleDescription(why);
}

void PictureFrame::showPart(const PixelBuffer& whole, const PixelPart& part) {
  setPixmap(pixmapOf(whole));
  whole_ = whole.size();
  setCursor(Qt::CrossCursor);
  markPart(part);
}

void PictureFrame::markPart(const PixelPart& part) {
  part_ = part;
  update();
}

QRect PictureFrame::pictureRect() const {
  const QSize size = pixmap().size();
  const QRect room = contentsRect();
  return {room.x() + centredOffset(room.width(), size.width()), room.y() + centredOffset(room.height(), size.height()),
          size.width(), size.height()};
}

PixelPoint PictureFrame::pointAt(QPoint position) const {
  const QRect seen = pictureRect();
  return {(position.x() - seen.x()) * whole_.width / std::max(seen.width(), 1),
          (position.y() - seen.y()) * whole_.height / std::max(seen.height(), 1)};
}

void PictureFrame::paintEvent(QPaintEvent* event) {
  QLabel::paintEvent(event);
  if (whole_.width == 0) return;
  const QRect seen = pictureRect();
  const auto across = [&](int x) { return seen.x() + x * seen.width() / whole_.width; };
  const auto down = [&](int y) { return seen.y() + y * seen.height() / whole_.height; };
  const QRect kept(QPoint(across(part_.x), down(part_.y)),
                   QPoint(across(part_.x + part_.width) - 1, down(part_.y + part_.height) - 1));
  QPainter painter(this);
  QRegion off(seen);
  off -= kept;
  painter.setClipRegion(off);
  painter.fillRect(seen, QColor(0, 0, 0, dimming));
  painter.setClipping(false);
  painter.setPen(Qt::white);
  painter.drawRect(kept.adjusted(0, 0, -1, -1));
}

void PictureFrame::mousePressEvent(QMouseEvent* event) {
  if (whole_.width == 0 || event->button() != Qt::LeftButton) return QLabel::mousePressEvent(event);
  pressed_ = pointAt(event->position().toPoint());
}

void PictureFrame::mouseMoveEvent(QMouseEvent* event) {
  if (whole_.width == 0 || !event->buttons().testFlag(Qt::LeftButton)) return QLabel::mouseMoveEvent(event);
  if (drawn) drawn(pressed_, pointAt(event->position().toPoint()));
}

}  // namespace kv
