#pragma once
// How orders are written on paper, in files and in the windows: amounts and dates as Italians write them, texts in
// HTML.

#include <string>
#include <string_view>

#include "publish/orders/values/desk_order.h"

namespace kv {

/// An amount with two decimals after a comma, half a cent rounded away from zero. grouped: "." between thousands.
std::string decimalText(Money amount, bool grouped = true);
/// An amount after its currency, with a non-breaking space between them; the amount alone without a currency.
std::string amountText(Money amount, std::string_view currency);
/// What all pieces of a line cost together; beyond the range of Money its limit.
Money lineTotal(const DeskOrderLine& line);
/// "2026-05-31 10:20:30" as "31/05/2026 10:20", or as the day alone. Any other text stays.
std::string orderDate(std::string_view when, bool withTime);
/// Whether an order is of one of these days, both included; an empty one is an open end. from, to: "yyyy-mm-dd".
bool isBetweenDays(const DeskOrder& order, std::string_view from, std::string_view to);
/// A field of the order form; empty where the form has none of this name.
std::string orderField(const DeskOrder& order, const std::string& name);

/// Text of a server that is to be told or printed: at most 500 characters, without any that control a terminal but line
/// ends.
std::string shownTextOf(std::string_view text);
/// The same on one line, of any length.
std::string shownLineOf(std::string_view text);

/// Text as HTML, with line ends as breaks. A run of characters without a space may break after every 24 of them, so
/// that no name pushes a table out of its page.
std::string textAsHtml(std::string_view text);

}  // namespace kv
