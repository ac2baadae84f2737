// Requests for orders as they are signed and sent, and what each kind of answer tells the merchant.
#include "publish/orders/wire/order_protocol.h"

#include <gtest/gtest.h>

#include "platform/files/message_code.h"
#include "support/fixed_clock.h"
#include "support/order_host.h"

namespace kv::test {
namespace {

class OrderRequests : public ::testing::Test {
 protected:
  OrderMeans means() {
    return {host, clock, random, [this] { return !cancelled; }};
  }
  /// What the answer tells; empty for one that is read.
  std::string told(const HttpResponse& response) {
    const auto read = readOrderAnswer(host.access, {1'000'000'000, "17", "{}"}, response);
    return read ? std::string() : read.error().what;
  }
  std::string signedText(const std::string& text) const {
    return answerSignature(host.access.key, "17", text) + "\n" + text;
  }

  OrderHost host;
  FixedClock clock;
  FixedRandom random;
  bool cancelled = false;
};

TEST_F(OrderRequests, AreAPostWithTimeNumberDataAndSignature) {
  const HttpRequest request = orderRequest(host.access, {1'000'000'000, "ab12", R"({"azione":"prova"})"});
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.url, "https://www.a.it/bo/remoto.php");
  EXPECT_EQ(request.headers, std::vector<std::string>{"Content-Type: application/x-www-form-urlencoded"});
  const std::string key = *bytesOfHexadecimal(host.access.key);
  EXPECT_EQ(request.body, "ora=1000000000&numero=ab12&dati=%7B%22azione%22%3A%22prova%22%7D&firma=" +
                              hmacSha256(key, "korvane-ordini-1\n1000000000\nab12\n{\"azione\":\"prova\"}"));
}

TEST_F(OrderRequests, NeverUseANumberTwice) {
  host.answers = {"{}", "{}"};
  ASSERT_TRUE(askOrders(host.access, "{}", means()));
  ASSERT_TRUE(askOrders(host.access, "{}", means()));
  EXPECT_EQ(host.numbers[0].size(), 32U);
  EXPECT_EQ(host.numbers[0].find_first_not_of("0123456789abcdef"), std::string::npos);
  FixedRandom other{5, 9, 2};
  host.answers = {"{}"};
  ASSERT_TRUE(askOrders(host.access, "{}", {host, clock, other, {}}));
  EXPECT_NE(host.numbers[0], host.numbers[2]);
}

TEST_F(OrderRequests, TakeAnAnswerOnlyWithTheSignatureOfItsNumber) {
  EXPECT_EQ(told({200, signedText(R"({"a":1})")}), "");
  const std::string broken =
      "La risposta del server è incompleta o non è sua, e non è stata usata.\n"
      "Gli ordini già ricevuti sono rimasti: riprovare.";
  const std::string whole = signedText(R"({"a":1})");
  for (std::size_t cut = 0; cut < whole.size(); ++cut) EXPECT_EQ(told({200, whole.substr(0, cut)}), broken) << cut;
  EXPECT_EQ(told({200, answerSignature(host.access.key, "18", "{}") + "\n{}"}), broken);
  std::string changed = whole;
  changed.back() = ' ';
  EXPECT_EQ(told({200, changed}), broken);
  EXPECT_EQ(told({200, signedText("[1]")}), broken);
  EXPECT_EQ(told({200, signedText("{\"a\":")}), broken);
  const auto read = readOrderAnswer(host.access, {0, "17", ""}, {200, whole.substr(0, 70)});
  EXPECT_EQ(read.error().number, outcomeNotKnown);
}

TEST_F(OrderRequests, SayWhatTheServerRefuses) {
  const std::string publish = "\nPubblicare il negozio una volta con \"Aggiorna il sito...\", poi riprovare.";
  EXPECT_EQ(told({403, "chiave\n"}), "Il server non ha ancora la chiave degli ordini di questo negozio." + publish);
  EXPECT_EQ(told({403, "firma"}), "Il server ha un'altra chiave degli ordini." + publish);
  EXPECT_EQ(told({403, "ora 1000000600\n"}),
            "L'orologio di questo computer è indietro di 10 minuti rispetto a quello del server: regolarlo e "
            "riprovare.");
  EXPECT_EQ(told({403, "ora 999996400"}),
            "L'orologio di questo computer è avanti di 60 minuti rispetto a quello del server: regolarlo e riprovare.");
  EXPECT_EQ(told({403, "ora x"}),
            "L'orologio di questo computer e quello del server segnano ore diverse: regolarlo e riprovare.");
  EXPECT_EQ(told({403, "ora -9223372036854775808"}),
            "L'orologio di questo computer è avanti di moltissimi minuti rispetto a quello del server: regolarlo e "
            "riprovare.");
  EXPECT_EQ(told({403, "numero"}), "Il server ha già ricevuto questa richiesta e non la esegue di nuovo: riprovare.");
  EXPECT_EQ(told({403, "<html>Forbidden"}),
            "Il server rifiuta le richieste di ordini (stato 403): chiedere al fornitore.");
  EXPECT_EQ(told({429, "troppi"}),
            "Il server ha ricevuto da qui troppe richieste con una firma sbagliata e per ora non ne accetta altre.\n"
            "Riprovare fra 15 minuti.");
  EXPECT_EQ(told({500, ""}), "Il server ha risposto con lo stato 500. Riprovare più tardi.");
  EXPECT_EQ(told({200, signedText(R"({"errore":"Il database non risponde"})")}),
            "Il server non ha potuto eseguire la richiesta:\nIl database non risponde");
}

TEST_F(OrderRequests, TellAHostOfAnOlderRelease) {
  const std::string older =
      "Il negozio online è di una versione precedente, che non invia gli ordini a questo computer.\n"
      "Costruire il negozio e pubblicarlo una volta con \"Aggiorna il sito...\", poi riprovare.";
  EXPECT_EQ(told({404, "<html>Not found"}), older);
  EXPECT_EQ(told({200, " \n<!DOCTYPE html><html>"}), older);
}

TEST_F(OrderRequests, TellThatNobodyAnswersOrThatTheUserHasEndedTheWaiting) {
  const auto none = askOrders(host.access, "{}", means());
  ASSERT_FALSE(none);
  EXPECT_EQ(none.error().what,
            "Il server del negozio non risponde. Gli ordini già ricevuti sono rimasti e si possono leggere.\n"
            "Controllare il collegamento a Internet e l'indirizzo del negozio, poi riprovare.\n\n"
            "Dettaglio: Could not resolve host");
  EXPECT_EQ(none.error().number, outcomeNotKnown);
  cancelled = true;
  EXPECT_EQ(askOrders(host.access, "{}", means()).error().kind, ErrorKind::Cancelled);
}

}  // namespace
}  // namespace kv::test
