#include "publish/orders/sales/order_sums.h"

#include <algorithm>
#include <map>
#include <set>

#include "platform/text/formula_sign.h"
#include "publish/orders/sales/sales_days.h"
#include "publish/orders/values/order_texts.h"

namespace kv {
namespace {

constexpr std::string_view withoutLines = "Ordini senza dettaglio";
constexpr std::string_view noDepartment = "Senza reparto";
constexpr std::size_t mostEmptyTimes = 40'000;  // days of a century: beyond it a date is wrong, and gaps stay out

/// The sums of one currency while they grow.
class CurrencySum {
 public:
  explicit CurrencySum(const SalesQuestion& question) : question_(question) {}

  Result<> count(const DeskOrder& order);
  /// The rows in their order.
  CurrencySales finished(std::string currency);

 private:
  Result<> addTo(SalesRow& row, Money amount, std::int64_t pieces) const;
  Result<> countTime(const DeskOrder& order);
  Result<> countLines(const DeskOrder& order);
  SalesRow& rowOf(const DeskOrder& order, const DeskOrderLine& line);
  SalesRow& named(const std::string& key, std::string label);
  void fillGaps();

  const SalesQuestion& question_;
  CurrencySales sums_;
  Money ofLines_;  // of all rows by department or article, so that any part of them can be added up
  std::map<std::string, SalesRow> rows_;
  std::map<std::string, std::int64_t> newest_;  // by key the order from which an article's title is
};

Result<> addAmount(Money& sum, Money amount) {
  const auto total = add(sum, amount);
  if (!total) return fail(ErrorKind::Malformed, "sales", "a sum is out of range");
  sum = *total;
  return {};
}

Result<> CurrencySum::addTo(SalesRow& row, Money amount, std::int64_t pieces) const {
  if (__builtin_add_overflow(row.pieces, pieces, &row.pieces)) {
    return fail(ErrorKind::Malformed, "sales", "a number of pieces is out of range");
  }
  return addAmount(row.amount, amount);
}

SalesRow& CurrencySum::named(const std::string& key, std::string label) {
  SalesRow& row = rows_[key];
  row.key = key;
  row.label = std::move(label);
  return row;
}

Result<> CurrencySum::count(const DeskOrder& order) {
  if (isByTime(question_.by) && !dayOf(order.created)) return {};
  ++sums_.orders;
  if (auto done = addAmount(sums_.total, order.total); !done) return done;
  return isByTime(question_.by) ? countTime(order) : countLines(order);
}

Result<> CurrencySum::countTime(const DeskOrder& order) {
  const auto start = startOfTime(*dayOf(order.created), question_.by);
  SalesRow& row = named(dayText(start), timeLabel(start, question_.by));
  ++row.orders;
  std::int64_t pieces = 0;
  for (const DeskOrderLine& line : order.lines) {
    if (__builtin_add_overflow(pieces, line.quantity, &pieces)) {
      return fail(ErrorKind::Malformed, "sales", "a number of pieces is out of range");
    }
  }
  return addTo(row, order.total, pieces);
}

SalesRow& CurrencySum::rowOf(const DeskOrder& order, const DeskOrderLine& line) {
  if (question_.by == SalesBy::Department) {
    const std::string title = question_.departmentOf ? question_.departmentOf(line.article) : std::string();
    return named(title, title.empty() ? std::string(noDepartment) : title);
  }
  const std::string key = line.article != 0 ? std::to_string(line.article) : "\t" + line.code + "\t" + line.shopTitle;
  const std::string label = line.code.empty()        ? line.shopTitle
                            : line.shopTitle.empty() ? line.code
                                                     : line.code + " " + line.shopTitle;
  const auto [newest, isFirst] = newest_.try_emplace(key, order.id);
  if (!isFirst && newest->second > order.id) return rows_[key];
  newest->second = order.id;
  return named(key, label);
}

Result<> CurrencySum::countLines(const DeskOrder& order) {
  if (order.lines.empty()) {
    SalesRow& row = named("\t", std::string(withoutLines));
    ++row.orders;
    if (auto done = addAmount(ofLines_, order.total); !done) return done;
    return addTo(row, order.total, 0);
  }
  std::set<std::string> counted;
  for (const DeskOrderLine& line : order.lines) {
    SalesRow& row = rowOf(order, line);
    if (counted.insert(row.key).second) ++row.orders;
    if (auto done = addAmount(ofLines_, lineTotal(line)); !done) return done;
    if (auto done = addTo(row, lineTotal(line), line.quantity); !done) return done;
  }
  return {};
}

void CurrencySum::fillGaps() {
  if (rows_.empty()) return;
  const auto last = *dayOf(rows_.rbegin()->first);
  auto start = *dayOf(rows_.begin()->first);
  for (std::size_t i = 0; start < last && i < mostEmptyTimes; ++i) {
    start = nextTime(start, question_.by);
    if (!rows_.contains(dayText(start))) named(dayText(start), timeLabel(start, question_.by));
  }
}

CurrencySales CurrencySum::finished(std::string currency) {
  if (isByTime(question_.by)) fillGaps();
  sums_.currency = std::move(currency);
  for (auto& [key, row] : rows_) sums_.rows.push_back(std::move(row));
  if (!isByTime(question_.by)) std::ranges::stable_sort(sums_.rows, std::ranges::greater(), &SalesRow::amount);
  return std::move(sums_);
}

}  // namespace

bool isSale(const DeskOrder& order) { return order.state != "annullato" && order.state != "rifiutato"; }

Result<std::vector<CurrencySales>> salesOf(std::span<const DeskOrder> orders, const SalesQuestion& question) {
  std::map<std::string, CurrencySum> sums;
  for (const DeskOrder& order : orders) {
    if (!isSale(order) || !isBetweenDays(order, question.from, question.to)) continue;
    auto counted = sums.try_emplace(order.currency, question).first->second.count(order);
    if (!counted) return fail(counted.error());
  }
  std::vector<CurrencySales> sales;
  sales.reserve(sums.size());
  for (auto& [currency, sum] : sums) sales.push_back(sum.finished(currency));
  std::ranges::stable_sort(sales, std::ranges::greater(), &CurrencySales::orders);
  return sales;
}

std::vector<SalesRow> topRows(const std::vector<SalesRow>& rows, std::size_t count) {
  if (rows.size() <= count + 1) return rows;
  const auto end = rows.begin() + static_cast<std::ptrdiff_t>(count);
  std::vector<SalesRow> top(rows.begin(), end);
  SalesRow others;
  others.label = "Altri (" + std::to_string(rows.size() - count) + ")";
  for (auto each = end; each != rows.end(); ++each) {
    // A part of what salesOf has added up already is within range.
    others.amount = add(others.amount, each->amount).value_or(others.amount);
    others.pieces += each->pieces;
    others.orders += each->orders;
  }
  top.push_back(std::move(others));
  return top;
}

std::string salesBlock(const std::vector<SalesRow>& rows, SalesBy by) {
  constexpr std::string_view headings[] = {"Giorno", "Settimana", "Mese", "Reparto", "Articolo"};
  std::string text = std::string(headings[static_cast<std::size_t>(by)]) + "\tImporto\tPezzi\tOrdini\n";
  for (const SalesRow& row : rows) {
    std::string label = row.label;
    std::ranges::replace_if(
        label, [](char c) { return c == '\t' || c == '\n' || c == '\r' || c == '"'; }, ' ');
    // A title such as "-5% Tazza" is no formula either.
    text += (hasFormulaSign(label) ? "'" : "") + label + "\t" + decimalText(row.amount, false) + "\t" +
            std::to_string(row.pieces) + "\t" + std::to_string(row.orders) + "\n";
  }
  return text;
}

}  // namespace kv
