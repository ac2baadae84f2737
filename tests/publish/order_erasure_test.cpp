// What the shop deletes of customers and orders is deleted from the file of orders too, to the byte, and told once.
#include <gmock/gmock.h>

#include "platform/files/files.h"
#include "support/failing_store.h"
#include "support/order_desk_case.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* goneTwo = R"({"tolti":[{"id":2,"codice":"KV2"},{"id":3,"codice":"KX9"}],"altri":false})";
constexpr const char* elsewhere =
    "Se questi dati si trovano anche in stampe, in file PDF, CSV o XLSX e in copie del computer, eliminarli anche lì.";

class AShopThatDeletes : public OrderDeskCase {
 protected:
  AShopThatDeletes() {
    host.answers = {ordersJson({{1, "2026-05-01 10:00:00", "spedito", "Łucja Nowak"}, {2}, {3}}, "c1")};
    EXPECT_TRUE(desk.open());
    EXPECT_TRUE(desk.fetch());
  }
  std::vector<std::string> names() {
    std::vector<std::string> names;
    const auto list = store.list({}).value();
    for (const OrderSummary& one : list) names.push_back(one.code + " " + one.name);
    return names;
  }
  std::string bytes() const { return readBytes(folder / "ordini.db").value(); }
  static HostOrder nameless() { return {1, "2026-05-01 10:00:00", "spedito", "Cliente eliminato", "25.50", true}; }
};

TEST_F(AShopThatDeletes, TakesACustomersDataFromEachByteOfTheFile) {
  ASSERT_THAT(bytes(), HasSubstr("Nowak"));
  host.answers = {ordersJson({nameless()}, "c2")};
  ASSERT_TRUE(desk.fetch());
  EXPECT_THAT(user.texts(),
              ElementsAre("Il negozio ha eliminato i dati dei clienti di questi ordini. Sono stati eliminati anche da "
                          "questo computer;\ngli ordini restano, senza nome: KV1.\n\n" +
                          std::string(elsewhere)));
  EXPECT_THAT(names(), ElementsAre("KV3 Anna Neri", "KV2 Anna Neri", "KV1 Cliente eliminato"));
  EXPECT_THAT(bytes(), Not(HasSubstr("Nowak")));
  EXPECT_THAT(bytes(), Not(HasSubstr("nowak")));
  host.answers = {ordersJson({nameless()}, "c3")};
  ASSERT_TRUE(desk.fetch());
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(AShopThatDeletes, IsFollowedWhenAChangeOfStateShowsIt) {
  host.answers = {R"({"esito":"diverso","ordine":)" + orderJson(nameless()) + R"(,"mail":""})"};
  EXPECT_TRUE(desk.changeState({"KV1", "nuovo", "pagato", false, true, {}}));
  EXPECT_THAT(user.shown.at(0).text, HasSubstr("senza nome: KV1."));
  EXPECT_THAT(bytes(), Not(HasSubstr("Nowak")));
}

TEST_F(AShopThatDeletes, RemovesItsOrdersHereByNumberAndCode) {
  host.answers = {ordersJson({}, "c2", false, "2-9"), goneTwo};
  ASSERT_TRUE(desk.fetch());
  EXPECT_EQ(host.asked.back(), R"({"azione":"tolti","da":0,"quanti":5000})");
  EXPECT_THAT(names(), ElementsAre("KV3 Anna Neri", "KV1 Łucja Nowak"));
  EXPECT_THAT(user.texts(), ElementsAre("Il negozio ha eliminato questi ordini, e perciò sono stati eliminati anche da "
                                        "questo computer: KV2.\n\n" +
                                        std::string(elsewhere)));
  host.answers = {ordersJson({}, "c2", false, "2-9")};
  ASSERT_TRUE(desk.fetch());
  EXPECT_THAT(host.asked.back(), HasSubstr(R"("azione":"ordini")")) << "the list is read again when it has grown";
}

TEST_F(AShopThatDeletes, IsReadInSteps) {
  host.answers = {ordersJson({}, "c2", false, "2-9"), R"({"tolti":[{"id":3,"codice":"KV3"}],"altri":true})",
                  R"({"tolti":[{"id":1,"codice":"KV1"}],"altri":false})"};
  ASSERT_TRUE(desk.fetch());
  EXPECT_EQ(host.asked.back(), R"({"azione":"tolti","da":1,"quanti":5000})");
  EXPECT_THAT(names(), ElementsAre("KV2 Anna Neri"));
}

TEST_F(AShopThatDeletes, OfAnEarlierReleaseRemovesNothing) {
  host.answers = {ordersJson({{4}}, "c2")};
  ASSERT_TRUE(desk.fetch());
  EXPECT_EQ(names().size(), 4U);
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(AShopThatDeletes, IsToldAfterARunThatWasCut) {
  host.answers = {ordersJson({nameless()}, "c2", true)};  // then the connection is lost
  OrderStore cut(folder.path());
  ASSERT_TRUE(cut.open());
  EXPECT_FALSE(fetchOrders(cut, host.access, {host, clock, random, {}}));
  host.answers = {ordersJson({}, "c3", false, "2-9")};  // and again before the list of the removed
  EXPECT_FALSE(desk.fetch());
  ASSERT_EQ(user.shown.size(), 2U);
  EXPECT_THAT(user.shown[0].text, HasSubstr("non risponde"));
  EXPECT_THAT(user.shown[1].text, HasSubstr("senza nome: KV1."));
  host.answers = {ordersJson({}, "c3", false, "2-9"), goneTwo};
  ASSERT_TRUE(desk.fetch());
  EXPECT_THAT(user.shown.back().text, HasSubstr("questo computer: KV2."));
}

TEST_F(AShopThatDeletes, TakesADamagedFileThatWasPutAsideToo) {
  ASSERT_TRUE(writeBytes(folder / "ordini-danneggiato.db", "Nowak"));
  host.answers = {ordersJson({nameless()}, "c2")};
  ASSERT_TRUE(desk.fetch());
  EXPECT_THAT(user.shown.at(0).text,
              HasSubstr("Anche il file ordini-danneggiato.db, messo da parte, viene eliminato."));
  EXPECT_FALSE(fileExists(folder / "ordini-danneggiato.db"));
}

TEST_F(AShopThatDeletes, ThatNamesWhatIsNoOrderIsRefused) {
  for (const char* wrong : {R"({"tolti":[{"id":0,"codice":"KV1"}]})", R"({"tolti":[{"id":1,"codice":""}]})",
                            R"({"tolti":{},"altri":false})", R"({"tolti":[{"id":1,"codice":"KV1"},5]})",
                            R"({"tolti":[],"altri":true})", "{}"}) {
    host.answers = {ordersJson({}, "c2", false, "1-1"), wrong};
    EXPECT_FALSE(desk.fetch()) << wrong;
    EXPECT_EQ(names().size(), 3U) << wrong;
  }
}

TEST_F(AShopThatDeletes, MeetsAStoreThatFailsAndIsFollowedTheNextTime) {
  const std::vector<std::string> answers{ordersJson({nameless()}, "c2", false, "2-9"), goneTwo};
  constexpr std::int64_t step = 7;  // each kind of call fails once at the least
  bool hasFailed = true;
  for (std::int64_t failing = 1; hasFailed; failing += step) {
    const TempFolder shop;
    OrderStore fresh(shop.path());
    host.answers = {ordersJson({{1, "2026-05-01 10:00:00", "spedito", "Łucja Nowak"}, {2}, {3}}, "c1")};
    const OrderMeans means{host, clock, random, {}};
    ASSERT_TRUE(fetchOrders(fresh, host.access, means));
    ScriptedUser reader;
    OrderDesk there(fresh, {[this] { return Result<OrderAccess>(host.access); }, means, reader});
    {
      FailingStore gate(failing);
      host.answers.assign(answers.begin(), answers.end());
      ignore(there.fetch(), "it is what fails");
      hasFailed = gate.hasFailed();
    }
    host.answers.assign(answers.begin(), answers.end());
    ASSERT_TRUE(there.fetch()) << "at call " << failing;
    EXPECT_EQ(valueOf(fresh.list({})).size(), 2U) << "at call " << failing;
    EXPECT_THAT(readBytes(shop / "ordini.db").value(), Not(HasSubstr("Nowak"))) << "at call " << failing;
    const auto texts = reader.texts();
    const auto tells = [&texts](const char* part) {
      return std::ranges::any_of(texts, [part](const std::string& one) { return one.find(part) != one.npos; });
    };
    EXPECT_TRUE(tells("senza nome: KV1.") && tells("computer: KV2.")) << "at call " << failing;
  }
}

}  // namespace
}  // namespace kv::test
