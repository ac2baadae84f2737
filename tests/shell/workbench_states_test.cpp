// States of commands and menu entries as the cursors, the tab and the settings change; languages and price lists.

#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

class WorkbenchStatesTest : public WorkbenchFixture {};

TEST_F(WorkbenchStatesTest, TheKeysOfAnArticleFollowTheArticleCursor) {
  start();
  article(0);
  for (const std::string_view key : articleKeys()) EXPECT_TRUE(view.isOn(key)) << key;
  go("cat002");
  for (const std::string_view key : articleKeys()) EXPECT_FALSE(view.isOn(key)) << key;
}

TEST_F(WorkbenchStatesTest, TheKeysOfADepartmentFollowTheDepartmentCursor) {
  start();
  for (const std::string_view key : departmentKeys()) EXPECT_TRUE(view.isOn(key)) << key;
  go("###");
  for (const std::string_view key : departmentKeys()) EXPECT_FALSE(view.isOn(key)) << key;
  EXPECT_FALSE(bench->isCommandEnabled(13));
  EXPECT_TRUE(bench->isCommandEnabled(20));
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
    EXPECT_EQ(bench->isCommandEnabled(7), tree);
    EXPECT_EQ(bench->isCommandEnabled(8), tree);
    EXPECT_EQ(state(MenuAction::HideDetails).enabled, tree);
    EXPECT_TRUE(state(MenuAction::ShowTab, static_cast<int>(tab)).checked);
  }
}

TEST_F(WorkbenchStatesTest, WhatWasCopiedInAnEarlierSessionCanBePasted) {
  run(shop, "INSERT INTO clipcategorie (titolo) VALUES ('Vasi')");
  start();
  EXPECT_TRUE(bench->isCommandEnabled(11));
  EXPECT_FALSE(bench->isCommandEnabled(6));
}

TEST_F(WorkbenchStatesTest, ADialogThatIsMissingTurnsItsEntryOff) {
  ports.dialogs.erase("frmImpostaFTP");
  start();
  EXPECT_FALSE(bench->isCommandEnabled(51));
  EXPECT_TRUE(bench->isCommandEnabled(50));
  EXPECT_FALSE(state(MenuAction::Showcase).enabled);
  bench->runEntry(menu(MenuAction::Showcase));
  EXPECT_TRUE(dialogsRun.empty());
}

TEST_F(WorkbenchStatesTest, ADialogThatEditedTheCatalogueIsOneStep) {
  ports.dialogs["frmVetrina"] = [this](const std::string&) {
    EXPECT_TRUE(session.catalogue.execute("UPDATE generale SET colonnevetrina = 5"));
    return std::string("OK");
  };
  start();
  choose(MenuAction::Showcase);
  EXPECT_EQ(bench->undoName(), "Impostazioni vetrina");
  EXPECT_EQ(state(MenuAction::Undo).text, "Annulla: Impostazioni vetrina");
  bench->undo();
  EXPECT_EQ(scalar("SELECT colonnevetrina FROM generale"), "");
}

TEST_F(WorkbenchStatesTest, WhatWasWrittenBesideTheCommandsIsNoPartOfAStep) {
  start();
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET db_security = 'gettone'"));
  bench->EseguiComando(14);
  bench->undo();
  EXPECT_EQ(scalar("SELECT db_security FROM generale"), "gettone");
}

TEST_F(WorkbenchStatesTest, TheLanguageMenuShowsTheLanguagesThereAre) {
  start();
  EXPECT_EQ(state(MenuAction::EditLanguage, 1).text, "&1 - italiano");
  EXPECT_EQ(state(MenuAction::EditLanguage, 2).text, "&2 - inglese");
  EXPECT_TRUE(state(MenuAction::EditLanguage, 2).visible);
  EXPECT_FALSE(state(MenuAction::EditLanguage, 3).visible);
  choose(MenuAction::EditLanguage, 2);
  EXPECT_TRUE(state(MenuAction::EditLanguage, 2).checked);
  EXPECT_FALSE(state(MenuAction::EditLanguage, 1).checked);
}

TEST_F(WorkbenchStatesTest, WithOneLanguageThereIsNothingToReplicate) {
  addDialog("frmReplica", "");
  run(shop, "UPDATE lingue SET lingua2 = ''");
  start();
  EXPECT_FALSE(state(MenuAction::EditLanguage, 2).visible);
  EXPECT_FALSE(state(MenuAction::ReplicateLanguages).enabled);
}

TEST_F(WorkbenchStatesTest, WithTwoLanguagesTheyCanBeReplicated) {
  addDialog("frmReplica", "");
  start();
  EXPECT_TRUE(state(MenuAction::ReplicateLanguages).enabled);
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
  ports.dialogs["frmLingue"] = [this](const std::string&) {
    EXPECT_TRUE(session.catalogue.execute("UPDATE lingue SET lingua2 = ''"));
    return std::string("OK");
  };
  start();
  bench->CambiaLingua(2);
  choose(MenuAction::Languages);
  EXPECT_EQ(session.currentLanguage, 1);
  EXPECT_EQ(session.languageCount, 1);
}

TEST_F(WorkbenchStatesTest, AnEditorOfAPriceListWritesTheListThatIsShown) {
  start();
  article(0);
  EXPECT_EQ(shown(EditedSet::Articoli, "prezzo"), "14,5");
  bench->selectListino(3);
  EXPECT_EQ(view.listino, 3);
  EXPECT_EQ(session.currentListino, 3);
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
  choose(MenuAction::HideDetails);
  EXPECT_TRUE(view.hidden);
  EXPECT_TRUE(state(MenuAction::HideDetails).checked);
  choose(MenuAction::HideDetails);
  EXPECT_FALSE(view.hidden);
}

TEST_F(WorkbenchStatesTest, LeavingCompactsAndClosesTheWindow) {
  start();
  choose(MenuAction::Exit);
  EXPECT_TRUE(view.closed);
  EXPECT_TRUE(session.compactOnExit);
}

TEST_F(WorkbenchStatesTest, HelpOpensThePageOfTheTab) {
  start();
  bench->showHelp();
  bench->selectTab(Tab::Internet);
  bench->showHelp();
  choose(MenuAction::HelpQuestions);
  choose(MenuAction::HelpContents);
  EXPECT_THAT(opened, ElementsAre(application + "/help/pagine/reparti.htm", application + "/help/pagine/internet.htm",
                                  application + "/help/pagine/faq.htm", application + "/help/index.htm"));
}

TEST_F(WorkbenchStatesTest, ADocumentThatCannotBeOpenedIsTold) {
  openResult = 2;
  start();
  bench->showHelp();
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Impossibile aprire " + application + "/help/pagine/reparti.htm");
}

TEST_F(WorkbenchStatesTest, TheCompanionsAndTheManualAreOfferedOnlyWhenTheyAreThere) {
  start();
  EXPECT_FALSE(state(MenuAction::DownloadOrders).visible);
  EXPECT_FALSE(state(MenuAction::TemplateGuide).visible);
  write(application + "/ordsync.exe", "");
  write(application + "/manuale_template2.rtf", "");
  EXPECT_TRUE(state(MenuAction::DownloadOrders).visible);
  EXPECT_TRUE(state(MenuAction::TemplateGuide).visible);
  choose(MenuAction::DownloadOrders);
  choose(MenuAction::TemplateGuide);
  EXPECT_THAT(opened, ElementsAre(application + "/ordsync.exe", application + "/manuale_template2.rtf"));
}

}  // namespace
}  // namespace kv::test
