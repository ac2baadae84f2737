#pragma once
// What the desktop's style draws too faintly for a dark palette: boxes and circles of choices, the tab in use, and
// where the keyboard is.

#include <QProxyStyle>

namespace kv {

/// The style of the desktop, with those marks drawn in markColour() and edgeColour() of the palette.
class WorkbenchStyle final : public QProxyStyle {
  Q_OBJECT
 public:
  using QProxyStyle::QProxyStyle;

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
};

/// Gives all windows of the program this style. Called once, before the first window is made.
void wearWorkbenchStyle();

}  // namespace kv
