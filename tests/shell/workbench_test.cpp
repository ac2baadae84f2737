// The commands of the workbench by their numbers, their states, and undo of each.

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

TEST_F(WorkbenchTest, Commands0And1MoveTheArticle) {
  start();
  article(1);
  bench->EseguiComando(0);
  EXPECT_EQ(titles(), "Brina\nAlba\nCielo\n");
  bench->EseguiComando(1);
  bench->EseguiComando(1);
  EXPECT_EQ(titles(), "Alba\nCielo\nBrina\n");
}

TEST_F(WorkbenchTest, Commands2And3AddAnArticleAndMakeItCurrent) {
  start();
  article(1);
  bench->EseguiComando(2);
  EXPECT_EQ(titles(), "Alba\nnull\nBrina\nCielo\n");
  EXPECT_EQ(shown(EditedSet::Articoli, "titolo"), "");
  article(3);
  bench->EseguiComando(3);
  EXPECT_EQ(titles(), "Alba\nnull\nBrina\nCielo\nnull\n");
  EXPECT_EQ(view.status, " Articoli: 5 /6");
}

TEST_F(WorkbenchTest, Command4AsksWithNoAsTheDefault) {
  start();
  article(0);
  bench->EseguiComando(4);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], asked("Eliminare l'articolo selezionato?", Answer::No, Answer::No));
  EXPECT_EQ(titles(), "Alba\nBrina\nCielo\n");
  user.answers = {Answer::Yes};
  bench->EseguiComando(4);
  EXPECT_EQ(titles(), "Brina\nCielo\n");
}

TEST_F(WorkbenchTest, Commands5And6CopyAndPasteAnArticle) {
  start();
  EXPECT_FALSE(view.isOn("incolla articolo"));
  article(0);
  bench->EseguiComando(5);
  EXPECT_TRUE(view.isOn("incolla articolo"));
  EXPECT_FALSE(view.isOn("incolla categoria"));
  bench->EseguiComando(6);
  bench->EseguiComando(6);
  EXPECT_EQ(titles(), "Alba\nAlba\nAlba\nBrina\nCielo\n");
}

TEST_F(WorkbenchTest, PastingWithoutADepartmentIsRefused) {
  start();
  article(0);
  bench->EseguiComando(5);
  go("###");
  bench->EseguiComando(6);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Per incollare gli articoli è necessario selezionare un reparto.");
}

TEST_F(WorkbenchTest, Commands7And8ExpandAndCollapseTheTree) {
  start();
  view.told.clear();
  bench->EseguiComando(7);
  bench->EseguiComando(8);
  EXPECT_THAT(view.told, ElementsAre("expand", "collapse"));
}

TEST_F(WorkbenchTest, TheImageCommandsWriteFileAndSizeAndClearThem) {
  struct Case {
    int choose, clear;
    const char* table;
    const char* digit;
    const char* key;
  };
  start();
  article(0);
  write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
  answer("frmImmagine", "foto.gif");
  for (const Case& each :
       {Case{9, 10, "articoli WHERE ID = 1", "0", "- immagine0"},
        Case{23, 22, "articoli WHERE ID = 1", "1", "- immagine1"},
        Case{26, 27, "articoli WHERE ID = 1", "2", "- immagine2"},
        Case{19, 18, "categorie WHERE ID = 'cat001'", "0", "- immagine cat0"},
        Case{25, 24, "categorie WHERE ID = 'cat001'", "1", "- immagine cat1"},
        Case{29, 28, "generale", "0", "- immagine neg0"}, Case{32, 33, "generale", "1", "- immagine neg1"}}) {
    const std::string d = each.digit;
    const std::string query = "SELECT immagine" + d + ", imgX" + d + ", imgY" + d + " FROM " + each.table;
    EXPECT_FALSE(view.isOn(each.key));
    bench->EseguiComando(each.choose);
    EXPECT_EQ(rows(query), "foto.gif|1|1\n") << each.choose;
    EXPECT_TRUE(view.isOn(each.key)) << each.key;
    bench->EseguiComando(each.clear);
    EXPECT_EQ(rows(query), "|0|0\n") << each.clear;
    EXPECT_FALSE(view.isOn(each.key)) << each.key;
  }
}

TEST_F(WorkbenchTest, TheImageDialogIsGivenTheCurrentFileAndACancelKeepsIt) {
  run(shop, "UPDATE articoli SET immagine0 = 'vecchia.gif' WHERE ID = 1");
  start();
  article(0);
  bench->EseguiComando(9);
  EXPECT_THAT(dialogsRun, ElementsAre("frmImmagine vecchia.gif"));
  EXPECT_EQ(scalar("SELECT immagine0 FROM articoli WHERE ID = 1"), "vecchia.gif");
}

TEST_F(WorkbenchTest, TheButtonImageBelongsToTheLanguage) {
  start();
  write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
  answer("frmImmagine", "foto.gif");
  bench->CambiaLingua(2);
  bench->EseguiComando(25);
  EXPECT_EQ(rows("SELECT immagine1, immagine1_l2, imgX1_l2 FROM categorie WHERE ID = 'cat001'"), "null|foto.gif|1\n");
}

TEST_F(WorkbenchTest, Commands11And12CopyADepartmentWithItsArticlesWhenTold) {
  start();
  user.answers = {Answer::Yes, Answer::Yes};
  bench->EseguiComando(12);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Copiare anche tutti gli articoli del reparto?");
  EXPECT_TRUE(view.isOn("incolla categoria"));
  go("cat003");
  bench->EseguiComando(11);
  EXPECT_EQ(shown(EditedSet::Categorie, "titolo"), "Vasi");
  EXPECT_EQ(bench->sets().department(), "cat004");
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM articoli WHERE catID = 'cat004'"), "3");
}

TEST_F(WorkbenchTest, Command13RefusesADepartmentWithSubdepartments) {
  start();
  bench->EseguiComando(13);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], said("Non è consentito eliminare un reparto che contiene sottoreparti.\n"
                                "Per cancellare questo reparto è necessario rimuovere i sottoreparti.",
                                Icon::Exclamation));
}

TEST_F(WorkbenchTest, Command13AsksBeforeArticlesGoWithNoAsTheDefault) {
  start();
  go("cat003");
  bench->EseguiComando(13);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0],
            asked("Il reparto contiene articoli che saranno cancellati. Eliminarlo comunque?", Answer::No, Answer::No));
  user.answers = {Answer::Yes};
  bench->EseguiComando(13);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "2");
  EXPECT_EQ(view.selected, "###");
  EXPECT_FALSE(view.isOn("- categoria"));
}

TEST_F(WorkbenchTest, Commands14And15And20AddDepartments) {
  start();
  go("cat003");
  bench->EseguiComando(14);
  EXPECT_EQ(shown(EditedSet::Categorie, "titolo"), "Nuovo Reparto");
  EXPECT_EQ(rows("SELECT ID, genitore, livello FROM categorie WHERE ID = 'cat004'"), "cat004|###|1\n");
  go("cat003");
  bench->EseguiComando(15);
  bench->EseguiComando(20);
  EXPECT_EQ(rows("SELECT ID, genitore, livello FROM categorie WHERE contatore > 4"), "cat005|###|1\ncat006|cat005|2\n");
}

TEST_F(WorkbenchTest, ANewDepartmentTakesThePageModelThatTheListShows) {
  start();
  bench->EseguiComando(14);
  EXPECT_EQ(scalar("SELECT template FROM categorie WHERE ID = 'cat004'"), "modello2");
  go("cat003");
  bench->EseguiComando(14);
  EXPECT_EQ(scalar("SELECT template FROM categorie WHERE ID = 'cat005'"), "modello1");
}

TEST_F(WorkbenchTest, Commands16And17MoveTheDepartmentAmongItsSiblings) {
  start();
  bench->EseguiComando(16);
  EXPECT_EQ(rows("SELECT ID FROM categorie WHERE livello = 1 ORDER BY ordinamento"), "cat003\ncat001\n");
  bench->EseguiComando(17);
  EXPECT_EQ(rows("SELECT ID FROM categorie WHERE livello = 1 ORDER BY ordinamento"), "cat001\ncat003\n");
}

TEST_F(WorkbenchTest, Command21ShowsTheArticleThatTheSearchFound) {
  start();
  answer("frmSearch", "4");
  bench->EseguiComando(21);
  EXPECT_EQ(view.tab, Tab::Articles);
  EXPECT_EQ(view.selected, "cat003");
  EXPECT_EQ(bench->sets().article(), 4);
}

TEST_F(WorkbenchTest, TheVariantCommandsNameTheSlotOfThePriceList) {
  start();
  article(0);
  for (const int number : {30, 31, 34, 35}) bench->EseguiComando(number);
  bench->selectListino(3);
  bench->EseguiComando(30);
  EXPECT_THAT(dialogsRun,
              ElementsAre("frmOpzioni 1", "frmOpzioni 2", "frmOpzioni 3", "frmOpzioni 4", "frmOpzioni 1_3"));
}

TEST_F(WorkbenchTest, TheVariantsOfAnArticleAreNamedInListAndLanguage) {
  run(shop, "UPDATE articoli SET opzione1 = 2, opzione2_3 = 2 WHERE ID = 1");
  start();
  article(0);
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione1"), "Colore");
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione2"), "(nessuna)");
  bench->CambiaLingua(2);
  bench->selectListino(3);
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione1"), "(none)");
  EXPECT_EQ(shown(EditedSet::Articoli, "opzione2"), "Colour");
}

TEST_F(WorkbenchTest, TheNumbers36To49DoNothing) {
  start();
  article(0);
  const std::string before = whole();
  for (int n = 36; n < 50; ++n) bench->EseguiComando(n);
  bench->EseguiComando(53);
  bench->EseguiComando(-1);
  EXPECT_EQ(whole(), before);
  EXPECT_TRUE(user.shown.empty());
  EXPECT_TRUE(dialogsRun.empty());
}

TEST_F(WorkbenchTest, EachCommandWithoutAShopDoesNothing) {
  bench = std::make_unique<Workbench>(session, env, view, ports);
  for (const Command& command : commandTable()) bench->EseguiComando(command.number);
  EXPECT_TRUE(dialogsRun.empty());
  EXPECT_FALSE(bench->isCommandEnabled(50));
}

TEST_F(WorkbenchTest, WhatIsBeingTypedIsSavedBeforeACommandRuns) {
  start();
  article(0);
  view.typing = [this] { leave(EditedSet::Articoli, "titolo", "Aurora"); };
  bench->EseguiComando(1);
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

TEST_F(WorkbenchTest, EveryCommandOnTheCatalogueCanBeTakenBackAndDoneAgain) {
  start();
  write(joinPath(shop, "work/foto.gif"), onePixelGif(1, 2, 3));
  answer("frmImmagine", "foto.gif");
  for (const Command& command : commandTable()) {
    if (command.step.empty() || command.action == CommandAction::DefineVariant) continue;
    go("cat001");
    article(1);
    if (command.action == CommandAction::Delete && command.subject == CommandSubject::Department) go("cat003");
    if (command.action == CommandAction::Paste)
      bench->EseguiComando(command.subject == CommandSubject::Article ? 5 : 12);
    if (command.action == CommandAction::Move && command.argument < 0 &&
        command.subject == CommandSubject::Department) {
      go("cat003");
    }
    if (command.action == CommandAction::ClearImage) {
      for (const Command& setter : commandTable()) {
        if (setter.action == CommandAction::ChooseImage && setter.subject == command.subject &&
            setter.argument == command.argument) {
          bench->EseguiComando(setter.number);
        }
      }
    }
    user.answers = {Answer::Yes, Answer::Yes};
    const std::string before = whole();
    bench->EseguiComando(command.number);
    const std::string after = whole();
    EXPECT_FALSE(after == before) << command.number;
    EXPECT_EQ(bench->undoName(), command.step) << command.number;
    bench->undo();
    EXPECT_TRUE(whole() == before) << command.number;
    bench->redo();
    EXPECT_TRUE(whole() == after) << command.number;
    while (!bench->undoName().empty()) bench->undo();
    user.answers.clear();
  }
}

TEST_F(WorkbenchTest, ADragIsOneStep) {
  start();
  const std::string before = whole();
  bench->SpostaNodo("cat003", "cat002");
  EXPECT_EQ(rows("SELECT ID, genitore, livello FROM categorie ORDER BY contatore"),
            "cat001|###|1\ncat002|cat001|2\ncat003|cat002|3\n");
  EXPECT_EQ(bench->undoName(), "Trascina reparto");
  bench->undo();
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
  bench->EseguiComando(14);
  EXPECT_FALSE(bench->undoName().empty());
  const std::string other = makeShop("altro");
  user.folders = {other};
  choose(MenuAction::OpenShop);
  EXPECT_EQ(view.title, "Korvane - " + other);
  EXPECT_TRUE(bench->undoName().empty());
  EXPECT_FALSE(view.closed);
}

}  // namespace
}  // namespace kv::test
