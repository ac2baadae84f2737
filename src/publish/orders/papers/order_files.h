#pragma once
// Orders as files for the accountant: CSV in the form of the back office, which spreadsheets of an Italian system open
// (UTF-8 with a mark, ";", CR LF, decimal comma), and XLSX with amounts as numbers and moments as dates.

#include <span>
#include <string>
#include <vector>

#include "platform/ports/result.h"
#include "publish/orders/values/desk_order.h"

namespace kv {

/// Which orders of a list are meant.
struct OrderFilter {
  std::string from = {}, to = {};        ///< days as "yyyy-mm-dd", both included; empty: open on this side
  std::vector<std::string> states = {};  ///< any of these; none: all
  bool matches(const DeskOrder& order) const;
};
/// The orders that pass a filter, newest first.
std::vector<DeskOrder> ordersMatching(std::span<const DeskOrder> orders, const OrderFilter& filter);

/// The file as bytes, an order a row. withLines: a row for each line of an order, which repeats what the order says;
/// one row with empty columns for an order that doesn't hold its lines. A text that a spreadsheet would take for a
/// formula gets an apostrophe in front. Source: OWASP, CSV Injection.
std::string ordersCsv(std::span<const DeskOrder> orders, bool withLines = false);

/// The same columns as XLSX. Texts are texts there and get no apostrophe; they end after 16,000 characters. Failures as
/// SheetWriter.
Result<> writeOrdersXlsx(const std::string& path, std::span<const DeskOrder> orders, bool withLines = false);

/// Writes a file, XLSX where its name ends so, else CSV. Failures as writeBytes and SheetWriter.
Result<> writeOrderFile(const std::string& path, std::span<const DeskOrder> orders, bool withLines);

}  // namespace kv
