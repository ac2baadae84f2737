// Inserting, moving, deleting, copying and pasting articles.
#include <gmock/gmock.h>

#include "store/shop/order_numbers.h"
#include "store/tree_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

class ArticleEditing : public TreeFixture {
 protected:
  ArticleEditing() { department(1, "###", 100); }
};

TEST_F(ArticleEditing, TheFirstArticleOfAnEmptyDepartmentGetsOrder1) {
  bind();
  go("cat001");
  ASSERT_TRUE(editing.InserisciArticoloDopo());
  EXPECT_EQ(articles("cat001"), "1|null\n");
  EXPECT_EQ(sets.article(), 1);
  EXPECT_EQ(session.statusLine, " Articoli: 1 /1");
}

TEST_F(ArticleEditing, BeforeTheFirstOneOfOrder1ComesOrder0) {
  article("cat001", 1, "uno");
  bind();
  go("cat001");
  ASSERT_TRUE(editing.InserisciArticoloPrima());
  ASSERT_TRUE(editing.InserisciArticoloPrima());
  EXPECT_EQ(articles("cat001"), "-1|null\n0|null\n1|uno\n");
}

TEST_F(ArticleEditing, WithoutRoomEveryLaterArticleMovesUp) {
  for (int i = 1; i <= 3; ++i) article("cat001", i, "a" + std::to_string(i));
  bind();
  go("cat001");
  ASSERT_TRUE(editing.InserisciArticoloDopo());
  EXPECT_EQ(articles("cat001"), "1|a1\n2|null\n3|a2\n4|a3\n");
}

TEST_F(ArticleEditing, WithRoomNothingElseMoves) {
  article("cat001", 100, "a");
  article("cat001", 105, "b");
  bind();
  go("cat001");
  ASSERT_TRUE(editing.InserisciArticoloDopo());
  EXPECT_EQ(articles("cat001"), "100|a\n101|null\n105|b\n");
}

TEST_F(ArticleEditing, BeforeOneWithoutRoomTheRowAndItsFollowersMoveUp) {
  article("cat001", 5, "a");
  article("cat001", 6, "b");
  article("cat001", 90, "c");
  bind();
  go("cat001");
  goArticle(2);
  ASSERT_TRUE(editing.InserisciArticoloPrima());
  EXPECT_EQ(articles("cat001"), "5|a\n6|null\n7|b\n8|c\n");
}

TEST_F(ArticleEditing, WithoutADepartmentNothingIsInserted) {
  bind();
  ASSERT_TRUE(editing.InserisciArticoloDopo());
  EXPECT_EQ(rows("SELECT COUNT(*) FROM articoli"), "0\n");
}

TEST_F(ArticleEditing, MovingTheFirstUpAndTheLastDownChangesNothing) {
  article("cat001", 100, "a");
  article("cat001", 105, "b");
  bind();
  go("cat001");
  ASSERT_TRUE(editing.Sposta(-1, TreeList::Articles));
  goArticle(2);
  ASSERT_TRUE(editing.Sposta(+1, TreeList::Articles));
  EXPECT_EQ(articles("cat001"), "100|a\n105|b\n");
}

TEST_F(ArticleEditing, AMoveExchangesTheOrderNumbersAndStaysOnTheArticle) {
  article("cat001", 100, "a");
  article("cat001", 105, "b");
  bind();
  go("cat001");
  ASSERT_TRUE(editing.Sposta(+1, TreeList::Articles));
  EXPECT_EQ(articles("cat001"), "100|b\n105|a\n");
  EXPECT_EQ(sets.article(), 1);
}

TEST_F(ArticleEditing, DeletingAsksWithNoAsTheDefault) {
  article("cat001", 100, "a");
  bind();
  go("cat001");
  ASSERT_TRUE(editing.EliminaArticolo());
  EXPECT_THAT(user.shown, ElementsAre(asked("Eliminare l'articolo selezionato?", Answer::No, Answer::No)));
  EXPECT_EQ(articles("cat001"), "100|a\n");
}

TEST_F(ArticleEditing, AfterADeletionTheNextOneIsCurrentOrTheLast) {
  for (int i = 1; i <= 3; ++i) article("cat001", i, "a" + std::to_string(i));
  bind();
  go("cat001");
  goArticle(2);
  user.answers = {Answer::Yes, Answer::Yes, Answer::Yes};
  ASSERT_TRUE(editing.EliminaArticolo());
  EXPECT_EQ(sets.article(), 3);
  ASSERT_TRUE(editing.EliminaArticolo());
  EXPECT_EQ(sets.article(), 1);
  ASSERT_TRUE(editing.EliminaArticolo());
  EXPECT_FALSE(sets.onArticle());
  EXPECT_EQ(session.statusLine, " Articoli: 0 /0");
}

TEST_F(ArticleEditing, PastingTwiceGivesTwoArticlesWithKeysOfTheirOwn) {
  sql("INSERT INTO articoli (catID, ordinamento, titolo, codice, prezzo3, inelenco) "
      "VALUES ('cat001', 100, 'Lampada', 'L1', 125000, 1)");
  bind();
  go("cat001");
  ASSERT_TRUE(editing.CopiaArticolo());
  EXPECT_THAT(states, ElementsAre("incolla articolo+", "incolla categoria-"));
  ASSERT_TRUE(editing.IncollaArticoli());
  ASSERT_TRUE(editing.IncollaArticoli());
  EXPECT_EQ(rows("SELECT ID, ordinamento, titolo, codice, prezzo3, inelenco FROM articoli ORDER BY ordinamento"),
            "1|100|Lampada|L1|125000|1\n2|101|Lampada|L1|125000|null\n3|102|Lampada|L1|125000|null\n");
  EXPECT_EQ(sets.article(), 3);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(ArticleEditing, PastingWithoutADepartmentIsRefusedAndTheClipboardStays) {
  article("cat001", 100, "a");
  bind();
  go("cat001");
  ASSERT_TRUE(editing.CopiaArticolo());
  go("###");
  ASSERT_TRUE(editing.IncollaArticoli());
  EXPECT_THAT(user.texts(), ElementsAre("Per incollare gli articoli è necessario selezionare un reparto."));
  EXPECT_EQ(rows("SELECT COUNT(*) FROM cliparticoli"), "1\n");
}

TEST_F(ArticleEditing, SeveralArticlesAreAskedForAndLandInTheirOrder) {
  department(2, "###", 105);
  for (int i = 1; i <= 3; ++i) article("cat001", i, "a" + std::to_string(i));
  article("cat002", 100, "x");
  article("cat002", 102, "y");
  bind();
  go("cat001");
  user.answers = {Answer::Yes, Answer::Yes};
  ASSERT_TRUE(editing.CopiaReparto());
  go("cat002");
  ASSERT_TRUE(editing.IncollaArticoli());
  EXPECT_THAT(user.texts(),
              ElementsAre("Copiare anche tutti gli articoli del reparto?", "Saranno incollati 3 articoli. Procedere?"));
  EXPECT_EQ(articles("cat002"), "100|x\n101|a1\n102|a2\n103|a3\n104|y\n");
}

TEST(OrderPlan, GoesAfterTheLastOneWhenNoneIsCurrent) {
  const std::vector<std::int64_t> orders{100, 105};
  EXPECT_EQ(planAfter(orders, std::nullopt).order, 106);
  EXPECT_EQ(planBefore(orders, std::nullopt).order, 99);
  EXPECT_EQ(planAfter({}, std::nullopt).order, 1);
  EXPECT_EQ(planBefore({}, std::nullopt).order, 1);
}

}  // namespace
}  // namespace kv::test
