#pragma once
// A shop's server as the requests for orders see it: it checks each signature, keeps what it was asked, and answers
// from a list, signed.

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "publish/orders/wire/order_protocol.h"

namespace kv::test {

/// The value of a field of a form; "%41" is a byte.
inline std::string formField(const std::string& body, const std::string& name) {
  const std::string start = name + "=";
  std::size_t at = body.rfind("&" + start);
  at = at == std::string::npos ? 0 : at + 1;
  if (body.compare(at, start.size(), start) != 0) return "(no " + name + ")";
  const std::string raw = body.substr(at + start.size(), body.find('&', at) - at - start.size());
  std::string value;
  for (std::size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] != '%') {
      value += raw[i];
      continue;
    }
    value += static_cast<char>(std::stoi(raw.substr(i + 1, 2), nullptr, 16));
    i += 2;
  }
  return value;
}

class OrderHost final : public HttpClient {
 public:
  OrderAccess access{"https://www.a.it/bo/remoto.php",
                     "00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff"};
  /// What the next requests are answered with, as JSON; after the last one the connection fails.
  std::deque<std::string> answers;
  /// Changes the answer to the request of this number, from 1.
  std::map<int, std::function<void(Result<HttpResponse>&)>> spoilt;
  /// Called at each request, before it is answered.
  std::function<void()> onRequest;

  std::vector<std::string> asked;    ///< the requests as JSON
  std::vector<std::string> numbers;  ///< of the requests

  Result<HttpResponse> send(const HttpRequest& request, const std::function<bool()>& yield) override {
    const std::string number = formField(request.body, "numero");
    const OrderMessage message{std::stoll(formField(request.body, "ora")), number, formField(request.body, "dati")};
    EXPECT_EQ(request.url, access.address);
    EXPECT_EQ(formField(request.body, "firma"), orderSignature(access.key, message));
    asked.push_back(message.data);
    numbers.push_back(number);
    if (onRequest) onRequest();
    if (yield && !yield()) return fail(ErrorKind::Cancelled, request.url, "cancelled");
    Result<HttpResponse> response = fail(ErrorKind::Other, "", "Could not resolve host", 6);
    if (!answers.empty()) {
      response = HttpResponse{200, answerSignature(access.key, number, answers.front()) + "\n" + answers.front()};
      answers.pop_front();
    }
    const auto spoil = spoilt.find(static_cast<int>(asked.size()));
    if (spoil != spoilt.end()) spoil->second(response);
    return response;
  }
};

/// What tells one order of an answer from the others.
struct HostOrder {
  int id = 1;
  std::string created = "2026-05-31 10:20:30";
  std::string state = "nuovo";
  std::string name = "Anna Neri";
  std::string total = "25.50";
  bool isAnonymous = false;  ///< its customer was deleted
};

/// An order as the server writes it.
inline std::string orderJson(const HostOrder& order) {
  const std::string id = std::to_string(order.id);
  const bool named = !order.isAnonymous;
  const std::string fields = named ? R"("Nome":"Anna","Citta":"Forlì","CAP":"47121")" : R"("Paese":"Italia")";
  const std::string note = named ? R"({"quando":"2026-05-31 11:00:00","tipo":"nota","testo":"Chiamare"})" : "";
  return R"({"id":)" + id + R"(,"codice":"KV)" + id + R"(","creato":")" + order.created +
         R"(","modificato":"m1","cliente":0,"nome":")" + order.name + R"(","email":")" +
         (named ? "anna@posta.it" : "") + R"(","totale":")" + order.total +
         R"(","valuta":"EUR","metodo":"Bonifico","stato":")" + order.state +
         R"(","lingua":"it","pagamento":"","riepilogo":"","campi":{)" + fields +
         R"(},)"
         R"("righe":[{"id":7,"codice":"T1","testo":"Cup","scelte":"red","prima":"Tazza","scelte_prima":"rossa",)"
         R"("quantita":2,"importo":"10.25"}],"totali":{"merce":"20.50","spese":"5.00"},)"
         R"("note":[)" +
         note + R"(],"recessi":[]})";
}

/// An answer with orders; `gone` is the mark of what the shop has deleted.
inline std::string ordersJson(const std::vector<HostOrder>& orders, const std::string& next, bool more = false,
                              const std::string& gone = {}) {
  std::string list;
  for (const HostOrder& order : orders) list += (list.empty() ? "" : ",") + orderJson(order);
  return R"({"ordini":[)" + list + R"(],"dopo":")" + next + R"(","altri":)" + (more ? "true" : "false") +
         (gone.empty() ? "}" : R"(,"tolti":")" + gone + R"("})");
}

}  // namespace kv::test
