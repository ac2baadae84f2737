#pragma once
// What is asked of the shop's server and kept here: orders that are new or have changed, changes of state, notes. The
// server comes first: what it did is kept, and nothing else. Failures say in `what`, in Italian, what can be done;
// those of the store are as OrderStore has them.

#include <functional>
#include <optional>
#include <vector>

#include "publish/orders/store/order_store.h"
#include "publish/orders/wire/order_protocol.h"
#include "publish/orders/wire/order_requests.h"

namespace kv {

/// What a run of fetching has brought.
struct FetchedOrders {
  int added = 0;
  int changed = 0;
};

/// Fetches what has changed since the last time, in as many answers as it takes; each is kept at once, so that a run
/// that is cut goes on there. `received` is told how many orders have come so far, and may be empty. Cancelled when the
/// means' `yield` said so. What the shop has deleted since is removed too, see OrderStore::erased.
Result<FetchedOrders> fetchOrders(OrderStore& store, const OrderAccess& access, const OrderMeans& means,
                                  const std::function<void(int orders)>& received = {});

/// What became of a change that the server was asked for.
struct OrderChange {
  ChangeOutcome outcome = ChangeOutcome::Done;
  std::string mail;                ///< what came of the mail; empty without one
  std::optional<DeskOrder> order;  ///< as the server has it now
  Result<> kept{};                 ///< whether that is in the store
};

/// Changes the state of an order, if the server still has the one that the merchant saw.
Result<OrderChange> changeOrderState(OrderStore& store, const OrderAccess& access, const OrderMeans& means,
                                     const StateChange& change);
/// A note of the merchant's to be added to an order.
struct OrderNote {
  std::string code;  ///< of the order
  std::string text;
};
/// Adds a note to an order.
Result<OrderChange> addOrderNote(OrderStore& store, const OrderAccess& access, const OrderMeans& means,
                                 const OrderNote& note);

/// A part of the list of stock, as the server has it now.
Result<StockAnswer> fetchStock(const OrderAccess& access, const OrderMeans& means, const StockQuery& query);
/// Changes a level of stock, if the server still has the one that the merchant saw.
Result<StockChangeAnswer> changeStock(const OrderAccess& access, const OrderMeans& means, const StockChange& change);

}  // namespace kv
