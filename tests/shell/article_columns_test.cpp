// The columns of the list of articles: which of them show, and how the rows are sorted by those that are optional.

#include "shell/workbench/article_columns.h"
#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

std::string namesOf(std::string_view stored) { return storedColumns(shownColumns(stored)); }

TEST(ArticleColumns, WhoHasChosenNothingSeesCodeTitleAndBothPrices) {
  EXPECT_EQ(namesOf(""), "codice titolo prezzo iva");
  EXPECT_EQ(namesOf("  "), "codice titolo prezzo iva");
}

TEST(ArticleColumns, AChoiceIsReadBackInTheOrderOfTheList) {
  EXPECT_EQ(namesOf("vetrina titolo peso"), "titolo peso vetrina");
  EXPECT_EQ(namesOf("codice titolo prezzo iva offerta peso vetrina"), "codice titolo prezzo iva offerta peso vetrina");
}

TEST(ArticleColumns, TheTitleAlwaysShowsAndAnUnknownNameIsPassedOver) {
  EXPECT_EQ(namesOf("peso colore"), "titolo peso");
  EXPECT_EQ(namesOf("colore"), "titolo");
}

class ColumnOrder : public WorkbenchFixture {
 protected:
  /// The articles of cat001 in the order of a column.
  std::string sorted(ArticleArrangement::By by, bool descending = false) {
    ArticleRows rows(bench->sets());
    rows.arrange({by, descending, "", false});
    rows.refresh(0);
    std::string text;
    for (std::size_t i = 0; i < rows.size(); ++i) text += (i > 0 ? " " : "") + rows.at(i).titolo;
    return text;
  }
};

TEST_F(ColumnOrder, FollowsOfferWeightAndShowcase) {
  run(shop,
      "UPDATE articoli SET offerta = 1, offertaprezzo = 50000, peso = 2.5 WHERE ID = 3;"
      "UPDATE articoli SET offerta = 0, offertaprezzo = 10000, peso = 10, inelenco = 1 WHERE ID = 2;"
      "UPDATE articoli SET offerta = 1, offertaprezzo = 120000 WHERE ID = 1");
  start();
  go("cat001");
  using enum ArticleArrangement::By;
  EXPECT_EQ(sorted(Offer), "Brina Cielo Alba") << "what is not on offer has no offer price";
  EXPECT_EQ(sorted(Weight), "Alba Cielo Brina") << "by number, not by text";
  EXPECT_EQ(sorted(Weight, true), "Brina Cielo Alba");
  EXPECT_EQ(sorted(Showcase), "Brina Alba Cielo");
}

}  // namespace
}  // namespace kv::test
