#pragma once
// The merchant's desk for orders, as the window and the command line use it: what is asked of the server and kept, with
// the messages and questions that come of it. Knows no window.

#include <functional>
#include <optional>
#include <string>

#include "platform/ports/user_port.h"
#include "publish/orders/desk/order_fetch.h"
#include "store/shop/session.h"

namespace kv {

/// Where the orders of the open shop are asked for, and with which key; makes the key where there is none. `what` says
/// in Italian what is missing: an address, or the publishing that brings a fresh key to the server.
Result<OrderAccess> orderAccess(Session& session, RandomSource& random);
/// The address of the script for orders of the open shop; empty while the shop has no address.
Result<std::string> orderAddress(Session& session);

/// What a failure of a fetch or a change says to the merchant; empty for one that was cancelled.
std::string orderFailureText(const Error& error);

/// What the desk works with. References outlive it.
struct OrderDeskPorts {
  std::function<Result<OrderAccess>()> access;
  OrderMeans means;
  UserPort& user;
};

/// What the window of orders does, without the window: fetches, changes and shows failures.
class OrderDesk {
 public:
  /// `store` outlives the desk.
  OrderDesk(OrderStore& store, OrderDeskPorts ports);

  /// The orders that were fetched.
  OrderStore& store() { return store_; }
  /// What processes events while the server thinks; false cancels. It replaces that of the ports.
  void waitWith(std::function<bool()> yield) { ports_.means.yield = std::move(yield); }

  /// Opens the store; a damaged file is told. False when it can't be opened, which the user knows.
  bool open();
  /// Fetches what is new, and tells what was erased here because the shop deleted it. Nothing when it failed, which the
  /// user knows, or was cancelled; what came before is kept.
  std::optional<FetchedOrders> fetch(const std::function<void(int orders)>& received = {});
  /// Changes the state of an order. A state that the server no longer has is shown beside the chosen one, and the
  /// change is repeated on Yes. True when the order may show otherwise now.
  bool changeState(StateChange change);
  /// Adds a note. True when it is on the server. An order that the server no longer has can be removed here, as after
  /// a change of state.
  bool addNote(const OrderNote& note);
  /// A part of the list of stock. Nothing when it failed, which the user knows.
  std::optional<StockAnswer> stock(const StockQuery& query);
  /// Changes a level of stock; a conflict is shown as that of a state. name: the article, for messages. The level as it
  /// is now; nothing when it isn't known.
  std::optional<std::string> setStock(StockChange change, const std::string& name);

 private:
  /// Says what failed, and what was kept.
  void showError(const Error& error);
  /// The failure of a change, and whether the server may have done it all the same.
  void showRefusal(const Error& error);
  /// What came of a change beside its outcome: the mail, and a store that could not keep it.
  void showRest(const OrderChange& done);
  /// What was erased here because the shop deleted it.
  void showErased();
  /// That the server doesn't know an order; removes it here on Yes.
  void askUnknown(const std::string& code);

  OrderStore& store_;
  OrderDeskPorts ports_;
};

/// A level of stock as the merchant reads it: "12", "senza limite", "non disponibile".
std::string stockLevelText(std::string_view level);

}  // namespace kv
