// Tables of the build database that a shop has only once it uses them: contents, makers, lowest prices.
#include <gtest/gtest.h>

#include "commerce/prices/price_history.h"
#include "platform/files/files.h"
#include "store/catalogue/side_fields.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

class SideRowsOfABuild : public testing::Test {
 protected:
  SideRowsOfABuild() {
    shop.department("cat001");
    shop.department("cat002", {{"genitore", Value("cat001")}, {"livello", Value(std::int64_t{2})}});
  }
  std::int64_t article(const std::string& department, const char* price, const char* offer = nullptr) {
    Row row{{"titolo", Value("Olio")}, {"prezzo", money(price)}};
    if (offer != nullptr) {
      row.push_back({"offerta", Value(true)});
      row.push_back({"offertaprezzo", money(offer)});
    }
    return shop.article(department, row);
  }
  void set(SideField field, const std::string& key, const Value& value) {
    ASSERT_TRUE(prepareSideField(shop.session.catalogue, field));
    ASSERT_TRUE(writeSideField(shop.session.catalogue, field, key, value));
  }
  void build() { ASSERT_EQ(shop.build(), BuildOutcome::Done); }
  /// A build that is published at a day of the test's calendar.
  void publishOn(int day) {
    shop.clock.seconds = at(day);
    build();
    ASSERT_TRUE(recordPublishedPrices(shop.folder(), at(day)));
  }
  static double at(int day) { return 1.7e9 + 86400.0 * day; }
  void price(const char* prezzo) { shop.update("articoli", {{"prezzo", money(prezzo)}}); }
  void offer(const char* offertaprezzo) {
    shop.update("articoli", {{"offerta", Value(true)}, {"offertaprezzo", money(offertaprezzo)}});
  }

  TempShop shop;
};

TEST_F(SideRowsOfABuild, AShopThatUsesNoneHasNoTable) {
  article("cat001", "10", "8");
  build();
  EXPECT_EQ(shop.rows("SELECT name FROM sqlite_schema WHERE name LIKE 'kv%'"), "");
}

TEST_F(SideRowsOfABuild, EmptyTablesOfTheCatalogueAreNotSent) {
  article("cat001", "10");
  for (const SideField field : {SideField::Content, SideField::Maker, SideField::Delivery}) {
    ASSERT_TRUE(prepareSideField(shop.session.catalogue, field));
  }
  build();
  EXPECT_EQ(shop.rows("SELECT name FROM sqlite_schema WHERE name LIKE 'kv%'"), "");
}

TEST_F(SideRowsOfABuild, ContentsOfArticlesOnSaleAreSentWhereTheyAreComplete) {
  article("cat001", "10");
  article("cat001", "10");
  const std::int64_t hidden = article("cat001", "10");
  set(SideField::Content, "1", money("0.25"));
  set(SideField::Measure, "1", Value("kg"));
  set(SideField::Content, "2", money("3"));
  set(SideField::Content, std::to_string(hidden), money("1"));
  set(SideField::Measure, std::to_string(hidden), Value("l"));
  shop.sql("UPDATE articoli SET fuoricatalogo = 1 WHERE ID = " + std::to_string(hidden));
  build();
  EXPECT_EQ(shop.rows("SELECT ID, contenuto, misura FROM kv_unita"), "1|.25|kg");
}

TEST_F(SideRowsOfABuild, AnArticleHasItsOwnMakerOrThatOfTheNearestDepartment) {
  article("cat001", "10");
  article("cat002", "10");
  article("cat002", "10");
  ASSERT_TRUE(prepareSideField(shop.session.catalogue, SideField::Maker));
  shop.sql("INSERT INTO produttori (nome, indirizzo) VALUES ('Forno', 'Via Po 1'), ('Vetreria', ''), ('Nessuno', '')");
  set(SideField::Maker, "cat001", Value("Forno"));
  set(SideField::Maker, "3", Value("Vetreria"));
  build();
  EXPECT_EQ(shop.rows("SELECT ID, produttore FROM kv_sicurezza"), "1|1\n2|1\n3|2");
  EXPECT_EQ(shop.rows("SELECT ID, nome, indirizzo FROM kv_produttori"), "1|Forno|Via Po 1\n2|Vetreria|");
  set(SideField::Maker, "cat002", Value("Vetreria"));
  build();
  EXPECT_EQ(shop.rows("SELECT ID, produttore FROM kv_sicurezza"), "1|1\n2|2\n3|2");
}

TEST_F(SideRowsOfABuild, TimesOfDeliveryAreThoseOfDepartmentsAndOfArticlesThatDiffer) {
  article("cat001", "10");
  article("cat002", "10");
  shop.department("cat003");
  set(SideField::Delivery, "cat001", Value("2-4 giorni"));
  set(SideField::Delivery, "2", Value("Subito"));
  build();
  EXPECT_EQ(shop.rows("SELECT ID, tempo, tempo_l2 FROM kv_consegna"),
            "2|Subito|NULL\ncat001|2-4 giorni|NULL\ncat002|2-4 giorni|NULL");
  set(SideField::Delivery, "cat002", Value("Una settimana"));
  shop.sql("UPDATE articoli SET fuoricatalogo = 1 WHERE ID = 2");
  build();
  EXPECT_EQ(shop.rows("SELECT ID, tempo FROM kv_consegna"), "cat001|2-4 giorni\ncat002|Una settimana");
}

TEST_F(SideRowsOfABuild, ADepartmentWithoutParentPassesOnItsMakerAndTimeLikeOneAtTheTop) {
  article("cat001", "10");
  article("cat002", "10");
  ASSERT_TRUE(prepareSideField(shop.session.catalogue, SideField::Maker));
  shop.sql("INSERT INTO produttori (nome) VALUES ('Forno')");
  set(SideField::Maker, "cat001", Value("Forno"));
  set(SideField::Delivery, "cat001", Value("2-4 giorni"));
  shop.sql("UPDATE categorie SET genitore = NULL WHERE ID = 'cat001'");
  build();
  EXPECT_EQ(shop.rows("SELECT ID, produttore FROM kv_sicurezza"), "1|1\n2|1");
  EXPECT_EQ(shop.rows("SELECT ID, tempo FROM kv_consegna"), "cat001|2-4 giorni\ncat002|2-4 giorni");
}

TEST_F(SideRowsOfABuild, AReducedPriceComesWithTheLowestOfTheThirtyDaysBefore) {
  article("cat001", "20");
  publishOn(0);
  price("15");
  publishOn(20);
  price("18");
  publishOn(25);
  offer("12");
  shop.clock.seconds = at(40);
  build();
  EXPECT_EQ(shop.rows("SELECT ID, minimo, giorni, minimo1 FROM kv_minimi"), "1|15|30|NULL");
}

TEST_F(SideRowsOfABuild, ALaterBuildOfTheSameReductionTellsTheSamePrice) {
  article("cat001", "20");
  publishOn(0);
  offer("12");
  publishOn(10);
  offer("9");
  publishOn(50);
  shop.clock.seconds = at(90);
  build();
  EXPECT_EQ(shop.rows("SELECT minimo, giorni FROM kv_minimi"), "20|10");
}

TEST_F(SideRowsOfABuild, ADiscountOfTheWholeShopIsAReductionOfEachPriceList) {
  shop.article("cat001", {{"titolo", Value("Olio")}, {"prezzo", money("20")}, {"prezzo3", money("16.30")}});
  publishOn(0);
  shop.sql("UPDATE generale SET sconto = 10");
  shop.clock.seconds = at(5);
  build();
  EXPECT_EQ(shop.rows("SELECT minimo, minimo3, minimo1, giorni, giorni3 FROM kv_minimi"), "20|16.3|NULL|5|5");
}

TEST_F(SideRowsOfABuild, AHistoryThatCannotBeReadIsTold) {
  article("cat001", "20", "18");
  ASSERT_TRUE(writeBytes(priceHistoryPath(shop.folder()), "no database"));
  build();
  EXPECT_EQ(shop.rows("SELECT name FROM sqlite_schema WHERE name = 'kv_minimi'"), "");
  ASSERT_FALSE(shop.user.shown.empty());
  EXPECT_TRUE(shop.user.shown.front().text.starts_with("Impossibile leggere i prezzi pubblicati in precedenza"));
}

}  // namespace
}  // namespace kv::test
