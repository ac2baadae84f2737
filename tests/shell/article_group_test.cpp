// Commands on several articles that are selected: one question, one step of the history; and the price with VAT.

#include "shell/workbench/fields/vat_price.h"
#include "shell/workbench_fixture.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

class ArticleGroups : public WorkbenchFixture {
 protected:
  /// The articles of cat001 are Alba, Brina and Cielo, 1 to 3.
  void select(std::vector<std::int64_t> IDs) {
    start();
    go("cat001");
    view.group = std::move(IDs);
  }
  /// Rows one after the other, parted by spaces.
  std::string inLine(const std::string& query) {
    std::string text = rows(query);
    std::ranges::replace(text, '\n', ' ');
    return text.empty() ? text : text.substr(0, text.size() - 1);
  }
  std::string list() { return inLine("SELECT titolo FROM articoli WHERE catID = 'cat001' ORDER BY ordinamento, ID"); }
};

TEST_F(ArticleGroups, AreDeletedAfterOneQuestionAndComeBackByOneUndo) {
  select({1, 3});
  press("article.delete");
  ASSERT_EQ(user.texts(), std::vector<std::string>{"Eliminare i 2 articoli selezionati?"});
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(list(), "Alba Brina Cielo");
  user.answers = {Answer::Yes};
  press("article.delete");
  EXPECT_EQ(list(), "Brina");
  EXPECT_EQ(bench->sets().article(), 2);
  EXPECT_EQ(view.status, " Articoli: 1 /2");
  EXPECT_EQ(undoName(), "Elimina articoli");
  undo();
  EXPECT_EQ(list(), "Alba Brina Cielo");
}

TEST_F(ArticleGroups, OneSelectedArticleIsTheCurrentOneWithItsOwnQuestion) {
  select({2});
  press("article.delete");
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Eliminare l'articolo selezionato?"});
}

TEST_F(ArticleGroups, AreCopiedInTheOrderOfTheShop) {
  select({3, 1});
  press("article.copy");
  EXPECT_EQ(inLine("SELECT titolo FROM cliparticoli ORDER BY rowid"), "Alba Cielo");
  EXPECT_TRUE(view.isOn("incolla articolo"));
}

TEST_F(ArticleGroups, MoveTogetherAndStopAtTheEnds) {
  select({2, 3});
  press("article.up");
  EXPECT_EQ(list(), "Brina Cielo Alba");
  press("article.up");
  EXPECT_EQ(list(), "Brina Cielo Alba");
  press("article.down");
  EXPECT_EQ(list(), "Alba Brina Cielo");
  undo();
  undo();
  EXPECT_EQ(list(), "Alba Brina Cielo");
}

TEST_F(ArticleGroups, AMarkIsSetOnAllOfThemToTheOppositeOfTheCurrentOne) {
  select({1, 2});
  press("article.mark.inelenco");
  EXPECT_EQ(inLine("SELECT ID FROM articoli WHERE inelenco = 1"), "1 2");
  EXPECT_TRUE(state("article.mark.inelenco").checked);
  undo();
  EXPECT_EQ(inLine("SELECT ID FROM articoli WHERE inelenco = 1"), "");
}

TEST_F(ArticleGroups, ADuplicateFollowsTheLastOfThemAndIsNotInTheShowcase) {
  select({1, 2});
  ASSERT_TRUE(
      session.catalogue.execute("UPDATE articoli SET inelenco = 1; INSERT INTO cliparticoli (titolo) VALUES ('Eco')"));
  press("article.duplicate");
  EXPECT_EQ(list(), "Alba Brina Alba Brina Cielo");
  EXPECT_EQ(inLine("SELECT codice, prezzo, COALESCE(inelenco, 0) FROM articoli WHERE ID > 4"),
            "A1|145000|0 B1|200000|0");
  EXPECT_EQ(inLine("SELECT titolo FROM cliparticoli"), "Eco") << "the clipboard is another matter";
  EXPECT_EQ(view.told.back(), "new article");
  undo();
  EXPECT_EQ(list(), "Alba Brina Cielo");
}

TEST_F(ArticleGroups, GoToTheEndOfAnotherDepartmentWithAllTheirColumns) {
  select({3, 1});
  ASSERT_TRUE(session.catalogue.execute("UPDATE articoli SET inelenco = 1, immagine0 = 'vaso.jpg'"));
  const std::string others = "SELECT ID, codice, titolo, titolo_l2, prezzo, immagine0, inelenco FROM articoli";
  const std::string columns = inLine(others);
  bench->SpostaInReparto(view.group, "cat003");
  EXPECT_EQ(list(), "Brina");
  EXPECT_EQ(inLine("SELECT ID, ordinamento FROM articoli WHERE catID = 'cat003' ORDER BY ordinamento"),
            "4|115 1|116 3|117");
  EXPECT_EQ(inLine(others), columns);
  EXPECT_EQ(bench->sets().department(), "cat001");
  EXPECT_EQ(bench->sets().article(), 2);
  EXPECT_EQ(view.status, " Articoli: 1 /4");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(ArticleGroups, AreMovedIntoADepartmentByOneStep) {
  select({1, 2});
  const std::string before = whole();
  bench->SpostaInReparto(view.group, "cat002");
  EXPECT_EQ(inLine("SELECT ID, ordinamento FROM articoli WHERE catID = 'cat002' ORDER BY ordinamento"), "1|1 2|2");
  EXPECT_EQ(undoName(), "Trascina articoli");
  undo();
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(undoName(), "");
  redo();
  EXPECT_EQ(list(), "Cielo");
}

TEST_F(ArticleGroups, AreNotMovedOntoTheRootTheirOwnOrAnUnknownDepartment) {
  select({1});
  const std::string before = whole();
  for (const char* refused : {"###", "cat001", "cat099", ""}) {
    EXPECT_FALSE(bench->canMoveArticles(refused)) << refused;
    bench->SpostaInReparto(view.group, refused);
  }
  EXPECT_TRUE(bench->canMoveArticles("cat002"));
  bench->SpostaInReparto({4}, "cat002");
  EXPECT_EQ(whole(), before) << "an article of another department is passed over";
  EXPECT_EQ(undoName(), "");
}

TEST_F(ArticleGroups, TheLastArticleThatLeavesADepartmentLeavesNoneCurrent) {
  start();
  go("cat003");
  article(0);
  bench->SpostaInReparto({4}, "cat001");
  EXPECT_FALSE(bench->sets().onArticle());
  EXPECT_EQ(view.status, " Articoli: 0 /4");
  EXPECT_FALSE(isOffered("article.delete"));
}

TEST_F(ArticleGroups, TheStatusSaysWhenTheShopWasBuiltAndWhatChangedSince) {
  start();
  go("cat001");
  EXPECT_EQ(bench->buildStatus(), "Mai costruito");
  write(shop + "/kvftp.dat", "#\r\n");
  const std::string built = bench->buildStatus();
  EXPECT_EQ(built.substr(0, 13), "Costruito il ");
  EXPECT_EQ(built.find("modific"), std::string::npos);
  leave(EditedSet::Categorie, "titolo", "Orci");
  EXPECT_EQ(bench->buildStatus(), built + ", poi una modifica");
  leave(EditedSet::Categorie, "titolo", "Anfore");
  EXPECT_EQ(bench->buildStatus(), built + ", poi 2 modifiche");
  {
    FailingStore full(1, AfterFailure::FailsToo, FailingStore::fullDisk);
    full.onlyFor("INSERT INTO passi");
    leave(EditedSet::Categorie, "titolo", "Giare");
  }
  EXPECT_EQ(bench->buildStatus(), built + ", poi 3 modifiche - cronologia non scritta");
  leave(EditedSet::Categorie, "titolo", "Urne");
  EXPECT_EQ(bench->buildStatus(), built + ", poi 4 modifiche");
}

TEST_F(ArticleGroups, AnEmptyFieldOfAnotherLanguageKnowsTheTextOfTheFirst) {
  run(shop, "UPDATE articoli SET titolo_l2 = NULL, descrizione = 'Cotto' WHERE ID = 1");
  start();
  go("cat001");
  article(0);
  const Editor& title = *editorOf(EditedSet::Articoli, "titolo");
  EXPECT_EQ(bench->firstLanguageText(title), "");
  bench->CambiaLingua(2);
  EXPECT_EQ(bench->firstLanguageText(title), "Alba");
  EXPECT_EQ(bench->firstLanguageText(*editorOf(EditedSet::Articoli, "descrizione")), "Cotto");
  EXPECT_EQ(bench->firstLanguageText(*editorOf(EditedSet::Categorie, "titolo")), "") << "it is translated";
  EXPECT_EQ(bench->firstLanguageText(*editorOf(EditedSet::Articoli, "link")), "") << "all languages share it";
}

TEST(PriceWithVat, IsRoundedToTwoDecimalsAndEmptyWithoutVat) {
  EXPECT_EQ(priceWithVat("14.7541", "22"), "18.00");
  EXPECT_EQ(priceWithVat("100", "4"), "104.00");
  EXPECT_EQ(priceWithVat("10.5", "10"), "11.55");
  for (const char* none : {"", " ", "0", "x"}) EXPECT_EQ(priceWithVat("10", none), "") << none;
  for (const char* none : {"", "x"}) EXPECT_EQ(priceWithVat(none, "22"), "") << none;
}

}  // namespace
}  // namespace kv::test
