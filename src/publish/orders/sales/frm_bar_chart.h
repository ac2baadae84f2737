#pragma once
// Bars with their amounts, standing side by side for times and lying under each other for names, in the colours of the
// palette. The table beside a chart says the same to screen readers.

#include <QWidget>
#include <vector>

#include "publish/orders/sales/sales_view.h"

namespace kv {

/// The chart.
class BarChart final : public QWidget {
 public:
  /// Empty until bars are shown.
  explicit BarChart(QWidget* parent = nullptr);

  /// Shows bars; isLying: under each other, each with its name at its left.
  void showBars(std::vector<SalesBar> bars, bool isLying);
  QSize minimumSizeHint() const override;
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  /// The tip of a bar is its name and amount.
  bool event(QEvent* event) override;

 private:
  /// Where the bars and the marks are.
  struct Room {
    QRectF field;   // of the bars
    Money highest;  // at the end of the field
    AxisMarks marks;
    double band = 0;  // from one bar to the next
  };
  /// Where axes and bars are, by the size of the widget.
  Room room() const;
  /// The rectangle of a bar.
  QRectF barAt(const Room& room, std::size_t index) const;
  /// The amounts beside the axis, with their lines.
  void drawMarks(QPainter& painter, const Room& room) const;
  /// Bars from the bottom, for days, weeks and months.
  void drawStanding(QPainter& painter, const Room& room) const;
  /// Bars from the left, for names.
  void drawLying(QPainter& painter, const Room& room) const;

  std::vector<SalesBar> bars_;
  bool isLying_ = false;
};

}  // namespace kv
