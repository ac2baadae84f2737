#pragma once
// Sales of a span of orders, summed up by time, department or article. Cancelled and refused orders are no sales; each
// currency has sums of its own; amounts are exact.

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "platform/ports/result.h"
#include "publish/orders/values/desk_order.h"

namespace kv {

enum class SalesBy : std::uint8_t { Day, Week, Month, Department, Article };
/// Whether the rows follow each other in time.
inline bool isByTime(SalesBy by) { return by <= SalesBy::Month; }

/// What is summed up.
struct SalesQuestion {
  SalesBy by = SalesBy::Day;
  std::string from = {}, to = {};  ///< days as "yyyy-mm-dd", both included; empty: open on this side
  /// The title of an article's department by the article's ID; empty where there is none. Asked for Department alone.
  std::function<std::string(std::int64_t article)> departmentOf = {};
};

/// One sum.
struct SalesRow {
  std::string key;    ///< the first day as "yyyy-mm-dd", the department's title, the article's ID or code
  std::string label;  ///< as it is shown: "31/05/2026", "dal 25/05/2026 al 31/05/2026", "maggio 2026", a title
  Money amount;       ///< by time the totals of the orders, else those of the lines
  std::int64_t pieces = 0;
  std::int64_t orders = 0;  ///< in which there is something of this row
  friend bool operator==(const SalesRow&, const SalesRow&) = default;
};

/// The sums of one currency.
struct CurrencySales {
  std::string currency;
  Money total;  ///< of all orders
  std::int64_t orders = 0;
  /// By time in its order, with empty rows for times without a sale between the first and the last; else by amount,
  /// the highest first.
  std::vector<SalesRow> rows;
};

/// Whether an order counts: it is neither cancelled nor refused.
bool isSale(const DeskOrder& order);

/// The sums of each currency, that with the most orders first. Lines of articles that the server doesn't know are told
/// apart by code and title; an order that doesn't hold its lines is a row of its own kind. An order without a readable
/// day is no part of sums by time. Malformed when a sum is out of the range of Money.
Result<std::vector<CurrencySales>> salesOf(std::span<const DeskOrder> orders, const SalesQuestion& question);

/// The first `count` rows and, for what is left, one row "Altri (n)", whose orders are counted for each
/// of its rows. All of them where there are no more than count + 1.
std::vector<SalesRow> topRows(const std::vector<SalesRow>& rows, std::size_t count);

/// The rows as texts between tabs, a line each, with their headings, for a spreadsheet.
std::string salesBlock(const std::vector<SalesRow>& rows, SalesBy by);

}  // namespace kv
