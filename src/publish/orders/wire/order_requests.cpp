#include "publish/orders/wire/order_requests.h"

#include <string_view>

#include "platform/text/json_text.h"

namespace kv {
namespace {

/// Members of an object, one after the other.
class RequestText {
 public:
  explicit RequestText(std::string_view action) { text("azione", action); }
  RequestText& text(std::string_view name, std::string_view value) { return add(name, jsonString(value)); }
  RequestText& whole(std::string_view name, int value) { return add(name, std::to_string(value)); }
  RequestText& flag(std::string_view name, bool value) { return add(name, value ? "true" : "false"); }
  std::string end() const { return out_ + "}"; }

 private:
  RequestText& add(std::string_view name, const std::string& value) {
    out_.append(out_.empty() ? "{" : ",").append(jsonString(name)).append(":").append(value);
    return *this;
  }
  std::string out_;
};

std::string_view kindMark(StockKind kind) { return kind == StockKind::Articles ? "A" : "V"; }

}  // namespace

std::string ordersRequest(const std::string& after) {
  return RequestText("ordini").text("dopo", after).whole("quanti", ordersPerAnswer).end();
}

std::string goneOrdersRequest(int from) {
  return RequestText("tolti").whole("da", from).whole("quanti", goneOrdersPerAnswer).end();
}

std::string stateRequest(const StateChange& change) {
  return RequestText("stato")
      .text("codice", change.code)
      .text("da", change.from)
      .text("a", change.to)
      .flag("scorte", change.movesStock)
      .flag("scrivi", change.notifiesCustomer)
      .text("messaggio", change.message)
      .end();
}

std::string noteRequest(const std::string& code, const std::string& text) {
  return RequestText("nota").text("codice", code).text("testo", text).end();
}

std::string stockRequest(const StockQuery& query) {
  return RequestText("scorte")
      .text("tipo", kindMark(query.kind))
      .text("cerca", query.search)
      .whole("da", query.from)
      .whole("quanti", ordersPerAnswer)
      .end();
}

std::string stockChangeRequest(const StockChange& change) {
  return RequestText("scorta")
      .text("tipo", kindMark(change.kind))
      .text("chiave", change.key)
      .text("prima", change.before)
      .text("dopo", change.after)
      .end();
}

}  // namespace kv
