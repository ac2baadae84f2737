// Refusals and questions of the main window, with their texts and default buttons; and as boxes of the real window.

#include <QMessageBox>

#include "forms/wired_window.h"
#include "platform/qt/frm_user.h"

namespace kv::test {
namespace {

constexpr const char* deleteArticle = "Eliminare l'articolo selezionato?";
constexpr const char* deleteFull = "Il reparto contiene articoli che saranno cancellati. Eliminarlo comunque?";

class Questions : public DrivenWindow {
 protected:
  std::string clipboard() { return rows("SELECT titolo FROM cliparticoli ORDER BY ID"); }
};

TEST_F(Questions, AnArticleIsDeletedOnlyOnAYes) {
  openWide();
  goArticle(1);
  EXPECT_TRUE(press("article.delete"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], asked(deleteArticle, Answer::No, Answer::No));
  EXPECT_EQ(listShown(), "Alba [Brina] Cielo");
  user.answers = {Answer::Yes};
  EXPECT_TRUE(choose("article.delete"));
  EXPECT_EQ(listShown(), "Alba [Cielo]");
}

TEST_F(Questions, TheLastArticleOfTheListGivesTheCursorToTheOneBefore) {
  openWide();
  goArticle(2);
  user.answers = {Answer::Yes};
  EXPECT_TRUE(press("article.delete"));
  EXPECT_EQ(listShown(), "Alba [Brina]");
}

TEST_F(Questions, ADepartmentWithSubdepartmentsIsNotDeleted) {
  openWide();
  EXPECT_TRUE(press("department.delete"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], said("Non è consentito eliminare un reparto che contiene sottoreparti.\n"
                                "Per cancellare questo reparto è necessario rimuovere i sottoreparti.",
                                Icon::Exclamation));
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli) Piatti)");
}

TEST_F(Questions, ADepartmentWithArticlesIsDeletedOnlyOnAYes) {
  openWide();
  go("cat003");
  EXPECT_TRUE(choose("department.delete"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], asked(deleteFull, Answer::No, Answer::No));
  user.answers = {Answer::Yes};
  EXPECT_TRUE(press("department.delete"));
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli))");
  EXPECT_EQ(selected(), "###") << "a top department leaves none selected";
  EXPECT_FALSE(line(EditedSet::Categorie, "titolo").isEnabled());
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM articoli WHERE catID = 'cat003'"), "0");
}

TEST_F(Questions, TheLastDepartmentIsNotDeleted) {
  run(shop, "DELETE FROM articoli; DELETE FROM categorie WHERE ID <> 'cat003'");
  openWide();
  EXPECT_TRUE(press("department.delete"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0], said("Almeno un reparto deve essere definito: non è possibile eliminare questo reparto",
                                Icon::Exclamation));
  EXPECT_EQ(treeShown(), "Negozio(Piatti)");
}

TEST_F(Questions, DeletingTheLastSubdepartmentGoesToItsParent) {
  openWide();
  go("cat002");
  EXPECT_TRUE(press("department.delete"));
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(selected(), "cat001");
  EXPECT_EQ(scalar("SELECT hafigli FROM categorie WHERE ID = 'cat001'"), "0");
}

TEST_F(Questions, CopyingADepartmentAsksForItsArticles) {
  openWide();
  user.answers = {Answer::No};
  EXPECT_TRUE(press("department.copy"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Copiare anche tutti gli articoli del reparto?");
  EXPECT_EQ(user.shown[0].buttons, Buttons::YesNo);
  EXPECT_EQ(clipboard(), "");
  EXPECT_FALSE(window->menus().action("article.paste")->isEnabled());
  user.answers = {Answer::Yes};
  EXPECT_TRUE(choose("department.copy"));
  EXPECT_EQ(clipboard(), "Alba Brina Cielo");
  EXPECT_TRUE(window->menus().action("article.paste")->isEnabled());
  go("cat002");
  user.shown.clear();
  EXPECT_TRUE(press("department.copy"));
  EXPECT_TRUE(user.shown.empty()) << "without articles there is nothing to ask";
}

TEST_F(Questions, PastingNeedsADepartmentAndAsksForMoreThanOne) {
  run(shop, "INSERT INTO cliparticoli (titolo) VALUES ('Eco'), ('Fonte')");
  openWide();
  go("###");
  goTab(Tab::Articles);
  EXPECT_TRUE(press("article.paste"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Per incollare gli articoli è necessario selezionare un reparto.");
  go("cat003");
  user.answers = {Answer::No};
  EXPECT_TRUE(press("article.paste"));
  ASSERT_EQ(user.shown.size(), 2U);
  EXPECT_EQ(user.shown[1].text, "Saranno incollati 2 articoli. Procedere?");
  EXPECT_EQ(user.shown[1].buttons, Buttons::YesNo);
  EXPECT_EQ(listShown(), "[Duna]");
  user.answers = {Answer::Yes};
  EXPECT_TRUE(choose("article.paste"));
  EXPECT_EQ(listShown(), "Duna Eco [Fonte]");
  EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the wait cursor is gone";
}

TEST_F(Questions, PublishingNeedsABuild) {
  openWide();
  answer(&WorkbenchDialogs::remindToBuild, true);
  EXPECT_TRUE(press("publish"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "E' necessario costruire il negozio prima di aggiornare il sito");
  EXPECT_EQ(dialogsRun, std::vector<std::string>{"remindToBuild"});
}

TEST_F(Questions, TheBackOfficeNeedsAnAddress) {
  openWide();
  EXPECT_TRUE(press("backOffice"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text,
            "Il BackOffice non è disponibile finché non si costruisce ed aggiorna il negozio per la prima volta.\n"
            "Indicarne l'URL nella scheda \"Internet\", quindi costruire ed aggiornare il negozio.");
  EXPECT_TRUE(opened.empty());
}

TEST_F(Questions, EmptyingTheFoldersAsksThriceWithTheRefusalAsTheDefault) {
  write(shop + "/online/a.php", "x");
  write(shop + "/scripts/b.php", "x");
  openWide();
  user.answers = {Answer::Yes, Answer::Ok, Answer::Ok};
  EXPECT_TRUE(choose("shop.cleanFolders"));
  ASSERT_EQ(user.shown.size(), 3U);
  EXPECT_EQ(user.shown[0], asked("Le seguenti cartelle saranno svuotate:\n\n" + shop + "/online\n" + shop +
                                     "/scripts\n\nATTENZIONE: Tutti i file presenti in queste cartelle verranno "
                                     "cancellati.\nSi desidera procedere con la cancellazione?",
                                 Answer::No, Answer::Yes, Icon::Exclamation));
  for (const int i : {1, 2}) {
    EXPECT_EQ(user.shown[static_cast<std::size_t>(i)].preset, Answer::Cancel);
    EXPECT_EQ(user.shown[static_cast<std::size_t>(i)].buttons, Buttons::OkCancel);
    EXPECT_EQ(user.shown[static_cast<std::size_t>(i)].text,
              "Saranno cancellati i file presenti in " + shop + (i == 1 ? "/online" : "/scripts"));
  }
  EXPECT_FALSE(fileExists(shop + "/online/a.php"));
  EXPECT_FALSE(fileExists(shop + "/scripts/b.php"));
}

TEST_F(Questions, AShopThatIsNoneIsRefusedAndTheOneInUseStays) {
  openWide();
  ASSERT_TRUE(createFolders(root / "vuota"));
  user.folders = {root / "vuota"};
  EXPECT_TRUE(choose("shop.open"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text,
            "La cartella selezionata non contiene un negozio\n(oppure il negozio contenuto è corrotto)");
  user.folders = {shop};
  EXPECT_TRUE(choose("shop.new"));
  ASSERT_EQ(user.shown.size(), 2U);
  EXPECT_EQ(user.shown[1].text, "Nel percorso specificato è già presente un negozio");
  user.folders = {"/"};
  EXPECT_TRUE(choose("shop.new"));
  ASSERT_EQ(user.shown.size(), 3U);
  EXPECT_EQ(user.shown[2].text, "La cartella '/' è la root di un disco, e non è consentito crearvi un nuovo negozio");
  EXPECT_EQ(treeShown(), "Negozio(Vasi(Piccoli) Piatti)");
  EXPECT_TRUE(press("department.insertAfter")) << "the window works on";
}

TEST_F(Questions, TheyAreBoxesOverTheWindowWithTheDefaultInPlace) {
  QtUser boxes;
  Environment boxed{boxes, settings, clock, random, application, {}};
  Session another;
  frmMain real(another, boxed, portsWithCommands());
  boxed.hooks.bind = [&](Session&) { real.workbench().bindSession(); };
  boxed.hooks.release = [&](Session&) { real.workbench().releaseSession(); };
  ASSERT_EQ(startSession(another, boxed), LoadResult::Opened);
  real.workbench().showShop();
  boxes.setMainWindow(&real);
  real.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&real));
  real.workbench().selectTab(Tab::Articles);
  processEvents();
  std::vector<std::string> seen;
  const auto deleteWith = [&](Qt::Key key) {
    whenModal([&](QWidget& modal) {
      auto* box = qobject_cast<QMessageBox*>(&modal);
      ASSERT_NE(box, nullptr);
      seen.push_back(fromQt(box->text()) + " " + defaultButton(*box));
      EXPECT_EQ(box->parentWidget(), &real);
      QTest::keyClick(box, key);
    });
    QApplication::setActiveWindow(&real);
    real.articles().setFocus();
    QTest::keyClick(&real.articles(), Qt::Key_Delete);
    processEvents();
    return real.articles().articles().rowCount();
  };
  EXPECT_EQ(deleteWith(Qt::Key_Return), 3) << "Enter refuses";
  EXPECT_EQ(deleteWith(Qt::Key_Escape), 3);
  EXPECT_EQ(deleteWith(Qt::Key_S), 2) << "the access key of the button consents";
  EXPECT_EQ(seen, std::vector<std::string>(3, std::string(deleteArticle) + " No"));
  boxes.setMainWindow(nullptr);
  closeSession(another, boxed);
}

TEST_F(WiredWindow, TheReminderBeforePublishingIsShownUntilItIsToldNotTo) {
  openWindow();
  ASSERT_TRUE(writeBytes(shop + "/kvftp.dat", "#\r\n"));
  int published = 0;
  window->workbench().ports().dialogs.publishOptions = [&] {
    ++published;
    return false;
  };
  window->entriesChanged();
  processEvents();
  const auto answer = [](const char* button, bool never) {
    whenModal([button, never](QWidget& dialog) {
      EXPECT_EQ(defaultButton(dialog), "Sì");
      control<QCheckBox>(dialog, "chkMai")->setChecked(never);
      for (auto* each : dialog.findChildren<QPushButton*>()) {
        if (plain(each->text()) == QString::fromUtf8(button)) return QTest::mouseClick(each, Qt::LeftButton);
      }
    });
  };
  answer("No", false);
  run("publish");
  EXPECT_EQ(published, 0);
  answer("Sì", true);
  run("publish");
  EXPECT_EQ(published, 1);
  EXPECT_EQ(settings.get(settingsSection, "NoShow"), "1");
  run("publish");
  EXPECT_EQ(published, 2) << "without the reminder";
}

}  // namespace
}  // namespace kv::test
