// The desk for orders: the server comes first, a conflict is shown with both values, and every failure says what to do.
#include "publish/orders/desk/order_desk.h"

#include <gmock/gmock.h>

#include "platform/files/files.h"
#include "support/failing_store.h"
#include "support/order_desk_case.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// What a change of state or a note is answered with.
std::string changeJson(const std::string& outcome, const HostOrder& order, const std::string& mail = "") {
  return R"({"esito":")" + outcome + R"(","ordine":)" + orderJson(order) + R"(,"mail":")" + mail + R"("})";
}

class TheOrderDesk : public OrderDeskCase {
 protected:
  TheOrderDesk() {
    host.answers = {ordersJson({{1}, {2}}, "c1")};
    EXPECT_TRUE(desk.open());
    EXPECT_TRUE(desk.fetch());
  }
  std::string stateOf(const std::string& code) {
    const auto list = store.list({}).value();
    for (const OrderSummary& one : list) {
      if (one.code == code) return one.state;
    }
    return "(none)";
  }
  static StateChange change(const std::string& to) { return {"KV1", "nuovo", to, true, true, "Grazie"}; }
};

TEST_F(TheOrderDesk, AChangeOfStateReachesTheServerThenTheStore) {
  host.answers = {changeJson("fatto", {1, "2026-05-31 10:20:30", "pagato"}, "Messaggio al cliente: pagato")};
  EXPECT_TRUE(desk.changeState(change("pagato")));
  EXPECT_EQ(host.asked.back(),
            R"({"azione":"stato","codice":"KV1","da":"nuovo","a":"pagato","scorte":true,"scrivi":true,)"
            R"("messaggio":"Grazie"})");
  EXPECT_EQ(stateOf("KV1"), "pagato");
  EXPECT_THAT(user.texts(), ElementsAre("Messaggio al cliente: pagato"));
}

TEST_F(TheOrderDesk, WithoutAnAnswerTheStoreStaysAndTheUserKnows) {
  EXPECT_FALSE(desk.changeState(change("pagato")));
  EXPECT_EQ(stateOf("KV1"), "nuovo");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_THAT(user.shown[0].text, HasSubstr("Il server del negozio non risponde."));
  EXPECT_THAT(user.shown[0].text,
              HasSubstr("Non si sa se il server ha eseguito la modifica: premere \"Aggiorna\" prima di ripeterla."));
}

TEST_F(TheOrderDesk, ARefusalChangesNothingAndSaysSo) {
  host.spoilt[2] = [](Result<HttpResponse>& answer) { answer = HttpResponse{403, "chiave"}; };
  EXPECT_FALSE(desk.changeState(change("pagato")));
  EXPECT_THAT(user.texts(),
              ElementsAre("Il server non ha ancora la chiave degli ordini di questo negozio.\nPubblicare il negozio "
                          "una volta con \"Aggiorna il sito...\", poi riprovare."));
}

TEST_F(TheOrderDesk, AConflictShowsBothValuesAndKeepsTheServersByDefault) {
  host.answers = {changeJson("diverso", {1, "2026-05-31 10:20:30", "annullato"})};
  EXPECT_TRUE(desk.changeState(change("pagato")));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text,
            "Lo stato dell'ordine KV1 è cambiato nel frattempo sul server.\n\nQui: nuovo\nSul server: annullato\n"
            "Scelto: pagato\n\nNulla è stato modificato. Si desidera impostare comunque il valore scelto?");
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(stateOf("KV1"), "annullato");
  EXPECT_EQ(host.asked.size(), 2U);
}

TEST_F(TheOrderDesk, AConflictIsRepeatedFromTheServersValueOnYes) {
  host.answers = {changeJson("diverso", {1, "2026-05-31 10:20:30", "annullato"}),
                  changeJson("fatto", {1, "2026-05-31 10:20:30", "pagato"})};
  user.answers = {Answer::Yes};
  EXPECT_TRUE(desk.changeState(change("pagato")));
  EXPECT_THAT(host.asked.back(), HasSubstr(R"("da":"annullato","a":"pagato")"));
  EXPECT_EQ(stateOf("KV1"), "pagato");
}

TEST_F(TheOrderDesk, AStateThatTheServerHasAlreadyIsTold) {
  host.answers = {changeJson("diverso", {1, "2026-05-31 10:20:30", "pagato"})};
  EXPECT_TRUE(desk.changeState(change("pagato")));
  EXPECT_THAT(user.texts(), ElementsAre("L'ordine aveva già questo stato sul server: nulla è stato modificato, e "
                                        "nessun messaggio è partito."));
  EXPECT_EQ(stateOf("KV1"), "pagato");
}

TEST_F(TheOrderDesk, AnOrderThatIsGoneStaysReadable) {
  host.answers = {R"({"esito":"sconosciuto"})"};
  EXPECT_TRUE(desk.changeState(change("pagato")));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text,
            "Il server non ha più l'ordine KV1. Quello già ricevuto resta leggibile qui.\n\nSi desidera eliminarlo "
            "anche da questo computer, con i dati del cliente?");
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(stateOf("KV1"), "nuovo");
}

TEST_F(TheOrderDesk, AnOrderThatIsGoneIsRemovedHereOnYes) {
  host.answers = {R"({"esito":"sconosciuto"})"};
  user.answers = {Answer::Yes};
  EXPECT_FALSE(desk.addNote({"KV1", "x"}));
  EXPECT_EQ(stateOf("KV1"), "(none)");
  EXPECT_EQ(stateOf("KV2"), "nuovo");
}

TEST_F(TheOrderDesk, AStoreThatFailsAfterTheServerIsTold) {
  host.answers = {changeJson("fatto", {1, "2026-05-31 10:20:30", "pagato"})};
  FailingStore gate(1);
  gate.onlyFor("INSERT INTO ordini");
  EXPECT_TRUE(desk.changeState(change("pagato")));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_THAT(user.shown[0].text, HasSubstr("La modifica è stata eseguita sul server, ma non è stata annotata qui"));
}

TEST_F(TheOrderDesk, ANoteReachesTheServerThenTheStore) {
  host.answers = {changeJson("fatto", {1})};
  EXPECT_TRUE(desk.addNote({"KV1", "Chiamare \"domani\""}));
  EXPECT_EQ(host.asked.back(), R"({"azione":"nota","codice":"KV1","testo":"Chiamare \"domani\""})");
  EXPECT_FALSE(desk.addNote({"KV1", "ancora"}));
  EXPECT_THAT(user.shown.back().text, HasSubstr("Non si sa se"));
}

TEST_F(TheOrderDesk, StockIsSearchedAndSet) {
  host.answers = {R"({"voci":[{"chiave":"7","codice":"T1","nome":"Tazza","voce":"1|12"}],"altri":true})",
                  R"({"esito":"fatto","voce":"1|20"})"};
  const auto found = desk.stock({StockKind::Articles, "ta", 0});
  ASSERT_TRUE(found);
  EXPECT_EQ(host.asked.back(), R"({"azione":"scorte","tipo":"A","cerca":"ta","da":0,"quanti":200})");
  EXPECT_EQ(found->items[0].name, "Tazza");
  EXPECT_TRUE(found->more);
  EXPECT_EQ(desk.setStock({StockKind::Articles, "7", "1|12", "1|20"}, "T1"), "1|20");
  EXPECT_EQ(host.asked.back(), R"({"azione":"scorta","tipo":"A","chiave":"7","prima":"1|12","dopo":"1|20"})");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(TheOrderDesk, AConflictOfStockShowsBothValues) {
  host.answers = {R"({"esito":"diverso","voce":"1|11"})", R"({"esito":"diverso","voce":"0|"})",
                  R"({"esito":"fatto","voce":"1|"})"};
  EXPECT_EQ(desk.setStock({StockKind::Values, "7.2.A", "1|12", "1|20"}, "T1"), "1|11");
  EXPECT_EQ(user.shown[0].text,
            "La disponibilità di T1 è cambiata nel frattempo sul server.\n\nQui: 12\nSul server: 11\nScelto: 20\n\n"
            "Nulla è stato modificato. Si desidera impostare comunque il valore scelto?");
  user.answers = {Answer::Yes};
  EXPECT_EQ(desk.setStock({StockKind::Values, "7.2.A", "1|12", "1|"}, "T1"), "1|");
  EXPECT_THAT(host.asked.back(), HasSubstr(R"("prima":"0|","dopo":"1|")"));
}

TEST_F(TheOrderDesk, StockThatTheServerDoesNotKnowIsTold) {
  host.answers = {R"({"esito":"sconosciuto","voce":""})"};
  EXPECT_FALSE(desk.setStock({StockKind::Articles, "7", "1|12", "1|20"}, "T1"));
  EXPECT_THAT(user.texts(), ElementsAre("Il server non conosce più T1: nulla è stato modificato. Premere \"Leggi dal "
                                        "server\" per leggere di nuovo l'elenco."));
}

TEST_F(TheOrderDesk, TellsNoMoreOfAServersTextThanAWindowShows) {
  host.answers = {R"({"errore":"<b>\u001b[2J)" + std::string(5000, 'x') + R"("})",
                  changeJson("fatto", {1, "2026-05-31 10:20:30", "pagato"}, std::string(5000, 'y'))};
  EXPECT_FALSE(desk.changeState(change("pagato")));
  EXPECT_EQ(user.shown[0].text,
            "Il server non ha potuto eseguire la richiesta:\n<b> [2J" + std::string(493, 'x') + "...");
  EXPECT_TRUE(desk.changeState(change("pagato")));
  EXPECT_EQ(user.shown[1].text, std::string(500, 'y') + "...");
}

TEST_F(TheOrderDesk, ACancelledFetchSaysNothing) {
  user.cancelAtYield = user.yields + 1;
  EXPECT_FALSE(desk.fetch());
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(TheOrderDesk, ADamagedFileIsTold) {
  ASSERT_TRUE(writeBytes(folder / "ordini.db", "x"));
  OrderStore damaged(folder.path());
  OrderDesk other(damaged, {[this] { return Result<OrderAccess>(host.access); }, {host, clock, random, {}}, user});
  EXPECT_TRUE(other.open());
  EXPECT_THAT(user.texts(), ElementsAre(HasSubstr("Il file ordini.db era danneggiato")));
}

}  // namespace
}  // namespace kv::test
