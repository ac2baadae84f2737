// Offers at the list price: what a build writes of them beside the prices.

#include <gtest/gtest.h>

#include "builder/run/make_pages.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

TEST(LevelOffersTest, AnOfferAtTheListPriceIsToldBesideTheRowsThatCannotTellIt) {
  TempShop shop;
  shop.department("cat001", {{"sconto", 10.0}, {"sconto2", 5.0}, {"sconto3", 0.0}});
  for (int i = 0; i < 5; ++i) shop.article("cat001");
  shop.sql("UPDATE articoli SET prezzo = 100000, prezzo2 = 90000, prezzo3 = 90000");
  shop.sql(
      "UPDATE articoli SET offerta = 1, offertaprezzo = 100000, offerta2 = 1, offertaprezzo2 = 90000 WHERE ID = 2");
  shop.sql("UPDATE articoli SET offerta3 = 1, offertaprezzo3 = 90000 WHERE ID = 2");
  shop.sql("UPDATE articoli SET offerta = 1, offertaprezzo = 80000 WHERE ID = 1");
  shop.sql("UPDATE articoli SET offerta = 0, offertaprezzo = 100000 WHERE ID = 3");
  shop.sql("UPDATE articoli SET offerta = 1, offertaprezzo = 100000, fuoricatalogo = 1 WHERE ID = 4");
  shop.sql("UPDATE articoli SET prezzo = 0, offerta = 1, offertaprezzo = 0 WHERE ID = 5");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT ID, offerte FROM kv_offerte"), "2|5");
  shop.sql("UPDATE categorie SET sconto = NULL, sconto2 = 0");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT COUNT(*) FROM sqlite_master WHERE name LIKE 'kv_%'"), "0");
}

}  // namespace
}  // namespace kv::test
