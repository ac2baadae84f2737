// A build started from the main window: its dialog, Annulla in the middle of it, and the questions before and after.

#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QWindow>

#include "forms/wired_window.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

const QString buildTitle = QStringLiteral("Korvane - Costruzione sito");
const QString templateTitle = QStringLiteral("Korvane - Scelta del template");
constexpr const char* finishedText =
    "Creazione del negozio terminata. Aggiornare il sito per rendere effettive le modifiche.";
constexpr const char* templateNeeded = "Per costruire il negozio è necessario scegliere un template";

class WindowBuild : public WiredWindow {
 protected:
  WindowBuild() {
    fill(std::string("DELETE FROM categorie; DELETE FROM opzioni;") + threeDepartments);
    fill("UPDATE generale SET immagine0 = '', immagine1 = ''");
  }
  /// Enough articles for a build that lasts many turns of the events.
  void lengthen() {
    fill(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 4000)"
        " INSERT INTO articoli (catID, ordinamento, titolo) SELECT 'cat003', 1000 + i, 'Articolo ' || i FROM n");
  }
  /// Acts in the dialog once the build has reached the articles.
  void amidBuild(std::function<void(QDialog&)> act) {
    auto* poll = new QTimer(window.get());
    QObject::connect(poll, &QTimer::timeout, window.get(), [poll, act = std::move(act)] {
      auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr || dialog->windowTitle() != buildTitle) return;
      if (!control<QLabel>(*dialog, "lblStato")->text().startsWith(QStringLiteral("Lingua "))) return;
      poll->stop();
      poll->deleteLater();
      act(*dialog);
    });
    poll->start(1);
  }
  bool built(const std::string& page) const { return fileExists(shop + "/online/" + page); }
};

TEST_F(WindowBuild, ItsButtonBuildsSavesWhatIsTypedAndSaysSo) {
  openWindow();
  auto* title = control<QLineEdit>(window->page(Tab::Departments), "titolo");
  title->setFocus();
  title->selectAll();
  QTest::keyClicks(title, "Orci");
  std::string said;
  whenFinished(said);
  run("build");
  EXPECT_EQ(said, finishedText);
  EXPECT_TRUE(user.shown.empty()) << asText(user.shown.front());
  for (const char* page : {"cat001.php", "cat002.php", "cat003.php", "cat001_l2.php"}) EXPECT_TRUE(built(page)) << page;
  EXPECT_NE(readBytes(shop + "/online/cat001.php").value_or("").find("Orci"), std::string::npos);
  EXPECT_TRUE(fileExists(shop + "/kvftp.dat"));
  EXPECT_FALSE(folderExists(shop + "/tmp"));
  EXPECT_EQ(window->workbench().history().undoName(), "Modifica Titolo") << "a build is no step";
}

TEST_F(WindowBuild, CaptionAndBarAdvanceWhileItRuns) {
  lengthen();
  openWindow();
  std::vector<int> places;
  std::set<std::string> captions;
  auto* poll = new QTimer(window.get());
  QObject::connect(poll, &QTimer::timeout, window.get(), [&] {
    const QWidget* dialog = QApplication::activeModalWidget();
    if (dialog == nullptr || dialog->findChild<QProgressBar*>() == nullptr) return;
    const auto* bar = control<QProgressBar>(*dialog, "prgBarra");
    if (bar->maximum() <= 1) return;
    EXPECT_EQ(bar->maximum(), 30000);
    places.push_back(bar->value());
    captions.insert(fromQt(control<QLabel>(*dialog, "lblStato")->text()));
  });
  poll->start(1);
  std::string said;
  whenFinished(said);
  run("build");
  poll->stop();
  ASSERT_GT(places.size(), 3U);
  EXPECT_TRUE(std::ranges::is_sorted(places));
  EXPECT_LT(places.front(), places.back());
  EXPECT_GT(captions.size(), 3U);
  EXPECT_TRUE(captions.begin()->starts_with("Lingua 1: Reparti ") || captions.begin()->empty()) << *captions.begin();
  EXPECT_NE(captions.rbegin()->find("/4004"), std::string::npos) << *captions.rbegin();
}

TEST_F(WindowBuild, AClickOnAnnullaLeavesWithoutAWordAndWithoutCleaning) {
  lengthen();
  openWindow();
  bool answered = false;
  amidBuild([&](QDialog& dialog) {
    auto* cancel = control<QPushButton>(dialog, "cmdAnnulla");
    QWindow* handle = dialog.windowHandle();
    const QPoint place = cancel->mapTo(&dialog, cancel->rect().center());
    QTest::mousePress(handle, Qt::LeftButton, {}, place);
    QTest::mouseRelease(handle, Qt::LeftButton, {}, place);
    answered = !cancel->isEnabled();
  });
  run("build");
  EXPECT_TRUE(answered) << "the button answers at once";
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_TRUE(folderExists(shop + "/tmp"));
  EXPECT_TRUE(fileExists(shop + "/kvftp.dat"));
  EXPECT_TRUE(fileExists(shop + "/source.mdb"));
  EXPECT_FALSE(built("cat001_l2.php")) << "the second language was not begun";
  EXPECT_NE(stored("db_security"), "");
}

TEST_F(WindowBuild, AfterACancelTheWindowWorksOnAndTheNextBuildGoesThrough) {
  lengthen();
  openWindow();
  amidBuild([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
  run("build");
  EXPECT_FALSE(built("cat003_l2.php"));
  run("department.insertAfter");
  EXPECT_EQ(path(), "Negozio/Nuovo Reparto");
  std::string said;
  whenFinished(said);
  run("build");
  EXPECT_EQ(said, finishedText);
  EXPECT_TRUE(built("cat003_l2.php"));
  EXPECT_FALSE(folderExists(shop + "/tmp"));
}

TEST_F(WindowBuild, TheCloseBoxOfTheDialogIsItsButton) {
  lengthen();
  openWindow();
  amidBuild([](QDialog& dialog) { EXPECT_FALSE(dialog.close()) << "refused as a close"; });
  run("build");
  EXPECT_TRUE(user.shown.empty());
  EXPECT_TRUE(folderExists(shop + "/tmp"));
}

TEST_F(WindowBuild, TheMainWindowIsBlockedWhileItRuns) {
  lengthen();
  openWindow();
  amidBuild([this](QDialog& dialog) {
    EXPECT_TRUE(dialog.isModal());
    EXPECT_EQ(dialog.parentWidget(), window.get());
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                      window->tabs().mapTo(window.get(), window->tabs().tabRect(2).center()));
    EXPECT_EQ(window->workbench().tab(), Tab::Departments);
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  run("build");
}

TEST_F(WindowBuild, AMissingTemplateIsChosenFirst) {
  openWindow();
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET template = ''"));
  session.templatePath.clear();
  std::string offered, said;
  whenShown(templateTitle, [&](QWidget& dialog) {
    auto* list = dialog.findChild<QAbstractItemView*>();
    ASSERT_NE(list, nullptr);
    list->setCurrentIndex(list->model()->index(0, 0));
    offered = fromQt(list->currentIndex().data().toString());
    QTest::keyClick(&dialog, Qt::Key_Return);
    whenFinished(said);
  });
  run("build");
  EXPECT_EQ(said, finishedText);
  EXPECT_EQ(stored("template"), offered);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(WindowBuild, LeavingTheTemplateChoiceAsksWithOkAsTheDefault) {
  openWindow();
  session.templatePath.clear();
  int shown = 0;
  for (int i = 0; i < 2; ++i) {
    user.answers.push_back(i == 0 ? Answer::Ok : Answer::Cancel);
  }
  auto* poll = new QTimer(window.get());
  QObject::connect(poll, &QTimer::timeout, window.get(), [&] {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal->windowTitle() != templateTitle) return;
    ++shown;
    QTest::keyClick(modal, Qt::Key_Escape);
  });
  poll->start(5);
  run("build");
  poll->stop();
  EXPECT_EQ(shown, 2) << "OK goes back to the choice";
  ASSERT_EQ(user.shown.size(), 2U);
  EXPECT_EQ(user.shown[0], (Shown{templateNeeded, Icon::Exclamation, Buttons::OkCancel, Answer::Ok, Answer::Ok}));
  EXPECT_EQ(user.shown[1], (Shown{templateNeeded, Icon::Exclamation, Buttons::OkCancel, Answer::Ok, Answer::Cancel}));
  EXPECT_FALSE(built("cat001.php"));
}

TEST_F(WindowBuild, AMissingLanguageModuleIsToldAndNothingIsBuilt) {
  fill("UPDATE lingue SET lingua2 = 'klingon'");
  openWindow();
  run("build");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
  EXPECT_NE(user.shown[0].text.find("I seguenti moduli linguistici non sono stati trovati:"), std::string::npos);
  EXPECT_NE(user.shown[0].text.find("klingon"), std::string::npos);
  EXPECT_FALSE(built("cat001.php"));
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(WindowBuild, AMissingOnlineFolderIsTold) {
  openWindow();
  std::filesystem::remove_all(session.onlineFolder);
  run("build");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text,
            "La cartella di lavoro '" + session.onlineFolder +
                "' non esiste: \nselezionare un'altra cartella (oppure resettare le cartelle di lavoro) e ripetere "
                "l'operazione");
}

}  // namespace
}  // namespace kv::test
