#include "shell/window/look/frm_style.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include "shell/window/look/frm_appearance.h"

namespace kv {
namespace {

constexpr qreal markWidth = 2;        // pixels of a line that is a mark
constexpr int tabMark = 3;            // pixels of the bar of the tab in use
constexpr qreal disabledFaint = 0.4;  // of the opacity

bool isOn(const QStyleOption& option, QStyle::StateFlag flag) { return (option.state & flag) != 0; }

void drawFocus(QPainter& painter, const QRect& area, const QPalette& palette) {
  painter.save();
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(markColour(palette), markWidth));
  painter.drawRect(QRectF(area).adjusted(1, 1, -1, -1));
  painter.restore();
}

/// The square or circle of a choice: its ground, its edge, and the mark inside.
class Indicator {
 public:
  Indicator(QPainter& painter, const QStyleOption& option) : painter_(painter), option_(option) {
    painter_.save();
    painter_.setRenderHint(QPainter::Antialiasing);
    if (!isOn(option, QStyle::State_Enabled)) painter_.setOpacity(disabledFaint);
    const qreal side = std::min(option.rect.width(), option.rect.height()) - 1;
    area_ = QRectF(0, 0, side, side);
    area_.moveCenter(QRectF(option.rect).center());
    const bool focused = isOn(option, QStyle::State_HasFocus);
    painter_.setPen(focused ? QPen(markColour(option.palette), markWidth) : QPen(edgeColour(option.palette), 1.3));
    painter_.setBrush(option.palette.color(QPalette::Base));
  }
  ~Indicator() { painter_.restore(); }
  Indicator(const Indicator&) = delete;
  Indicator& operator=(const Indicator&) = delete;

  void drawBox() {
    painter_.drawRoundedRect(area_.adjusted(1, 1, -1, -1), 2, 2);
    painter_.setPen(QPen(option_.palette.color(QPalette::Text), markWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (isOn(option_, QStyle::State_NoChange)) painter_.drawLine(at(0.28, 0.5), at(0.72, 0.5));
    if (!isOn(option_, QStyle::State_On)) return;
    painter_.drawPolyline(QPolygonF({at(0.24, 0.52), at(0.43, 0.72), at(0.78, 0.28)}));
  }
  void drawCircle() {
    painter_.drawEllipse(area_.adjusted(1, 1, -1, -1));
    if (!isOn(option_, QStyle::State_On)) return;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(option_.palette.color(QPalette::Text));
    painter_.drawEllipse(area_.center(), area_.width() / 4, area_.height() / 4);
  }

 private:
  QPointF at(qreal x, qreal y) const { return {area_.left() + x * area_.width(), area_.top() + y * area_.height()}; }

  QPainter& painter_;
  const QStyleOption& option_;
  QRectF area_;
};

}  // namespace

void WorkbenchStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                   const QWidget* widget) const {
  switch (element) {
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
      return Indicator(*painter, *option).drawBox();
    case PE_IndicatorRadioButton:
      return Indicator(*painter, *option).drawCircle();
    case PE_FrameFocusRect:
      return drawFocus(*painter, option->rect, option->palette);
    case PE_FrameLineEdit:
      QProxyStyle::drawPrimitive(element, option, painter, widget);
      if (isOn(*option, State_HasFocus)) drawFocus(*painter, option->rect, option->palette);
      return;
    case PE_FrameTabWidget:
      // The style's own page is the colour of a button, on which a dark palette's grey texts can't be read.
      painter->fillRect(option->rect, option->palette.mid());
      painter->fillRect(option->rect.adjusted(1, 1, -1, -1), option->palette.window());
      return;
    default:
      QProxyStyle::drawPrimitive(element, option, painter, widget);
  }
}

void WorkbenchStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
  QProxyStyle::drawControl(element, option, painter, widget);
  if (element == CE_TabBarTabShape && isOn(*option, State_Selected)) {
    const QRect tab = option->rect.adjusted(2, 0, -2, -1);
    painter->fillRect(QRect(tab.left(), tab.bottom() - tabMark + 1, tab.width(), tabMark), markColour(option->palette));
  }
  const auto* area = qobject_cast<const QAbstractScrollArea*>(widget);
  if (element == CE_ShapedFrame && area != nullptr && area->hasFocus()) {
    drawFocus(*painter, option->rect, option->palette);
  }
}

void WorkbenchStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                        const QWidget* widget) const {
  QProxyStyle::drawComplexControl(control, option, painter, widget);
  if (control == CC_ComboBox && isOn(*option, State_HasFocus)) drawFocus(*painter, option->rect, option->palette);
}

void wearWorkbenchStyle() { QApplication::setStyle(new WorkbenchStyle(QApplication::style()->name())); }

}  // namespace kv
