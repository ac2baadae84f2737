#pragma once
// What the window of orders shows: its filters as they are typed, the texts of an order, which of its controls are on.
// Knows no window.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "publish/orders/store/order_store.h"
#include "publish/orders/wire/order_requests.h"

namespace kv {

/// The filters as the fields hold them.
struct OrderFields {
  std::string search;
  int state = 0;     ///< index of orderStateChoices()
  std::string from;  ///< "1/2/2026", or empty
  std::string to;
};

/// The choices of states, "Tutti" and "Da evadere" first.
std::vector<std::string> orderStateChoices();
/// A state as a heading: "Da verificare".
std::string stateTitle(std::string_view state);

/// A day as typed, "1/2/2026", "01-02-26" or "2026-02-01", as "2026-02-01". Empty for an empty text; nothing for what
/// is no day.
std::optional<std::string> typedDay(std::string_view text);

/// The filter that the fields ask for; nothing when one of the days is none.
std::optional<OrderLookup> orderLookup(const OrderFields& fields);
/// What to say beside a day that is none; empty for one that is, and for an empty field.
std::string dayNote(std::string_view text);

/// The columns of the list, and what an order shows in one of them.
inline constexpr int orderColumns = 5;
inline constexpr int orderNameColumn = 2;
inline constexpr int orderTotalColumn = 3;
/// The heading of a column of the list.
std::string orderColumnTitle(int column);
/// The text of an order in a column.
std::string orderCell(const OrderSummary& order, int column);

/// All of an order as text, a line for each of its facts.
std::string orderDetails(const DeskOrder& order);

/// What the line below the list counts.
struct OrderCounts {
  std::size_t shown = 0;
  int fresh = 0;          ///< new ones in the file
  std::string askedText;  ///< day and time of the last request; empty: never
};
/// "12 ordini, 3 nuovi; ricevuti l'ultima volta il 22/11/2026 15:20".
std::string orderSummaryLine(const OrderCounts& counts);

/// "2 ordini nuovi"; empty for none.
std::string newOrdersText(int count);

/// The change of state that the fields ask for; nothing when there is none to make.
std::optional<StateChange> typedStateChange(const DeskOrder& order, int chosenState);

/// Whether the pieces of an order may come back or go: it is or becomes cancelled.
bool offersStock(const DeskOrder& order, int chosenState);

/// A level of stock from its fields; nothing when the number of pieces is none. pieces: empty without a limit.
std::optional<std::string> typedStock(bool onSale, std::string_view pieces);

}  // namespace kv
