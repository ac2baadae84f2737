#include "publish/orders/sales/frm_bar_chart.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_plain_tip.h"
#include "publish/orders/values/order_texts.h"

namespace kv {
namespace {

constexpr double edge = 8;         // points around the whole
constexpr double barShare = 0.72;  // of the band of a bar
constexpr double widestBar = 64;   // points
constexpr double nameShare = 0.4;  // of the width, at most, for names beside lying bars
constexpr int lineAlpha = 64;      // of the lines at the marks, of 255
constexpr int mostMarks = 6;
constexpr int markRoomLines = 1;    // of text at the axis
constexpr int narrowestMarks = 12;  // characters from one mark to the next, side by side

/// The marks are whole amounts unless they are close to each other.
QString markText(Money amount, Money step) {
  constexpr std::int64_t unit = 10'000;
  const QString text = toQt(decimalText(amount));
  return step.tenThousandths() % unit == 0 ? text.section(QLatin1Char(','), 0, 0) : text;
}

double shareOf(Money amount, Money highest) {
  if (highest <= Money()) return 0;
  return std::clamp(amount.toDouble() / highest.toDouble(), 0.0, 1.0);
}

}  // namespace

BarChart::BarChart(QWidget* parent) : QWidget(parent) {
  setBackgroundRole(QPalette::Base), setAutoFillBackground(true);
}

void BarChart::showBars(std::vector<SalesBar> bars, bool isLying) {
  bars_ = std::move(bars);
  isLying_ = isLying;
  update();
}

QSize BarChart::minimumSizeHint() const { return {fontMetrics().averageCharWidth() * 40, fontMetrics().height() * 12}; }
QSize BarChart::sizeHint() const { return {fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 20}; }

BarChart::Room BarChart::room() const {
  Room room;
  Money highest;
  for (const SalesBar& bar : bars_) highest = std::max(highest, bar.amount);
  const QFontMetricsF metrics(font());
  const double line = metrics.height();
  double side = 0;
  if (isLying_) {
    for (const SalesBar& bar : bars_) side = std::max(side, metrics.horizontalAdvance(toQt(bar.label)));
    side = std::min(side, width() * nameShare);
    const double across = width() - side - 3 * edge;
    const int most = static_cast<int>(across / (metrics.averageCharWidth() * narrowestMarks));
    room.marks = axisMarks(highest, std::clamp(most, 1, mostMarks));
  } else {
    room.marks = axisMarks(highest, mostMarks);
  }
  room.highest = Money::ofTenThousandths(room.marks.step.tenThousandths() * room.marks.count);
  const double markWidth = metrics.horizontalAdvance(markText(room.highest, room.marks.step));
  if (!isLying_) side = markWidth;
  const double right = isLying_ ? edge + markWidth / 2 : edge;
  room.field = QRectF(rect()).adjusted(2 * edge + side, edge + line / 2, -right, -edge - line * (1 + markRoomLines));
  const double length = isLying_ ? room.field.height() : room.field.width();
  room.band = bars_.empty() ? 0 : length / static_cast<double>(bars_.size());
  return room;
}

QRectF BarChart::barAt(const Room& room, std::size_t index) const {
  const double thick = std::min(room.band * barShare, widestBar);
  const double middle = (static_cast<double>(index) + 0.5) * room.band;
  const double share = shareOf(bars_[index].amount, room.highest);
  if (isLying_) {
    return {room.field.left(), room.field.top() + middle - thick / 2, share * room.field.width(), thick};
  }
  const double height = share * room.field.height();
  return {room.field.left() + middle - thick / 2, room.field.bottom() - height, thick, height};
}

void BarChart::drawMarks(QPainter& painter, const Room& room) const {
  const QFontMetricsF metrics(font());
  QColor faint = palette().color(QPalette::Text);
  faint.setAlpha(lineAlpha);
  for (int i = 0; i <= room.marks.count; ++i) {
    const Money amount = Money::ofTenThousandths(room.marks.step.tenThousandths() * i);
    const double share = shareOf(amount, room.highest);
    const QString text = markText(amount, room.marks.step);
    painter.setPen(faint);
    const QRectF& field = room.field;
    const double x = field.left() + share * field.width(), y = field.bottom() - share * field.height();
    painter.drawLine(isLying_ ? QLineF(x, field.top(), x, field.bottom()) : QLineF(field.left(), y, field.right(), y));
    painter.setPen(palette().color(QPalette::Text));
    const double wide = metrics.horizontalAdvance(text) + 2;
    const QRectF beside(field.left() - edge - wide, y - metrics.height() / 2, wide, metrics.height());
    const QRectF below(x - wide / 2, field.bottom() + 2, wide, metrics.height());
    painter.drawText(isLying_ ? below : beside, Qt::AlignCenter, text);
  }
}

void BarChart::drawStanding(QPainter& painter, const Room& room) const {
  const QFontMetricsF metrics(font());
  double widest = 0;
  for (const SalesBar& bar : bars_) widest = std::max(widest, metrics.horizontalAdvance(toQt(bar.brief)));
  // Names that would touch each other are left out: every second, every third one.
  const auto every = static_cast<std::size_t>(std::max(1.0, std::ceil((widest + edge) / std::max(room.band, 0.1))));
  for (std::size_t i = 0; i < bars_.size(); i += every) {
    const QRectF bar = barAt(room, i);
    const QRectF below(bar.center().x() - widest / 2 - 1, room.field.bottom() + 4, widest + 2, metrics.height());
    painter.drawText(below, Qt::AlignCenter, toQt(bars_[i].brief));
  }
}

void BarChart::drawLying(QPainter& painter, const Room& room) const {
  const QFontMetricsF metrics(font());
  const double wide = room.field.left() - 2 * edge;
  for (std::size_t i = 0; i < bars_.size(); ++i) {
    const QRectF bar = barAt(room, i);
    const QRectF beside(edge, bar.center().y() - metrics.height() / 2, wide, metrics.height());
    painter.drawText(beside, Qt::AlignRight | Qt::AlignVCenter,
                     metrics.elidedText(toQt(bars_[i].label), Qt::ElideRight, wide));
  }
}

void BarChart::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  if (bars_.empty()) {
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("Nessuna vendita"));
    return;
  }
  const Room shown = room();
  drawMarks(painter, shown);
  for (std::size_t i = 0; i < bars_.size(); ++i) {
    painter.fillRect(barAt(shown, i), palette().color(QPalette::Active, QPalette::Highlight));
  }
  painter.setPen(palette().color(QPalette::Text));
  if (isLying_) {
    drawLying(painter, shown);
  } else {
    drawStanding(painter, shown);
  }
}

bool BarChart::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip || bars_.empty()) return QWidget::event(event);
  const auto* asked = static_cast<QHelpEvent*>(event);
  const Room shown = room();
  const double along = isLying_ ? asked->pos().y() - shown.field.top() : asked->pos().x() - shown.field.left();
  const double index = std::floor(along / std::max(shown.band, 0.1));
  if (index < 0 || index >= static_cast<double>(bars_.size())) {
    QToolTip::hideText();
  } else {
    const SalesBar& bar = bars_[static_cast<std::size_t>(index)];
    QToolTip::showText(asked->globalPos(), plainTip(toQt(bar.label + ": " + bar.amountText)), this);
  }
  return true;
}

}  // namespace kv
