// Copying a price list into others: columns, order, flags, departments, and what the numbers before it say.
#include <gmock/gmock.h>

#include "commerce/bulk_fixture.h"
#include "commerce/replication/list_replication.h"
#include "platform/database/changes/changes.h"
#include "support/failing_store.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReplicatingAList : public BulkFixture {
 protected:
  ReplicatingAList() {
    sql("INSERT INTO articoli (ID, titolo, prezzo, prezzo3, offerta, offertaprezzo, scq, scq3, opzione1, opzione4,"
        " opzione1_3) VALUES (1, 'Vaso', 199900, 50000, 1, 150000, 1, 0, 2, 3, 7),"
        " (2, 'Tazza', NULL, 60000, NULL, NULL, NULL, 1, NULL, 1, 8);"
        "INSERT INTO categorie (ID, sconto, sconto3, inaccessibile, inaccessibile3) VALUES ('cat001', 10, 5, 1, 0)");
    wanted.percentage = "0";
  }
  BulkEnd run() { return ReplicaListino(catalogue, wanted, user); }
  void to(std::initializer_list<std::size_t> lists) {
    wanted.destinations = {};
    for (const std::size_t list : lists) wanted.destinations[list] = true;
  }
  std::string departments() {
    return read("SELECT sconto, sconto3, sconto5, inaccessibile, inaccessibile3, inaccessibile5 FROM categorie");
  }

  ListReplication wanted;
};

TEST_F(ReplicatingAList, RefusesAPercentageBeforeTheDestinations) {
  wanted.percentage = "200";
  EXPECT_EQ(run(), BulkEnd::Stay);
  wanted.percentage = "+5";
  EXPECT_EQ(run(), BulkEnd::Stay);
  EXPECT_THAT(user.shown,
              ElementsAre(said("Percentuale non valida (deve essere compresa tra -100 e +100)", Icon::Exclamation),
                          said("E' necessario selezionare almeno un listino di destinazione", Icon::Exclamation)));
}

TEST_F(ReplicatingAList, FromListZeroToThreeWritesTheColumnsOfThree) {
  to({3});
  wanted.variants = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT prezzo, prezzo3, opzione1_3, opzione4_3, opzione1, prezzo1 FROM articoli ORDER BY ID"),
            "199900|199900|2|3|2|null\nnull|0|null|1|null|null\n");
}

TEST_F(ReplicatingAList, FromListThreeToZeroWritesTheBareColumns) {
  to({0});
  wanted.source = 3;
  wanted.variants = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT prezzo, opzione1, opzione4, prezzo3, opzione1_3 FROM articoli ORDER BY ID"),
            "50000|7|null|50000|7\n60000|8|null|60000|8\n");
}

TEST_F(ReplicatingAList, ReplicatesOnlyPricesUnlessAskedForMore) {
  to({5});
  wanted.percentage = "+10";
  wanted.whole = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT prezzo5, offerta5, offertaprezzo5, scq5, opzione1_5 FROM articoli ORDER BY ID"),
            "220000|null|null|null|null\n0|null|null|null|null\n");
}

TEST_F(ReplicatingAList, ReplicatesOffersWithTheirPrices) {
  to({5});
  wanted.offers = true;
  wanted.percentage = "-50";
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT offerta5, offertaprezzo5 FROM articoli ORDER BY ID"), "1|75000\nnull|0\n");
}

TEST_F(ReplicatingAList, KeepsTheFlagOfQuantityDiscountsAtAnyFactorButZero) {
  to({5});
  wanted.quantityDiscounts = true;
  for (const char* percentage : {"0", "-99,9", "+100"}) {
    wanted.percentage = percentage;
    wanted.whole = true;
    EXPECT_EQ(run(), BulkEnd::Done);
    EXPECT_EQ(read("SELECT scq5 FROM articoli ORDER BY ID"), "1\n0\n") << percentage;
  }
}

TEST_F(ReplicatingAList, ByMinusHundredClearsTheFlagsOfQuantityDiscounts) {
  to({3});
  wanted.quantityDiscounts = true;
  wanted.percentage = "-100";
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT scq, scq3, prezzo3 FROM articoli ORDER BY ID"), "1|0|0\nnull|0|0\n");
}

TEST_F(ReplicatingAList, ASourceAmongTheDestinationsIsChangedInPlaceAndReadChangedAfterIt) {
  wanted.source = 3;
  to({1, 3, 5});
  wanted.percentage = "+10";
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT prezzo1, prezzo3, prezzo5 FROM articoli ORDER BY ID"),
            "55000|55000|60500\n66000|66000|72600\n");
}

TEST_F(ReplicatingAList, DiscountsOfDepartmentsAloneWalkAndWriteNothing) {
  to({3, 5});
  wanted.departmentDiscounts = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(departments(), "10.0|5.0|null|1|0|null\n");
}

TEST_F(ReplicatingAList, RestrictionsGoByTheirBox) {
  to({3, 5});
  wanted.restrictions = true;
  wanted.percentage = "-100";
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(departments(), "10.0|5.0|null|1|1|1\n");
  wanted.quantityDiscounts = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(departments(), "10.0|10.0|10.0|1|1|1\n");
}

TEST_F(ReplicatingAList, DiscountsOfDepartmentsGoWithTheQuantityDiscounts) {
  to({3});
  wanted.quantityDiscounts = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(departments(), "10.0|5.0|null|1|0|null\n");
  wanted.departmentDiscounts = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(departments(), "10.0|10.0|null|1|0|null\n");
}

TEST_F(ReplicatingAList, RefusesAPriceBeyondTheRangeBeforeAnythingIsWritten) {
  sql("UPDATE articoli SET prezzo3 = 5000000000000000000 WHERE ID = 2");
  wanted.source = 3;
  wanted.percentage = "+50";
  to({1, 3});
  const std::string before = everything();
  EXPECT_EQ(run(), BulkEnd::Done);
  sql("UPDATE articoli SET prezzo1 = NULL, prezzo3 = 50000 WHERE ID = 1;"
      "UPDATE articoli SET prezzo1 = NULL, prezzo3 = 5000000000000000000 WHERE ID = 2");
  ASSERT_EQ(everything(), before);
  to({1, 3, 4});  // the third one takes the factor twice
  EXPECT_EQ(run(), BulkEnd::Stay);
  EXPECT_THAT(user.texts(), ElementsAre(testing::HasSubstr("Tazza")));
  EXPECT_EQ(everything(), before);
  const auto count = countReplication(catalogue, wanted, ruleOfPercentage(50, false));
  ASSERT_TRUE(count);
  EXPECT_THAT(count->text(), testing::EndsWith("; oltre il massimo consentito: 1 (Tazza)"));
}

TEST_F(ReplicatingAList, RowsDoneBeforeAFailureStay) {
  to({3});
  FailingStore failing(3);
  failing.onlyFor("UPDATE articoli");
  EXPECT_EQ(run(), BulkEnd::Interrupted);
  EXPECT_EQ(read("SELECT prezzo3 FROM articoli ORDER BY ID"), "199900\n60000\n");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
}

/// The same by one field after the other, as it is told.
struct PlainArticle {
  std::array<std::optional<std::int64_t>, listini> prices, flags;
};

TEST_F(ReplicatingAList, EqualsAWalkFieldByFieldAndItsCountAndUndoHold) {
  std::mt19937 chance(seed());
  for (int round = 0; round < operationsOf(60); ++round) {
    sql("DELETE FROM articoli; INSERT INTO articoli (ID, titolo) VALUES (1, 'A')");
    PlainArticle plain;
    std::string assignments;
    for (std::size_t list = 0; list < listini; ++list) {
      const std::string price = randomPrice(chance);
      const std::string flag = upTo(chance, 1) == 1 ? "1" : "0";
      const std::string suffix(listinoSuffixes[list]);
      assignments += (list == 0 ? "prezzo" : ", prezzo") + suffix + " = " + price + ", scq" + suffix + " = " + flag;
      if (price != "NULL") plain.prices[list] = std::stoll(price);
      plain.flags[list] = std::stoll(flag);
    }
    sql("UPDATE articoli SET " + assignments);
    wanted = {};
    wanted.source = upTo(chance, 9);
    wanted.whole = upTo(chance, 1) == 1;
    wanted.quantityDiscounts = true;
    wanted.percentage = std::to_string(upTo(chance, 200) - 100);
    for (bool& list : wanted.destinations) list = upTo(chance, 2) == 0;
    if (wanted.destinations == PriceLists{}) wanted.destinations[4] = true;
    const PriceRule rule = ruleOfPercentage(readPercentage(wanted.percentage).value(), wanted.whole);
    const PlainArticle before = plain;
    const auto source = static_cast<std::size_t>(wanted.source);
    std::size_t changed = 0;
    for (std::size_t list = 0; list < listini; ++list) {
      if (!wanted.destinations[list]) continue;
      const auto from = plain.prices[source];
      plain.prices[list] =
          Trasforma(from ? std::optional(Money::ofTenThousandths(*from)) : std::nullopt, rule).tenThousandths();
      plain.flags[list] = rule.factor == 0 ? 0 : *plain.flags[source];
    }
    std::string expected;
    for (std::size_t list = 0; list < listini; ++list) {
      changed +=
          (plain.prices[list] != before.prices[list] ? 1U : 0U) + (plain.flags[list] != before.flags[list] ? 1U : 0U);
      expected += (plain.prices[list] ? std::to_string(*plain.prices[list]) : "null") + "|" +
                  std::to_string(*plain.flags[list]) + (list == 9 ? "\n" : "|");
    }
    std::string query = "SELECT ";
    for (std::size_t list = 0; list < listini; ++list) {
      const std::string suffix(listinoSuffixes[list]);
      query += (list == 0 ? "prezzo" : ", prezzo") + suffix + ", scq" + suffix;
    }
    const auto count = countReplication(catalogue, wanted, rule);
    ASSERT_TRUE(count);
    EXPECT_EQ(count->fields, changed);
    const std::string whole = everything();
    ChangeRecorder recorder(catalogue, [](std::string_view) { return true; });
    ASSERT_EQ(run(), BulkEnd::Done);
    EXPECT_EQ(read(query + " FROM articoli"), expected);
    const auto changes = checked(recorder.take());
    const std::string after = everything();
    ASSERT_TRUE(recorder.revert(*changes));
    EXPECT_EQ(everything(), whole);
    ASSERT_TRUE(recorder.repeat(*changes));
    EXPECT_EQ(everything(), after);
  }
}

}  // namespace
}  // namespace kv::test
