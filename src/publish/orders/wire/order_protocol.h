#pragma once
// A signed request to the back office's script for orders, and its signed answer; see docs/orders.md. A failure says in
// `what`, in Italian, what the merchant can do. Whatever fails, nothing here has changed.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/database/json.h"
#include "platform/ports/clock.h"
#include "platform/transfer/http_client.h"

namespace kv {

/// `number` of a failure after which the server may have done what was asked: no answer came, or none that can be read.
/// It is 0 for a refusal, which changes nothing, and an engine's or system's code where the store has failed.
inline constexpr int outcomeNotKnown = -1;

/// Where a shop's orders are asked for, and with which key.
struct OrderAccess {
  std::string address;  ///< of the script, "https://host/folder/remoto.php"
  std::string key;      ///< 64 hexadecimal digits
};

/// By what requests are sent. References outlive it.
struct OrderMeans {
  HttpClient& http;
  Clock& clock;
  RandomSource& random;
  std::function<bool()> yield;  ///< processes events, called at least every 50 ms; false cancels
};

/// One request before it is signed.
struct OrderMessage {
  std::int64_t time = 0;  ///< seconds since 1970-01-01 00:00 UTC
  std::string number;     ///< 32 hexadecimal digits, used once
  std::string data;       ///< the request as JSON
};

/// The signature of a request as 64 hexadecimal digits; empty for a key that is none.
std::string orderSignature(std::string_view key, const OrderMessage& message);
/// The signature of an answer to the request with this number.
std::string answerSignature(std::string_view key, std::string_view number, std::string_view text);

/// The request as it is sent.
HttpRequest orderRequest(const OrderAccess& access, const OrderMessage& message);

/// The object of an answer to `sent`. Malformed for an answer that isn't whole or not the server's own; Missing for a
/// server that has to be published to first; Other, quoting it, for `errore` and for what the server refuses.
Result<JsonValue> readOrderAnswer(const OrderAccess& access, const OrderMessage& sent, const HttpResponse& response);

/// Sends a request and reads its answer. data: the request as JSON. Cancelled when `yield` said so, Other when no
/// answer came. Else as readOrderAnswer.
Result<JsonValue> askOrders(const OrderAccess& access, std::string data, const OrderMeans& means);

}  // namespace kv
