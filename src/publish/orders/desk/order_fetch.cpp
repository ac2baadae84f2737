#include "publish/orders/desk/order_fetch.h"

namespace kv {
namespace {

/// An answer that promises more without a step forward would be asked for without end.
constexpr const char* repeatsItself =
    "Il server ripete la stessa risposta: gli ordini già ricevuti sono rimasti. Riprovare più tardi.";

/// Two million orders: a server that promises still more is none of ours.
constexpr int mostAnswers = 10'000;

/// More than any shop has; a server that names still more of them is none of ours.
constexpr int mostGoneOrders = 1'000'000;

/// Removes here what the shop has deleted, when it says that it deleted more than was known.
Result<> followDeletions(OrderStore& store, const OrderAccess& access, const OrderMeans& means,
                         const std::string& mark) {
  const auto known = store.goneMark(access.address);
  if (!known) return fail(known.error());
  if (mark.empty() || mark == *known) return {};
  bool more = true;
  for (int from = 0; more && from < mostGoneOrders;) {
    const auto answer = askOrders(access, goneOrdersRequest(from), means);
    if (!answer) return fail(answer.error());
    const auto page = goneOrdersAnswer(*answer);
    if (!page) return fail(page.error());
    if (auto removed = store.remove(page->orders); !removed) return removed;
    from += static_cast<int>(page->orders.size());
    more = page->more;
  }
  return store.noteGoneMark(access.address, mark);
}

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

/// Asks for the orders after a cursor. Malformed for an answer that promises more and gives none.
Result<OrdersAnswer> askForPage(const OrderAccess& access, const OrderMeans& means, const std::string& cursor) {
  const auto answer = askOrders(access, ordersRequest(cursor), means);
  if (!answer) return fail(answer.error());
  auto page = ordersAnswer(*answer);
  if (!page) return fail(page.error());
  const bool isStep = page->next != cursor && !page->orders.empty();
  if (page->more && !isStep) return fail(ErrorKind::Malformed, access.address, repeatsItself);
  return page;
}

}  // namespace

Result<FetchedOrders> fetchOrders(OrderStore& store, const OrderAccess& access, const OrderMeans& means,
                                  const std::function<void(int orders)>& received) {
  FetchedOrders fetched;
  auto cursor = store.cursor(access.address);
  if (!cursor) return fail(cursor.error());
  std::string goneMark;
  int answers = 0;
  for (bool more = true; more;) {
    auto page = askForPage(access, means, *cursor);
    if (!page) return fail(page.error());
    if (page->more && ++answers > mostAnswers) return fail(ErrorKind::Malformed, access.address, repeatsItself);
    const OrderArrival arrival{access.address, *cursor, std::move(*page)};
    const auto count = store.take(arrival);
    if (!count) return fail(count.error());
    fetched.added += count->added;
    fetched.changed += count->changed;
    if (received) received(fetched.added + fetched.changed);
    more = arrival.answer.more;
    *cursor = arrival.answer.next;
    goneMark = arrival.answer.goneMark;
  }
  if (auto followed = followDeletions(store, access, means, goneMark); !followed) return fail(followed.error());
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
