#include "publish/orders/order_fetch.h"

namespace kv {
namespace {

/// An answer that promises more without a step forward would be asked for without end.
constexpr const char* repeatsItself =
    "Il server ripete la stessa risposta: gli ordini già ricevuti sono rimasti. Riprovare più tardi.";

Result<OrderChange> carriedOut(OrderStore& store, const Result<JsonValue>& answer) {
  if (!answer) return fail(answer.error());
  auto read = changeAnswer(*answer);
  if (!read) return fail(read.error());
  OrderChange change{read->outcome, std::move(read->mail), std::nullopt, {}};
  if (!read->order) return change;
  change.kept = store.replace(*read->order);
  change.order = std::move(read->order->order);
  return change;
}

}  // namespace

Result<FetchedOrders> fetchOrders(OrderStore& store, const OrderAccess& access, const OrderMeans& means,
                                  const std::function<void(int orders)>& received) {
  FetchedOrders fetched;
  auto cursor = store.cursor(access.address);
  if (!cursor) return fail(cursor.error());
  for (bool more = true; more;) {
    const auto answer = askOrders(access, ordersRequest(*cursor), means);
    if (!answer) return fail(answer.error());
    auto page = ordersAnswer(*answer);
    if (!page) return fail(page.error());
    if (page->more && page->next == *cursor) return fail(ErrorKind::Malformed, access.address, repeatsItself);
    const OrderArrival arrival{access.address, *cursor, std::move(*page)};
    const auto count = store.take(arrival);
    if (!count) return fail(count.error());
    fetched.added += count->added;
    fetched.changed += count->changed;
    if (received) received(fetched.added + fetched.changed);
    more = arrival.answer.more;
    *cursor = arrival.answer.next;
  }
  if (auto noted = store.noteAsked(static_cast<std::int64_t>(means.clock.now())); !noted) return fail(noted.error());
  return fetched;
}

Result<OrderChange> changeOrderState(OrderStore& store, const OrderAccess& access, const OrderMeans& means,
                                     const StateChange& change) {
  return carriedOut(store, askOrders(access, stateRequest(change), means));
}

Result<OrderChange> addOrderNote(OrderStore& store, const OrderAccess& access, const OrderMeans& means,
                                 const OrderNote& note) {
  return carriedOut(store, askOrders(access, noteRequest(note.code, note.text), means));
}

Result<StockAnswer> fetchStock(const OrderAccess& access, const OrderMeans& means, const StockQuery& query) {
  const auto answer = askOrders(access, stockRequest(query), means);
  if (!answer) return fail(answer.error());
  return stockAnswer(*answer);
}

Result<StockChangeAnswer> changeStock(const OrderAccess& access, const OrderMeans& means, const StockChange& change) {
  const auto answer = askOrders(access, stockChangeRequest(change), means);
  if (!answer) return fail(answer.error());
  return stockChangeAnswer(*answer);
}

}  // namespace kv
