#include "publish/orders/sales/sales_view.h"

#include <limits>

#include "publish/orders/values/order_texts.h"

namespace kv {
namespace {

/// What fits below a bar.
std::string briefLabel(const SalesRow& row, SalesBy by) {
  const auto day = isByTime(by) ? dayOf(row.key) : std::nullopt;
  if (!day) return row.label;
  constexpr std::size_t dayAndMonth = 5, monthName = 3, yearDigits = 2;
  if (by != SalesBy::Month) return orderDate(row.key, false).substr(0, dayAndMonth);
  return row.label.substr(0, monthName) + " " + row.label.substr(row.label.size() - yearDigits);
}

}  // namespace

AxisMarks axisMarks(Money highest, int most) {
  constexpr std::int64_t cent = 100;
  const std::int64_t wanted = highest.tenThousandths();
  if (wanted <= 0 || most <= 0) return {};
  const auto marksBy = [&](std::int64_t step) { return wanted / step + (wanted % step == 0 ? 0 : 1); };
  constexpr std::int64_t ten = 10;
  for (std::int64_t power = cent; power < std::numeric_limits<std::int64_t>::max() / ten; power *= ten) {
    for (const std::int64_t step : {power, 2 * power, 5 * power}) {
      if (marksBy(step) <= most) return {Money::ofTenThousandths(step), static_cast<int>(marksBy(step))};
    }
  }
  return {highest, 1};
}

Result<> SalesView::update(std::span<const DeskOrder> orders) {
  sales.clear();
  const auto departmentOf = [this](std::int64_t article) {
    const auto found = departments.find(article);
    return found == departments.end() ? std::string() : found->second;
  };
  auto sums = salesOf(orders, {by, span.from, span.to, departmentOf});
  if (!sums) return fail(sums.error());
  sales = std::move(*sums);
  if (currency >= sales.size()) currency = 0;
  return {};
}

std::span<const SalesRow> SalesView::rows() const {
  return sales.empty() ? std::span<const SalesRow>() : std::span<const SalesRow>(sales[currency].rows);
}

std::vector<SalesBar> SalesView::bars() const {
  if (sales.empty()) return {};
  const CurrencySales& shown = sales[currency];
  std::vector<SalesBar> bars;
  for (const SalesRow& row : isByTime(by) ? shown.rows : topRows(shown.rows, top)) {
    bars.push_back({row.label, briefLabel(row, by), row.amount, amountText(row.amount, shown.currency)});
  }
  return bars;
}

std::string SalesView::summary() const {
  if (sales.empty()) return "Nessuna vendita in questo periodo.";
  const CurrencySales& shown = sales[currency];
  std::string text = shown.orders == 1 ? "Un ordine" : std::to_string(shown.orders) + " ordini";
  text += ", totale " + amountText(shown.total, shown.currency) + ".";
  return isByTime(by) ? text + " Gli importi sono i totali degli ordini."
                      : text + " Gli importi sono quelli delle righe, senza sconti, IVA aggiunta e spese.";
}

}  // namespace kv
