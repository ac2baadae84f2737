// States of commands and menu entries as the cursors, the tab and the settings change; languages and price lists.

#include <array>

#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

class WorkbenchStatesTest : public WorkbenchFixture {};

constexpr std::array articleKeys{"articolo su", "articolo giu", "- articolo",  "copia articolo",
                                 "+ immagine0", "+ immagine1",  "+ immagine2", "maschera articoli"};
constexpr std::array departmentKeys{"+ categoria prima", "+ categoria dopo", "categoria su",      "categoria giu",
                                    "- categoria",       "copia categoria",  "+ articolo prima",  "+ articolo dopo",
                                    "+ immagine cat0",   "+ immagine cat1",  "maschera categorie"};

TEST_F(WorkbenchStatesTest, TheKeysOfAnArticleFollowTheArticleCursor) {
  start();
  article(0);
  for (const std::string_view key : articleKeys) EXPECT_TRUE(view.isOn(key)) << key;
  go("cat002");
  for (const std::string_view key : articleKeys) EXPECT_FALSE(view.isOn(key)) << key;
}

TEST_F(WorkbenchStatesTest, TheKeysOfADepartmentFollowTheDepartmentCursor) {
  start();
  for (const std::string_view key : departmentKeys) EXPECT_TRUE(view.isOn(key)) << key;
  go("###");
  for (const std::string_view key : departmentKeys) EXPECT_FALSE(view.isOn(key)) << key;
  EXPECT_FALSE(isOffered("department.delete"));
  EXPECT_TRUE(isOffered("department.insertBelow"));
}

TEST_F(WorkbenchStatesTest, AnImageCanBeTakenAwayOnlyWhereThereIsOne) {
  run(shop, "UPDATE articoli SET immagine1 = 'foto.gif' WHERE ID = 2");
  start();
  article(0);
  EXPECT_FALSE(view.isOn("- immagine1"));
  article(1);
  EXPECT_TRUE(view.isOn("- immagine1"));
  EXPECT_FALSE(view.isOn("- immagine0"));
}

TEST_F(WorkbenchStatesTest, TheServerFoldersNeedHostUserAndPassword) {
  start();
  leave(EditedSet::Generale, "hostname", "ftp.bottega.example");
  leave(EditedSet::Generale, "username", "bottega");
  leave(EditedSet::Generale, "password", "  ");
  EXPECT_FALSE(view.isOn(ftpFolders));
  leave(EditedSet::Generale, "password", "segreto");
  EXPECT_TRUE(view.isOn(ftpFolders));
  leave(EditedSet::Generale, "hostname", "");
  EXPECT_FALSE(view.isOn(ftpFolders));
}

TEST_F(WorkbenchStatesTest, TheTreeEntriesAreOffBesideTheTree) {
  start();
  for (const Tab tab : {Tab::Departments, Tab::Articles, Tab::Site, Tab::Internet}) {
    bench->selectTab(tab);
    const bool tree = tab == Tab::Departments || tab == Tab::Articles;
    EXPECT_EQ(view.tab, tab);
    EXPECT_EQ(isOffered("tree.expand"), tree);
    EXPECT_EQ(isOffered("tree.collapse"), tree);
    EXPECT_EQ(state("details.hide").enabled, tree);
    EXPECT_TRUE(state(tabCommand(tab)).checked);
  }
}

TEST_F(WorkbenchStatesTest, WhatWasCopiedInAnEarlierSessionCanBePasted) {
  run(shop, "INSERT INTO clipcategorie (titolo) VALUES ('Vasi')");
  start();
  EXPECT_TRUE(isOffered("department.paste"));
  EXPECT_FALSE(isOffered("article.paste"));
}

TEST_F(WorkbenchStatesTest, ADialogThatIsMissingTurnsItsEntryOff) {
  dialogs().publishOptions = nullptr;
  start();
  EXPECT_FALSE(isOffered("publish"));
  EXPECT_TRUE(isOffered("build"));
  EXPECT_FALSE(state("showcase").enabled);
  choose("showcase");
  EXPECT_TRUE(dialogsRun.empty());
}

TEST_F(WorkbenchStatesTest, ADialogThatEditedTheCatalogueIsOneStep) {
  dialogs().showcase = [this] {
    EXPECT_TRUE(session.catalogue.execute("UPDATE generale SET colonnevetrina = 5"));
    return true;
  };
  start();
  choose("showcase");
  EXPECT_EQ(undoName(), "Impostazioni vetrina");
  EXPECT_EQ(state("undo").text, "Annulla: Impostazioni vetrina");
  undo();
  EXPECT_EQ(scalar("SELECT colonnevetrina FROM generale"), "");
}

TEST_F(WorkbenchStatesTest, WhatWasWrittenBesideTheCommandsIsNoPartOfAStep) {
  start();
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET db_security = 'gettone'"));
  press("department.insertAfter");
  undo();
  EXPECT_EQ(scalar("SELECT db_security FROM generale"), "gettone");
}

TEST_F(WorkbenchStatesTest, TheLanguageMenuShowsTheLanguagesThereAre) {
  start();
  EXPECT_EQ(state("language.1").text, "&1 - italiano");
  EXPECT_EQ(state("language.2").text, "&2 - inglese");
  EXPECT_TRUE(state("language.2").visible);
  EXPECT_FALSE(state("language.3").visible);
  choose("language.2");
  EXPECT_TRUE(state("language.2").checked);
  EXPECT_FALSE(state("language.1").checked);
}

TEST_F(WorkbenchStatesTest, WithOneLanguageThereIsNothingToReplicate) {
  answer(&WorkbenchDialogs::replicateLanguages, false);
  run(shop, "UPDATE lingue SET lingua2 = ''");
  start();
  EXPECT_FALSE(state("language.2").visible);
  EXPECT_FALSE(state("languages.replicate").enabled);
}

TEST_F(WorkbenchStatesTest, WithTwoLanguagesTheyCanBeReplicated) {
  answer(&WorkbenchDialogs::replicateLanguages, false);
  start();
  EXPECT_TRUE(state("languages.replicate").enabled);
}

TEST_F(WorkbenchStatesTest, ChangingTheLanguageKeepsDepartmentAndArticle) {
  start();
  article(1);
  bench->CambiaLingua(2);
  EXPECT_EQ(view.selected, "cat001");
  EXPECT_EQ(shown(EditedSet::Categorie, "titolo"), "Pots");
  EXPECT_EQ(shown(EditedSet::Articoli, "titolo"), "Frost");
  EXPECT_EQ(bench->sets().tree().front().titolo, "Pots");
  leave(EditedSet::Articoli, "titolo", "Hoarfrost");
  EXPECT_EQ(rows("SELECT titolo, titolo_l2 FROM articoli WHERE ID = 2"), "Brina|Hoarfrost\n");
}

TEST_F(WorkbenchStatesTest, ChangingTheLanguageOffTheTableStaysOnTheRoot) {
  start();
  go("###");
  bench->CambiaLingua(2);
  EXPECT_EQ(view.selected, "###");
  EXPECT_FALSE(bench->sets().onDepartment());
}

TEST_F(WorkbenchStatesTest, WhatIsBeingTypedBelongsToTheLanguageItWasTypedIn) {
  start();
  article(0);
  view.typing = [this] { leave(EditedSet::Articoli, "titolo", "Aurora"); };
  bench->CambiaLingua(2);
  EXPECT_EQ(rows("SELECT titolo, titolo_l2 FROM articoli WHERE ID = 1"), "Aurora|Dawn\n");
}

TEST_F(WorkbenchStatesTest, TheLanguageDialogTakesTheWindowBackToLanguageOne) {
  dialogs().languages = [this] {
    EXPECT_TRUE(session.catalogue.execute("UPDATE lingue SET lingua2 = ''"));
    return true;
  };
  start();
  bench->CambiaLingua(2);
  choose("languages");
  EXPECT_EQ(session.currentLanguage, 1);
  EXPECT_EQ(session.languageCount, 1);
}

TEST_F(WorkbenchStatesTest, AnEditorOfAPriceListWritesTheListThatIsShown) {
  start();
  article(0);
  EXPECT_EQ(shown(EditedSet::Articoli, "prezzo"), "14,5");
  bench->selectListino(3);
  EXPECT_EQ(view.listino, 3);
  EXPECT_EQ(bench->listino(), 3);
  EXPECT_EQ(shown(EditedSet::Articoli, "prezzo"), "");
  leave(EditedSet::Articoli, "prezzo", "12,75");
  leave(EditedSet::Articoli, "offerta", "1");
  EXPECT_EQ(rows("SELECT prezzo, prezzo3, offerta3 FROM articoli WHERE ID = 1"), "145000|127500|1\n");
  leave(EditedSet::Categorie, "sconto", "10");
  leave(EditedSet::Categorie, "inaccessibile", "1");
  EXPECT_EQ(rows("SELECT sconto, sconto3, inaccessibile3 FROM categorie WHERE ID = 'cat001'"), "null|10.0|1\n");
}

TEST_F(WorkbenchStatesTest, HidingTheDetailsIsToldToTheWindow) {
  start();
  choose("details.hide");
  EXPECT_TRUE(view.hidden);
  EXPECT_TRUE(state("details.hide").checked);
  choose("details.hide");
  EXPECT_FALSE(view.hidden);
}

TEST_F(WorkbenchStatesTest, LeavingCompactsAndClosesTheWindow) {
  start();
  choose("exit");
  EXPECT_TRUE(view.closed);
  EXPECT_TRUE(session.compactOnExit);
}

TEST_F(WorkbenchStatesTest, HelpOpensThePageOfTheTab) {
  start();
  press("help.tab");
  bench->selectTab(Tab::Internet);
  press("help.tab");
  choose("help.questions");
  choose("help.contents");
  EXPECT_THAT(opened, ElementsAre(application + "/help/pagine/reparti.htm", application + "/help/pagine/internet.htm",
                                  application + "/help/pagine/faq.htm", application + "/help/index.htm"));
}

TEST_F(WorkbenchStatesTest, ADocumentThatCannotBeOpenedIsTold) {
  openResult = 2;
  start();
  press("help.tab");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Impossibile aprire " + application + "/help/pagine/reparti.htm");
}

TEST_F(WorkbenchStatesTest, TheCompanionsAndTheManualAreOfferedOnlyWhenTheyAreThere) {
  start();
  EXPECT_FALSE(state("import.orders").visible);
  EXPECT_FALSE(state("help.templates").visible);
  write(application + "/ordsync.exe", "");
  write(application + "/manuale_template2.rtf", "");
  EXPECT_TRUE(state("import.orders").visible);
  EXPECT_TRUE(state("help.templates").visible);
  choose("import.orders");
  choose("help.templates");
  EXPECT_THAT(opened, ElementsAre(application + "/ordsync.exe", application + "/manuale_template2.rtf"));
}

}  // namespace
}  // namespace kv::test
