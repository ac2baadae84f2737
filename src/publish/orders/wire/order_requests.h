#pragma once
// What the script for orders can be asked, as JSON; see docs/orders.md. Texts are UTF-8.

#include <string>

#include "publish/orders/values/desk_order.h"

namespace kv {

/// The most orders or rows of stock that one answer brings.
inline constexpr int ordersPerAnswer = 200;
/// The most orders that were deleted which one answer brings.
inline constexpr int goneOrdersPerAnswer = 5000;

/// A new state of an order, chosen while it was in another.
struct StateChange {
  std::string code;
  std::string from;               ///< the state that the merchant has seen
  std::string to;                 ///< one of orderStates()
  bool movesStock = false;        ///< cancelled pieces come back, and go again
  bool notifiesCustomer = false;  ///< by mail
  std::string message;            ///< of that mail; empty: the shop's own for the state
};

/// What there is of articles, or of the values of variants.
enum class StockKind { Articles, Values };

/// A part of the list of stock.
struct StockQuery {
  StockKind kind = StockKind::Articles;
  std::string search;  ///< part of code or name; empty: all
  int from = 0;        ///< index of the first row
};

/// A new level of stock, chosen while it was another. Levels are as the back office writes them: "1|12", "1|", "0|".
struct StockChange {
  StockKind kind = StockKind::Articles;
  std::string key;
  std::string before;
  std::string after;
};

/// The changes since a cursor; empty: all orders.
std::string ordersRequest(const std::string& after);
/// Orders that were deleted, from an index on.
std::string goneOrdersRequest(int from);
/// The requests that change something, and the search for stock. Each is one line of JSON.
std::string stateRequest(const StateChange& change);
std::string noteRequest(const std::string& code, const std::string& text);
std::string stockRequest(const StockQuery& query);
std::string stockChangeRequest(const StockChange& change);

}  // namespace kv
