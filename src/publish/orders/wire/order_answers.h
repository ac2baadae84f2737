#pragma once
// Answers of the script for orders as values; see docs/orders.md. What is out of bounds is Malformed as a whole, so
// that no half of an answer is kept.

#include <optional>
#include <string>
#include <vector>

#include "platform/database/json.h"
#include "publish/orders/values/desk_order.h"

namespace kv {

/// An order with the JSON that it was read from, as it is kept.
struct ReceivedOrder {
  DeskOrder order;
  std::string text;  ///< at most 1 MiB
};

/// Orders that have changed, oldest change first.
struct OrdersAnswer {
  std::vector<ReceivedOrder> orders;  ///< at most 500
  std::string next;                   ///< for the next request
  bool more = false;                  ///< more have changed already
  std::string goneMark = {};          ///< another one once a further order was deleted; empty: none was
};

/// An order that the shop has deleted.
struct GoneOrder {
  std::int64_t id = 0;
  std::string code;
};
/// Orders that the shop has deleted, in pieces.
struct GoneOrdersAnswer {
  std::vector<GoneOrder> orders;  ///< at most goneOrdersPerAnswer, see order_requests.h
  bool more = false;
};

/// What became of a change that was asked for.
enum class ChangeOutcome {
  Done,
  Different,  ///< what was to be changed is no longer what the merchant saw; nothing was done
  Unknown     ///< there is no such order
};

/// What became of a change of state or a note.
struct ChangeAnswer {
  ChangeOutcome outcome = ChangeOutcome::Done;
  std::optional<ReceivedOrder> order;  ///< as it is now
  std::string mail;                    ///< what came of the mail; empty without one
};

/// One row of stock.
struct StockItem {
  std::string key;  ///< by which a change names it
  std::string code;
  std::string name;
  std::string level;  ///< "1|12", "1|", "0|"
};
/// Stock levels that match a search.
struct StockAnswer {
  std::vector<StockItem> items;  ///< at most 500
  bool more = false;
};
/// What became of a change of stock.
struct StockChangeAnswer {
  ChangeOutcome outcome = ChangeOutcome::Done;
  std::string level;  ///< as it is now
};

/// One order of an answer, or of the store.
Result<DeskOrder> deskOrder(const JsonValue& value);

/// Each reads the answer to one kind of request. Malformed, naming the part, for what is no such answer.
Result<OrdersAnswer> ordersAnswer(const JsonValue& answer);
Result<GoneOrdersAnswer> goneOrdersAnswer(const JsonValue& answer);
/// Of `stato` and of `nota`.
Result<ChangeAnswer> changeAnswer(const JsonValue& answer);
Result<StockAnswer> stockAnswer(const JsonValue& answer);
Result<StockChangeAnswer> stockChangeAnswer(const JsonValue& answer);

}  // namespace kv
