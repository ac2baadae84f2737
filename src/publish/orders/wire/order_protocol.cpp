#include "publish/orders/wire/order_protocol.h"

#include <charconv>
#include <cmath>

#include "platform/files/hexadecimal.h"
#include "platform/files/message_code.h"
#include "platform/text/form_text.h"
#include "platform/text/text.h"
#include "publish/orders/values/order_texts.h"

namespace kv {
namespace {

constexpr std::string_view signedAs = "korvane-ordini-1";
constexpr std::string_view answeredAs = "risposta";
constexpr std::size_t signatureDigits = 64;
constexpr std::size_t numberDigits = 32;
constexpr int secondsToWait = 60;
constexpr int secondsInMinute = 60;

constexpr const char* publishOnce = "\nPubblicare il negozio una volta con \"Aggiorna il sito...\", poi riprovare.";
constexpr const char* noAnswer =
    "Il server del negozio non risponde. Gli ordini già ricevuti sono rimasti e si possono leggere.\n"
    "Controllare il collegamento a Internet e l'indirizzo del negozio, poi riprovare.\n\nDettaglio: ";
constexpr const char* brokenAnswer =
    "La risposta del server è incompleta o non è sua, e non è stata usata.\n"
    "Gli ordini già ricevuti sono rimasti: riprovare.";
constexpr const char* olderHost =
    "Il negozio online è di una versione precedente, che non invia gli ordini a questo computer.\n"
    "Costruire il negozio e pubblicarlo una volta con \"Aggiorna il sito...\", poi riprovare.";
constexpr const char* tooManyRequests =
    "Il server ha ricevuto da qui troppe richieste con una firma sbagliata e per ora non ne accetta altre.\n"
    "Riprovare fra 15 minuti.";

tl::unexpected<Error> unusable(const OrderAccess& access) {
  return fail(ErrorKind::Malformed, access.address, brokenAnswer, outcomeNotKnown);
}

/// The request is refused when the two clocks differ by more than five minutes; `told` is the server's.
std::string wrongClock(std::string_view told, std::int64_t here) {
  std::int64_t there = 0;
  const auto [end, failure] = std::from_chars(told.data(), told.data() + told.size(), there);
  if (failure != std::errc() || end == told.data()) {
    return "L'orologio di questo computer e quello del server segnano ore diverse: regolarlo e riprovare.";
  }
  // The server's number is any: the difference is taken where it can't overflow.
  const double minutes = std::round(std::fabs(static_cast<double>(here) - static_cast<double>(there)) /
                                    static_cast<double>(secondsInMinute));
  const std::string amount =
      minutes < 1e9 ? std::to_string(static_cast<std::int64_t>(minutes)) : std::string("moltissimi");
  return std::string("L'orologio di questo computer è ") + (here > there ? "avanti" : "indietro") + " di " + amount +
         " minuti rispetto a quello del server: regolarlo e riprovare.";
}

/// Why the server refuses, from its one line.
Error refusal(const OrderAccess& access, const OrderMessage& sent, std::string_view line) {
  const auto error = [&](ErrorKind kind, std::string what) { return Error{kind, access.address, std::move(what)}; };
  if (line == "chiave") {
    return error(ErrorKind::Missing,
                 std::string("Il server non ha ancora la chiave degli ordini di questo negozio.") + publishOnce);
  }
  if (line == "firma") {
    return error(ErrorKind::Missing, std::string("Il server ha un'altra chiave degli ordini.") + publishOnce);
  }
  if (line.starts_with("ora ")) return error(ErrorKind::Other, wrongClock(line.substr(4), sent.time));
  if (line == "numero") {
    return error(ErrorKind::Other, "Il server ha già ricevuto questa richiesta e non la esegue di nuovo: riprovare.");
  }
  return error(ErrorKind::Other, "Il server rifiuta le richieste di ordini (stato 403): chiedere al fornitore.");
}

Error failureOf(const OrderAccess& access, const OrderMessage& sent, const HttpResponse& response) {
  switch (response.status) {
    case http::forbidden:
      return refusal(access, sent, trim(response.body.substr(0, response.body.find_first_of("\r\n"))));
    case http::notFound:
      return {ErrorKind::Missing, access.address, olderHost};
    case http::tooManyRequests:
      return {ErrorKind::Other, access.address, tooManyRequests};
    default:
      return {ErrorKind::Other, access.address,
              "Il server ha risposto con lo stato " + std::to_string(response.status) + ". Riprovare più tardi.",
              outcomeNotKnown};
  }
}

bool looksLikePage(std::string_view body) {
  const std::size_t start = body.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
  return start != std::string_view::npos && body[start] == '<';
}

}  // namespace

std::string orderSignature(std::string_view key, const OrderMessage& message) {
  const auto bytes = bytesOfHexadecimal(key);
  if (!bytes || bytes->empty()) return {};
  return hmacSha256(*bytes, std::string(signedAs) + "\n" + std::to_string(message.time) + "\n" + message.number + "\n" +
                                message.data);
}

std::string answerSignature(std::string_view key, std::string_view number, std::string_view text) {
  const auto bytes = bytesOfHexadecimal(key);
  if (!bytes || bytes->empty()) return {};
  std::string message(answeredAs);
  message.append("\n").append(number).append("\n").append(text);
  return hmacSha256(*bytes, message);
}

HttpRequest orderRequest(const OrderAccess& access, const OrderMessage& message) {
  HttpRequest request;
  request.url = access.address;
  request.method = "POST";
  request.body = "ora=" + std::to_string(message.time) + "&numero=" + message.number +
                 "&dati=" + formValue(message.data) + "&firma=" + orderSignature(access.key, message);
  request.headers = {"Content-Type: application/x-www-form-urlencoded"};
  request.timeoutSeconds = secondsToWait;
  return request;
}

Result<JsonValue> readOrderAnswer(const OrderAccess& access, const OrderMessage& sent, const HttpResponse& response) {
  if (response.status != http::ok) return fail(failureOf(access, sent, response));
  const std::string_view body = response.body;
  // A host that has no such script may show its first page instead.
  if (looksLikePage(body)) return fail(ErrorKind::Missing, access.address, olderHost);
  if (body.size() <= signatureDigits || body[signatureDigits] != '\n') return unusable(access);
  const std::string_view text = body.substr(signatureDigits + 1);
  const std::string expected = answerSignature(access.key, sent.number, text);
  if (expected.empty() || !isSameCode(expected, body.substr(0, signatureDigits))) return unusable(access);
  auto answer = readJson(text);
  if (!answer || answer->kind != JsonKind::Object) return unusable(access);
  if (answer->member("errore") != nullptr) {
    return fail(ErrorKind::Other, access.address,
                "Il server non ha potuto eseguire la richiesta:\n" + shownTextOf(answer->textOf("errore")));
  }
  return answer;
}

Result<JsonValue> askOrders(const OrderAccess& access, std::string data, const OrderMeans& means) {
  const OrderMessage message{static_cast<std::int64_t>(means.clock.now()),
                             randomHexadecimal(means.random, numberDigits), std::move(data)};
  const auto response = means.http.send(orderRequest(access, message), means.yield);
  if (response) return readOrderAnswer(access, message, *response);
  if (response.error().kind == ErrorKind::Cancelled) {
    return fail(ErrorKind::Cancelled, access.address, response.error().what, outcomeNotKnown);
  }
  if (response.error().kind == ErrorKind::Malformed) return unusable(access);
  return fail(ErrorKind::Other, access.address, noAnswer + response.error().what, outcomeNotKnown);
}

}  // namespace kv
