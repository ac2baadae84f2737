// The commands of the workbench by their names, their states, and undo of each.

#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class WorkbenchTest : public WorkbenchFixture {};

TEST_F(WorkbenchTest, OpensOnTheFirstDepartmentInLanguageOne) {
  start();
  EXPECT_EQ(view.title, "Korvane - " + shop);
  EXPECT_EQ(view.selected, "cat001");
  EXPECT_EQ(view.tab, Tab::Departments);
  EXPECT_EQ(session.currentLanguage, 1);
  EXPECT_EQ(view.status, " Articoli: 3 /4");
}

TEST_F(WorkbenchTest, OnNoDepartmentTheStatusLineShowsTheTotalAlone) {
  start();
  go("###");
  EXPECT_EQ(view.status, " Articoli: 4");
}

TEST_F(WorkbenchTest, AnArticleMovesUpAndDown) {
  start();
  article(1);
  press("article.up");
  EXPECT_EQ(titles(), "Brina\nAlba\nCielo\n");
  press("article.down");
  press("article.down");
  EXPECT_EQ(titles(), "Alba\nCielo\nBrina\n");
}

TEST_F(WorkbenchTest, AnArticleIsAddedBeforeOrAfterAndBecomesCurrent) {
  start();
  article(1);
  press("article.insertBefore");
  EXPECT_EQ(titles(), "Alba\nnull\nBrina\nCielo\n");
  EXPECT_EQ(shown(EditedSet::Articoli, "titolo"), "");
  article(3);
  press("article.insertAfter");
  EXPECT_EQ(titles(), "Alba\nnull\nBrina\nCielo\nnull\n");
  EXPECT_EQ(view.status, " Articoli: 5 /6");
}

TEST_F(WorkbenchTest, DeletingAnArticleAsksWithNoAsTheDefault) {
  start();
  article(0);
  press("article.delete");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], asked("Eliminare l'articolo selezionato?", Answer::No, Answer::No));
  EXPECT_EQ(titles(), "Alba\nBrina\nCielo\n");
  user.answers = {Answer::Yes};
  press("article.delete");
  EXPECT_EQ(titles(), "Brina\nCielo\n");
}

TEST_F(WorkbenchTest, AnArticleIsCopiedAndPasted) {
  start();
  EXPECT_FALSE(view.isOn("incolla articolo"));
  article(0);
  press("article.copy");
  EXPECT_TRUE(view.isOn("incolla articolo"));
  EXPECT_FALSE(view.isOn("incolla categoria"));
  press("article.paste");
  press("article.paste");
  EXPECT_EQ(titles(), "Alba\nAlba\nAlba\nBrina\nCielo\n");
}

TEST_F(WorkbenchTest, PastingWithoutADepartmentIsRefused) {
  start();
  article(0);
  press("article.copy");
  go("###");
  press("article.paste");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Per incollare gli articoli è necessario selezionare un reparto.");
}

TEST_F(WorkbenchTest, TheTreeIsExpandedAndCollapsed) {
  start();
  view.told.clear();
  press("tree.expand");
  press("tree.collapse");
  EXPECT_THAT(view.told, ElementsAre("expand", "collapse"));
}

TEST_F(WorkbenchTest, TheImageCommandsWriteFileAndSizeAndClearThem) {
  struct Case {
    const char* picture;
    const char* table;
    const char* digit;
    const char* key;
  };
  start();
  article(0);
  write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
  answerPicture("foto.gif");
  for (const Case& each : {Case{"article.picture0", "articoli WHERE ID = 1", "0", "- immagine0"},
                           Case{"article.picture1", "articoli WHERE ID = 1", "1", "- immagine1"},
                           Case{"article.picture2", "articoli WHERE ID = 1", "2", "- immagine2"},
                           Case{"department.picture0", "categorie WHERE ID = 'cat001'", "0", "- immagine cat0"},
                           Case{"department.picture1", "categorie WHERE ID = 'cat001'", "1", "- immagine cat1"},
                           Case{"shop.picture0", "generale", "0", "- immagine neg0"},
                           Case{"shop.picture1", "generale", "1", "- immagine neg1"}}) {
    const std::string d = each.digit;
    const std::string query = "SELECT immagine" + d + ", imgX" + d + ", imgY" + d + " FROM " + each.table;
    EXPECT_FALSE(view.isOn(each.key));
    press(std::string(each.picture) + ".set");
    EXPECT_EQ(rows(query), "foto.gif|1|1\n") << each.picture;
    EXPECT_TRUE(view.isOn(each.key)) << each.key;
    press(std::string(each.picture) + ".clear");
    EXPECT_EQ(rows(query), "|0|0\n") << each.picture;
    EXPECT_FALSE(view.isOn(each.key)) << each.key;
  }
}

TEST_F(WorkbenchTest, TheImageDialogIsGivenTheCurrentFileAndACancelKeepsIt) {
  run(shop, "UPDATE articoli SET immagine0 = 'vecchia.gif' WHERE ID = 1");
  start();
  article(0);
  press("article.picture0.set");
  EXPECT_THAT(dialogsRun, ElementsAre("choosePicture vecchia.gif"));
  EXPECT_EQ(scalar("SELECT immagine0 FROM articoli WHERE ID = 1"), "vecchia.gif");
}

TEST_F(WorkbenchTest, TheButtonImageBelongsToTheLanguage) {
  start();
  write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
  answerPicture("foto.gif");
  bench->CambiaLingua(2);
  press("department.picture1.set");
  EXPECT_EQ(rows("SELECT immagine1, immagine1_l2, imgX1_l2 FROM categorie WHERE ID = 'cat001'"), "null|foto.gif|1\n");
}

TEST_F(WorkbenchTest, ADepartmentIsCopiedWithItsArticlesWhenTold) {
  start();
  user.answers = {Answer::Yes, Answer::Yes};
  press("department.copy");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Copiare anche tutti gli articoli del reparto?");
  EXPECT_TRUE(view.isOn("incolla categoria"));
  go("cat003");
  press("department.paste");
  EXPECT_EQ(shown(EditedSet::Categorie, "titolo"), "Vasi");
  EXPECT_EQ(bench->sets().department(), "cat004");
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM articoli WHERE catID = 'cat004'"), "3");
}

TEST_F(WorkbenchTest, ADepartmentWithSubdepartmentsIsNotDeleted) {
  start();
  press("department.delete");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], said("Non è consentito eliminare un reparto che contiene sottoreparti.\n"
                                "Per cancellare questo reparto è necessario rimuovere i sottoreparti.",
                                Icon::Exclamation));
}

TEST_F(WorkbenchTest, DeletingADepartmentAsksBeforeItsArticlesGo) {
  start();
  go("cat003");
  press("department.delete");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0],
            asked("Il reparto contiene articoli che saranno cancellati. Eliminarlo comunque?", Answer::No, Answer::No));
  user.answers = {Answer::Yes};
  press("department.delete");
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "2");
  EXPECT_EQ(view.selected, "###");
  EXPECT_FALSE(view.isOn("- categoria"));
}

TEST_F(WorkbenchTest, DepartmentsAreAddedAfterBeforeAndBelow) {
  start();
  go("cat003");
  press("department.insertAfter");
  EXPECT_EQ(shown(EditedSet::Categorie, "titolo"), "Nuovo Reparto");
  EXPECT_EQ(rows("SELECT ID, genitore, livello FROM categorie WHERE ID = 'cat004'"), "cat004|###|1\n");
  go("cat003");
  press("department.insertBefore");
  press("department.insertBelow");
  EXPECT_EQ(rows("SELECT ID, genitore, livello FROM categorie WHERE contatore > 4"), "cat005|###|1\ncat006|cat005|2\n");
}

TEST_F(WorkbenchTest, ANewDepartmentTakesThePageModelThatTheListShows) {
  start();
  press("department.insertAfter");
  EXPECT_EQ(scalar("SELECT template FROM categorie WHERE ID = 'cat004'"), "modello2");
  go("cat003");
  press("department.insertAfter");
  EXPECT_EQ(scalar("SELECT template FROM categorie WHERE ID = 'cat005'"), "modello1");
}

TEST_F(WorkbenchTest, ADepartmentMovesAmongItsSiblings) {
  start();
  press("department.down");
  EXPECT_EQ(rows("SELECT ID FROM categorie WHERE livello = 1 ORDER BY ordinamento"), "cat003\ncat001\n");
  press("department.up");
  EXPECT_EQ(rows("SELECT ID FROM categorie WHERE livello = 1 ORDER BY ordinamento"), "cat001\ncat003\n");
}

TEST_F(WorkbenchTest, TheSearchShowsTheArticleThatItFound) {
  start();
  answerSearch(4);
  press("article.search");
  EXPECT_EQ(view.tab, Tab::Articles);
  EXPECT_EQ(view.selected, "cat003");
  EXPECT_EQ(bench->sets().article(), 4);
}

TEST_F(WorkbenchTest, TheVariantCommandsNameTheSlotOfThePriceList) {
  start();
  article(0);
  for (const char* name : {"article.variant1", "article.variant2", "article.variant3", "article.variant4"}) press(name);
  bench->selectListino(3);
  press("article.variant1");
  EXPECT_THAT(dialogsRun, ElementsAre("defineVariant 1", "defineVariant 2", "defineVariant 3", "defineVariant 4",
                                      "defineVariant 1_3"));
}

TEST_F(WorkbenchTest, TheVariantsOfAnArticleAreNamedInListAndLanguage) {
  run(shop, "UPDATE articoli SET opzione1 = 2, opzione2_3 = 2, opzione3 = 99 WHERE ID = 1");
  start();
  article(0);
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione1"), "Colore");
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione2"), "(nessuna)");
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione3"), "") << "an article pasted after its variant was deleted";
  bench->CambiaLingua(2);
  bench->selectListino(3);
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione1"), "(none)");
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione2"), "Colour");
}

TEST_F(WorkbenchTest, TheNumbers36To49DoNothing) {
  start();
  article(0);
  const std::string before = whole();
  for (int n = 36; n < 50; ++n) bench->commands().EseguiComando(n);
  bench->commands().EseguiComando(53);
  bench->commands().EseguiComando(-1);
  EXPECT_EQ(whole(), before);
  EXPECT_TRUE(user.shown.empty());
  EXPECT_TRUE(dialogsRun.empty());
}

TEST_F(WorkbenchTest, EachCommandWithoutAShopDoesNothing) {
  bench = std::make_unique<Workbench>(session, env, view, ports);
  for (const Command& command : allCommands()) bench->commands().EseguiComando(command.number);
  EXPECT_TRUE(dialogsRun.empty());
  EXPECT_FALSE(isOffered("build"));
}

TEST_F(WorkbenchTest, WhatIsBeingTypedIsSavedBeforeACommandRuns) {
  start();
  article(0);
  view.typing = [this] { leave(EditedSet::Articoli, "titolo", "Aurora"); };
  press("article.down");
  EXPECT_EQ(titles(), "Brina\nAurora\nCielo\n");
}

TEST_F(WorkbenchTest, WhatIsBeingTypedIsSavedBeforeTheCursorMoves) {
  start();
  article(0);
  view.typing = [this] { leave(EditedSet::Articoli, "titolo", "Aurora"); };
  article(1);
  EXPECT_EQ(titles(), "Aurora\nBrina\nCielo\n");
  view.typing = [this] { leave(EditedSet::Categorie, "titolo", "Orci"); };
  go("cat003");
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Orci");
}

TEST_F(WorkbenchTest, EveryCommandOnTheCatalogueCanBeUndoneAndRedone) {
  start();
  write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
  answerPicture("foto.gif");
  for (const Command& command : allCommands()) {
    if (command.number < 0 || command.step.empty() || command.name.starts_with("article.variant")) continue;
    go("cat001");
    article(1);
    if (command.name == "department.delete" || command.name == "department.up") go("cat003");
    if (command.name == "article.paste") press("article.copy");
    if (command.name == "department.paste") press("department.copy");
    if (command.name.ends_with(".clear")) press(command.name.substr(0, command.name.rfind('.')) + ".set");
    user.answers = {Answer::Yes, Answer::Yes};
    const std::string before = whole();
    press(command.name);
    const std::string after = whole();
    EXPECT_FALSE(after == before) << command.name;
    EXPECT_EQ(undoName(), command.step) << command.name;
    undo();
    EXPECT_TRUE(whole() == before) << command.name;
    redo();
    EXPECT_TRUE(whole() == after) << command.name;
    while (!undoName().empty()) undo();
    user.answers.clear();
  }
}

TEST_F(WorkbenchTest, ADragIsOneStep) {
  start();
  const std::string before = whole();
  bench->SpostaNodo("cat003", "cat002");
  EXPECT_EQ(rows("SELECT ID, genitore, livello FROM categorie ORDER BY contatore"),
            "cat001|###|1\ncat002|cat001|2\ncat003|cat002|3\n");
  EXPECT_EQ(undoName(), "Trascina reparto");
  undo();
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(view.busy, 0);
}

TEST_F(WorkbenchTest, ADragOntoItsOwnDescendantIsRefused) {
  start();
  const std::string before = whole();
  EXPECT_FALSE(bench->canMoveNode("cat001", "cat002"));
  EXPECT_FALSE(bench->canMoveNode("cat001", "cat001"));
  EXPECT_FALSE(bench->canMoveNode("###", "cat001"));
  EXPECT_FALSE(bench->canMoveNode("cat099", "cat001"));
  EXPECT_TRUE(bench->canMoveNode("cat002", "###"));
  bench->SpostaNodo("cat001", "cat002");
  EXPECT_EQ(whole(), before);
}

TEST_F(WorkbenchTest, AChangeOfShopForgetsTheSteps) {
  start();
  press("department.insertAfter");
  EXPECT_FALSE(undoName().empty());
  const std::string other = makeShop("altro");
  user.folders = {other};
  choose("shop.open");
  EXPECT_EQ(view.title, "Korvane - " + other);
  EXPECT_TRUE(undoName().empty());
  EXPECT_FALSE(view.closed);
}

}  // namespace
}  // namespace kv::test
