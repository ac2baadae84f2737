#include "publish/orders/desk/order_notice.h"

#include "platform/files/files.h"
#include "publish/orders/desk/order_desk.h"
#include "publish/orders/desk/order_list.h"
#include "publish/orders/wire/order_key.h"

namespace kv {

std::optional<OrderAccess> accessForNotice(Session& session) {
  if (!session.catalogue.isOpen() || !fileExists(entryPath(session.ShopFolder, ordersFile))) return std::nullopt;
  const auto key = orderKey(session);
  auto address = orderAddress(session);
  if (!key || key->empty() || !address || address->empty()) return std::nullopt;
  OrderStore store(session.ShopFolder);
  if (!store.open() || !store.isOpen() || !store.notifiesAtStart().value_or(false)) return std::nullopt;
  return OrderAccess{std::move(*address), *key};
}

std::string newOrdersNotice(const std::string& shopFolder, const OrderAccess& access, const OrderMeans& means) {
  OrderStore store(shopFolder);
  if (!store.open() || !store.isOpen()) return {};
  const auto fetched = fetchOrders(store, access, means);
  if (!fetched && fetched.error().kind == ErrorKind::Cancelled) return {};
  return newOrdersText(store.countNew().value_or(0));
}

}  // namespace kv
