#pragma once
// What the start of the program says of new orders. It asks nobody and fails for nothing.

#include <string>

#include "publish/orders/desk/order_fetch.h"
#include "store/shop/session.h"

namespace kv {

/// Where the server is asked for new orders when a shop opens; nothing for a shop that has never received any, one
/// without a key or an address, and one whose merchant doesn't want to be told.
std::optional<OrderAccess> accessForNotice(Session& session);

/// Asks the server, keeps what came, and says "2 ordini nuovi"; empty for none. Without an answer it counts what is
/// kept; a run that is cancelled says nothing. The catalogue isn't used.
std::string newOrdersNotice(const std::string& shopFolder, const OrderAccess& access, const OrderMeans& means);

}  // namespace kv
