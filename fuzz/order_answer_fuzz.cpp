// Answers of a shop's server to the requests for orders. Whatever it sends, an answer is read whole or refused with a
// sentence; what is read can be kept and gives the same again.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "publish/orders/desk/order_list.h"
#include "publish/orders/store/order_search.h"
#include "publish/orders/wire/order_answers.h"
#include "publish/orders/wire/order_protocol.h"

namespace {

void requireOrders(bool holds) {
  if (!holds) std::abort();
}

const kv::OrderAccess theAccess{"http://a/remoto.php",
                                "00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff"};

void keepAndRead(const kv::ReceivedOrder& received) {
  const auto kept = kv::keptOrder(received.text, "ordini.db");
  requireOrders(kept.has_value());
  requireOrders(kept->code == received.order.code && kept->total == received.order.total &&
                kept->lines.size() == received.order.lines.size());
  requireOrders(kv::orderDetails(*kept) == kv::orderDetails(received.order));
  requireOrders(kv::searchedText(*kept) == kv::searchedText(received.order));
}

void readEachWay(const kv::JsonValue& answer) {
  if (const auto orders = kv::ordersAnswer(answer)) {
    for (const kv::ReceivedOrder& one : orders->orders) keepAndRead(one);
  }
  if (const auto gone = kv::goneOrdersAnswer(answer)) {
    for (const kv::GoneOrder& one : gone->orders) requireOrders(one.id > 0 && !one.code.empty());
    requireOrders(!gone->more || !gone->orders.empty());
  }
  if (const auto change = kv::changeAnswer(answer); change && change->order) keepAndRead(*change->order);
  if (const auto stock = kv::stockAnswer(answer)) {
    for (const kv::StockItem& item : stock->items) requireOrders(item.level.size() >= 2);
  }
  kv::ignore(kv::stockChangeAnswer(answer), "it is read or refused");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const kv::OrderMessage sent{1'000'000'000, "17", "{}"};
  // As it comes: without the right signature it is never an answer.
  for (const int status : {200, 403, 404, 429, 500}) {
    const auto raw = kv::readOrderAnswer(theAccess, sent, {status, text});
    requireOrders(!raw && !raw.error().what.empty());
  }
  const auto answer =
      kv::readOrderAnswer(theAccess, sent, {200, kv::answerSignature(theAccess.key, "17", text) + "\n" + text});
  if (!answer) {
    requireOrders(!answer.error().what.empty());
    return 0;
  }
  const auto again = kv::readJson(kv::jsonText(*answer));
  requireOrders(again && kv::jsonText(*again) == kv::jsonText(*answer));
  readEachWay(*answer);
  return 0;
}
