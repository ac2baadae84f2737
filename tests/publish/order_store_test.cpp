// The file of received orders: nothing is lost or doubled wherever a run is cut, it is read offline, and a damaged one
// is put aside.
#include "publish/orders/store/order_store.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/files/files.h"
#include "publish/orders/desk/order_fetch.h"
#include "support/failing_store.h"
#include "support/fixed_clock.h"
#include "support/order_host.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TheOrderStore : public ::testing::Test {
 protected:
  OrderMeans means() {
    return {host, clock, random, [this] { return !cancelled; }};
  }
  Result<FetchedOrders> fetch(OrderStore& store) { return fetchOrders(store, host.access, means()); }
  Result<FetchedOrders> fetch() {
    OrderStore store(folder.path());
    EXPECT_TRUE(store.open());
    return fetch(store);
  }
  /// "code state new" of the orders that pass a filter, read from the file.
  std::vector<std::string> listed(const OrderLookup& filter = {}) {
    OrderStore store(folder.path());
    EXPECT_TRUE(store.open());
    std::vector<std::string> lines;
    const auto list = store.list(filter).value();
    for (const OrderSummary& one : list) {
      lines.push_back(one.code + " " + one.state + (one.isNew ? " new" : ""));
    }
    return lines;
  }
  void fill() {
    host.answers = {ordersJson({{1, "2026-05-01 10:00:00", "spedito", "Ugo Bassi", "10.00"},
                                {2, "2026-05-31 00:00:00", "pagato", "Anna Neri", "20.00"},
                                {3, "2026-05-31 23:59:59", "nuovo", "Élise d'Aubigné", "30.00"}},
                               "c1")};
    ASSERT_TRUE(fetch());
  }

  TempFolder folder;
  OrderHost host;
  FixedClock clock;
  FixedRandom random;
  bool cancelled = false;
};

TEST_F(TheOrderStore, IsNoFileUntilTheFirstAnswer) {
  OrderStore store(folder.path());
  ASSERT_TRUE(store.open());
  EXPECT_FALSE(store.isOpen());
  EXPECT_THAT(store.list({}).value(), IsEmpty());
  EXPECT_EQ(store.countNew().value(), 0);
  EXPECT_FALSE(fetch(store));
  EXPECT_FALSE(fileExists(store.path()));
}

TEST_F(TheOrderStore, IsReadableByItsOwnerAlone) {
  fill();
  for (const char* name : {"ordini.db"}) {
    struct stat status {};
    ASSERT_EQ(::stat((folder / name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
  }
}

TEST_F(TheOrderStore, KeepsWholeOrdersForReadingOffline) {
  fill();
  OrderStore store(folder.path());
  ASSERT_TRUE(store.open());
  const auto list = checked(store.list({}));
  ASSERT_EQ(list->size(), 3U);
  EXPECT_EQ(list->front().total, Money::ofUnits(30));
  const auto order = store.order(list->front().row);
  ASSERT_TRUE(order);
  EXPECT_EQ(order->name, "Élise d'Aubigné");
  EXPECT_EQ(order->fields.at("Citta"), "Forlì");
  ASSERT_EQ(order->lines.size(), 1U);
  EXPECT_EQ(order->lines[0].shopTitle, "Tazza");
  EXPECT_EQ(order->lines[0].price, Money::ofTenThousandths(102500));
  EXPECT_EQ(order->totals.at("spese"), Money::ofUnits(5));
  EXPECT_EQ(order->notes[0].text, "Chiamare");
  EXPECT_EQ(store.order(99).error().kind, ErrorKind::Missing);
}

TEST_F(TheOrderStore, FindsByTextStateAndDays) {
  fill();
  EXPECT_THAT(listed(), ElementsAre("KV3 nuovo new", "KV2 pagato new", "KV1 spedito new"));
  EXPECT_THAT(listed({"ÉLISE", {}, {}, {}}), ElementsAre("KV3 nuovo new"));
  EXPECT_THAT(listed({" kv1 ", {}, {}, {}}), ElementsAre("KV1 spedito new"));
  EXPECT_EQ(listed({"rossa", {}, {}, {}}).size(), 3U);
  EXPECT_EQ(listed({"forlì", {}, {}, {}}).size(), 3U);
  EXPECT_THAT(listed({"%", {}, {}, {}}), IsEmpty());
  EXPECT_THAT(listed({{}, "pagato", {}, {}}), ElementsAre("KV2 pagato new"));
  EXPECT_THAT(listed({{}, "da evadere", {}, {}}), ElementsAre("KV3 nuovo new"));
  EXPECT_THAT(listed({{}, {}, "2026-05-31", {}}), ElementsAre("KV3 nuovo new", "KV2 pagato new"));
  EXPECT_THAT(listed({{}, {}, {}, "2026-05-30"}), ElementsAre("KV1 spedito new"));
  EXPECT_THAT(listed({{}, {}, "2026-05-31", "2026-05-31"}), ElementsAre("KV3 nuovo new", "KV2 pagato new"));
}

TEST_F(TheOrderStore, AsksOnlyForWhatIsNew) {
  fill();
  host.answers = {ordersJson({{3, "2026-05-31 23:59:59", "pagato"}, {4, "2026-06-01 08:00:00"}}, "c2")};
  const auto fetched = fetch();
  ASSERT_TRUE(fetched);
  EXPECT_EQ(fetched->added, 1);
  EXPECT_EQ(fetched->changed, 1);
  EXPECT_EQ(host.asked[0], R"({"azione":"ordini","dopo":"","quanti":200})");
  EXPECT_EQ(host.asked[1], R"({"azione":"ordini","dopo":"c1","quanti":200})");
  EXPECT_THAT(listed(), ElementsAre("KV4 nuovo new", "KV3 pagato new", "KV2 pagato new", "KV1 spedito new"));
}

TEST_F(TheOrderStore, NewIsWhatCameSinceTheListWasLookedAt) {
  fill();
  {
    OrderStore store(folder.path());
    ASSERT_TRUE(store.open());
    EXPECT_EQ(store.countNew().value(), 3);
    ASSERT_TRUE(store.markSeen());
    EXPECT_EQ(store.countNew().value(), 0);
  }
  host.answers = {ordersJson({{3, "2026-05-31 23:59:59", "pagato"}, {4, "2026-06-01 08:00:00"}}, "c2")};
  ASSERT_TRUE(fetch());
  EXPECT_THAT(listed(), ElementsAre("KV4 nuovo new", "KV3 pagato", "KV2 pagato", "KV1 spedito"));
}

TEST_F(TheOrderStore, ARunThatIsCutGoesOnWhereItWas) {
  host.answers = {ordersJson({{1}, {2}}, "c1", true), ordersJson({{3}}, "c2", true), ordersJson({{4}}, "c3")};
  host.onRequest = [this] { cancelled = host.asked.size() == 2; };
  EXPECT_EQ(fetch().error().kind, ErrorKind::Cancelled);
  EXPECT_EQ(listed().size(), 2U);
  host.answers = {ordersJson({{3}}, "c2", true)};  // then the connection is lost
  host.onRequest = nullptr;
  cancelled = false;
  EXPECT_EQ(fetch().error().kind, ErrorKind::Other);
  host.answers = {ordersJson({{4}}, "c3")};
  ASSERT_TRUE(fetch());
  EXPECT_EQ(listed().size(), 4U);
  EXPECT_EQ(host.asked.back(), R"({"azione":"ordini","dopo":"c2","quanti":200})");
}

TEST_F(TheOrderStore, TheCursorIsThatOfOneServer) {
  fill();
  host.access.address = "https://www.b.it/remoto.php";
  host.answers = {ordersJson({{1}}, "b1")};
  ASSERT_TRUE(fetch());
  EXPECT_EQ(host.asked.back(), R"({"azione":"ordini","dopo":"","quanti":200})");
}

TEST_F(TheOrderStore, AServerSetUpAgainDoesNotReplaceOrdersOfTheSameNumbers) {
  fill();
  std::string other = ordersJson({{1, "2026-07-01 10:00:00"}}, "c2");
  other.replace(other.find("KV1"), 3, "KX1");
  host.answers = {other};
  ASSERT_TRUE(fetch());
  EXPECT_EQ(listed().size(), 4U);
}

TEST_F(TheOrderStore, AServerThatRepeatsItsAnswerIsLeft) {
  host.answers = {ordersJson({{1}}, "c1", true), ordersJson({{1}}, "c1", true)};
  EXPECT_EQ(fetch().error().kind, ErrorKind::Malformed);
  EXPECT_EQ(listed().size(), 1U);
}

TEST_F(TheOrderStore, AServerThatPromisesMoreWithoutAnOrderIsLeft) {
  int cursor = 0;
  host.onRequest = [&] { host.answers = {ordersJson({}, "c" + std::to_string(++cursor), true)}; };
  EXPECT_EQ(fetch().error().kind, ErrorKind::Malformed);
  EXPECT_EQ(host.asked.size(), 1U);
}

TEST_F(TheOrderStore, TwoRunsAtOnceDoNotTakeTheCursorBack) {
  fill();
  OrderStore store(folder.path());
  ASSERT_TRUE(store.open());
  host.answers = {ordersJson({{4}}, "c2"), ordersJson({{5}}, "c3")};
  // Another window fetches while the first answer is under way.
  host.onRequest = [this] {
    host.onRequest = nullptr;
    host.answers.push_front(ordersJson({{6}}, "c9"));
    ASSERT_TRUE(fetch());
  };
  const auto late = fetch(store);
  ASSERT_FALSE(late);
  EXPECT_EQ(late.error().kind, ErrorKind::InUse);
  EXPECT_EQ(store.cursor(host.access.address).value(), "c9");
}

TEST_F(TheOrderStore, AFailureOfTheStoreLosesAndDoublesNothing) {
  const std::vector<std::string> answers{ordersJson({{1}, {2}}, "c1", true), ordersJson({{2}, {3}}, "c2")};
  bool hasFailed = true;
  int rounds = 0;
  for (std::int64_t failing = 1; hasFailed; ++failing, ++rounds) {
    const TempFolder shop;
    {
      OrderStore store(shop.path());
      FailingStore gate(failing);
      host.answers.assign(answers.begin(), answers.end());
      const bool done = store.open() && fetch(store);
      hasFailed = gate.hasFailed();
      EXPECT_TRUE(done || hasFailed);
    }
    // The next run goes on from what is kept.
    OrderStore store(shop.path());
    ASSERT_TRUE(store.open());
    EXPECT_FALSE(store.wasDamaged()) << "at call " << failing;
    const std::string cursor = store.cursor(host.access.address).value();
    EXPECT_EQ(valueOf(store.list({})).size(), cursor.empty() ? 0U : cursor == "c1" ? 2U : 3U) << "at call " << failing;
    host.answers.clear();
    if (cursor.empty()) host.answers.push_back(answers[0]);
    if (cursor != "c2") host.answers.push_back(answers[1]);
    if (cursor == "c2") host.answers.push_back(ordersJson({}, "c2"));
    ASSERT_TRUE(fetch(store)) << "at call " << failing;
    EXPECT_EQ(valueOf(store.list({})).size(), 3U);
  }
  EXPECT_GT(rounds, 20);
}

TEST_F(TheOrderStore, ADamagedFileIsPutAsideAndFetchedWhole) {
  for (const char* bytes : {"no database at all", ""}) {
    fill();
    ASSERT_TRUE(writeBytes(folder / "ordini.db", bytes));
    OrderStore store(folder.path());
    ASSERT_TRUE(store.open());
    EXPECT_TRUE(store.wasDamaged());
    EXPECT_FALSE(store.isOpen());
    EXPECT_EQ(readBytes(folder / "ordini-danneggiato.db").value(), bytes);
    host.answers = {ordersJson({{1}, {2}}, "c5")};
    ASSERT_TRUE(fetch(store));
    EXPECT_EQ(host.asked.back(), R"({"azione":"ordini","dopo":"","quanti":200})");
    EXPECT_EQ(valueOf(store.list({})).size(), 2U);
    ASSERT_TRUE(deleteFile(folder / "ordini.db"));
  }
}

TEST_F(TheOrderStore, AFileThatIsDeletedWhileOpenIsMadeAgain) {
  fill();
  OrderStore store(folder.path());
  ASSERT_TRUE(store.open());
  ASSERT_TRUE(deleteFile(folder / "ordini.db"));
  EXPECT_EQ(valueOf(store.list({})).size(), 3U) << "read from what is still open";
  host.answers = {ordersJson({{1}, {2}, {3}, {4}}, "c9")};
  ASSERT_TRUE(fetch(store));
  EXPECT_EQ(host.asked.back(), R"({"azione":"ordini","dopo":"","quanti":200})");
  EXPECT_EQ(valueOf(store.list({})).size(), 4U);
  EXPECT_TRUE(fileExists(folder / "ordini.db"));
}

TEST_F(TheOrderStore, APageThatIsDamagedIsFound) {
  std::vector<HostOrder> many;
  for (int id = 1; id <= 60; ++id) many.push_back({id});
  host.answers = {ordersJson(many, "c1")};
  ASSERT_TRUE(fetch());
  std::string bytes = readBytes(folder / "ordini.db").value();
  ASSERT_GT(bytes.size(), std::size_t{40'000});
  for (std::size_t at = 20'000; at < 36'000; ++at) bytes[at] = '\x55';
  ASSERT_TRUE(writeBytes(folder / "ordini.db", bytes));
  OrderStore store(folder.path());
  ASSERT_TRUE(store.open());
  EXPECT_TRUE(store.wasDamaged());
}

TEST_F(TheOrderStore, AnOrderThatIsDamagedInItselfIsFetchedAgain) {
  fill();
  {
    auto file = Database::open(folder / "ordini.db", OpenMode::Shared);
    ASSERT_TRUE(file && file->execute("UPDATE ordini SET dati = replace(dati, '\"id\":2', '\"id\";2') WHERE id = 2"));
  }
  OrderStore store(folder.path());
  ASSERT_TRUE(store.open());
  EXPECT_FALSE(store.wasDamaged()) << "its pages are whole";
  EXPECT_EQ(valueOf(store.list({})).size(), 3U);
  const auto refused = store.orders({});
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, ErrorKind::Corrupt);
  EXPECT_TRUE(orderStoreFailureText(refused.error()).starts_with("Il file ordini.db è danneggiato: "));
  fill();
  EXPECT_EQ(host.asked.back(), R"({"azione":"ordini","dopo":"","quanti":200})");
  EXPECT_EQ(valueOf(store.orders({})).size(), 3U);
  EXPECT_EQ(valueOf(store.countNew()), 3);
}

TEST_F(TheOrderStore, AnAnswerOutOfBoundsIsRefusedWhole) {
  const std::string good = ordersJson({{1}, {2}}, "c1");
  const auto changed = [&good](const std::string& what, const std::string& by) {
    std::string text = good;
    text.replace(text.rfind(what), what.size(), by);
    return text;
  };
  for (const std::string& answer :
       {changed(R"("id":2)", R"("id":0)"), changed(R"("id":2)", R"("id":"x")"),
        changed(R"("codice":"KV2")", R"("codice":"")"), changed("2026-05-31 10:20:30", "31/05/2026"),
        changed(R"("totale":"25.50")", R"("totale":"molto")"), changed(R"("quantita":2)", R"("quantita":-2)"),
        changed(R"("importo":"10.25")", R"("importo":null)"), changed(R"("spese":"5.00")", R"("spese":"x")"),
        changed(R"("recessi":[])", R"("recessi":[{"righe":[{"riga":0,"quantita":-1}]}])"),
        changed(R"("recessi":[])", R"("recessi":[{"righe":[5]}])"), std::string(R"({"ordini":5,"dopo":"c1"})"),
        std::string(R"({"dopo":"c1"})"), std::string("{}")}) {
    host.answers = {answer};
    const auto fetched = fetch();
    ASSERT_FALSE(fetched) << answer;
    EXPECT_EQ(fetched.error().kind, ErrorKind::Malformed);
    EXPECT_THAT(listed(), IsEmpty()) << answer;
  }
}

TEST_F(TheOrderStore, RemembersWhetherTheStartTells) {
  fill();
  OrderStore store(folder.path());
  ASSERT_TRUE(store.open());
  EXPECT_TRUE(store.notifiesAtStart().value());
  ASSERT_TRUE(store.setNotifiesAtStart(false));
  EXPECT_FALSE(store.notifiesAtStart().value());
  EXPECT_EQ(store.askedAt().value(), 1'000'000'000);
}

}  // namespace
}  // namespace kv::test
