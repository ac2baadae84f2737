#pragma once
// What the window of sales shows: the sums of a period, and the bars of its chart. Knows no window.

#include <map>
#include <span>
#include <string>
#include <vector>

#include "publish/orders/sales/order_sums.h"
#include "publish/orders/sales/sales_days.h"

namespace kv {

/// One bar of a chart.
struct SalesBar {
  std::string label;  ///< in full
  std::string brief;  ///< below a bar: "31/05", "mag 26"; the label where there is nothing shorter
  Money amount;
  std::string amountText;
  friend bool operator==(const SalesBar&, const SalesBar&) = default;
};

/// Marks of the axis of a chart: at 0 and at each multiple of `step`, `count` of them above 0.
struct AxisMarks {
  Money step;
  int count = 0;
};
/// The fewest marks of 1, 2 or 5 by a power of ten, at least 1 cent apart, that reach `highest`, at most `most`; none
/// where there is nothing above 0.
AxisMarks axisMarks(Money highest, int most);

/// The state of the window.
struct SalesView {
  SalesBy by = SalesBy::Day;
  SalesSpan span;
  std::size_t top = 10;                             ///< bars by department and article; the others are one more
  std::size_t currency = 0;                         ///< index in `sales`
  std::map<std::int64_t, std::string> departments;  ///< titles by the IDs of articles
  std::vector<CurrencySales> sales;

  /// Sums up the orders of the span. Failures as salesOf; there are no sums then.
  Result<> update(std::span<const DeskOrder> orders);
  /// The rows of the chosen currency; none without a sale.
  std::span<const SalesRow> rows() const;
  /// The bars of the chart.
  std::vector<SalesBar> bars() const;
  /// "12 ordini, totale € 1.234,00", and what the amounts of the rows are.
  std::string summary() const;
};

}  // namespace kv
