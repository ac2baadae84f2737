// The windows of publishing that wait for a host: the choice of a folder on the server, the update of the database.
#include <gtest/gtest.h>

#include <QFrame>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

#include "dialog_fixture.h"
#include "publish/settings/frm_folder_ftp.h"
#include "publish/update/busy_shape.h"
#include "publish/update/frm_update.h"
#include "store/schema/schema.h"
#include "support/answering_host.h"
#include "support/listing_server.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheServerFolderDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    server.home = "/home";
    server.folders = {{"/home", {test::unixFolder("www"), test::unixFolder("la mia")}}, {"/home/www", {}}};
  }
  void start() {
    dialog.emplace(shopFolderTitle, ConnectionSettings(), server, user);
    show(*dialog);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !server.commands.empty(); }));
    QApplication::processEvents();
  }
  QListWidgetItem* item(int row) const { return control<QListWidget>(*dialog, "lstCartelle")->item(row); }
  void onItem(int row, bool twice) const {
    auto* list = control<QListWidget>(*dialog, "lstCartelle");
    const QPoint middle = list->visualItemRect(item(row)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, middle);
    if (twice) QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, middle);
  }
  std::string line(const char* name) const { return fromQt(control<QLineEdit>(*dialog, name)->text()); }

  test::ListingServer server;
  std::optional<frmFolderFTP> dialog;
};

TEST_F(TheServerFolderDialog, ListsTheFoldersAfterTheLogin) {
  start();
  EXPECT_EQ(line("txtPath"), "/home");
  ASSERT_EQ(control<QListWidget>(*dialog, "lstCartelle")->count(), 2);
  EXPECT_EQ(item(1)->text(), "la mia");
  EXPECT_EQ(fromQt(dialog->windowTitle()), "Korvane - Selezione cartella del negozio");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  test::keepPicture(*dialog, "server_folder");
}

TEST_F(TheServerFolderDialog, AClickChoosesADoubleClickEnters) {
  start();
  onItem(1, false);
  EXPECT_EQ(line("txtSelFolder"), "/home/la mia");
  onItem(0, true);
  EXPECT_EQ(line("txtPath"), "/home/www");
  EXPECT_EQ(control<QListWidget>(*dialog, "lstCartelle")->count(), 0);
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), ">www");
  EXPECT_EQ(server.commands.back(), "quit");
}

TEST_F(TheServerFolderDialog, AHyphenInTheNameOfAChosenFolderStays) {
  server.folders["/home"].push_back(test::unixFolder("cgi-bin"));
  start();
  onItem(2, false);
  EXPECT_EQ(line("txtSelFolder"), "/home/cgi-bin");
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), ">cgi-bin");
}

TEST_F(TheServerFolderDialog, AServerOutOfReachClosesItWithoutAChoice) {
  server.failures["connect"] = {transferNoConnection, "refused", {}};
  start();
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(dialog->tag(), "");
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(TheServerFolderDialog, EscapeInTheMiddleOfAListingBreaksOff) {
  server.beforeList = [this] { QTest::keyClick(&*dialog, Qt::Key_Escape); };
  start();
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(dialog->tag(), "");
  EXPECT_FALSE(server.isConnected());
  EXPECT_TRUE(user.shown.empty());
}

class TheUpdateDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    for (const char* folder : {"/db", "/online"}) ASSERT_TRUE(createFolders(shop + folder));
    ASSERT_TRUE(writeBytes(shop + "/online/abc.sc", "2\r\n"));
    ASSERT_TRUE(createDatabase(shop + "/db/sql.mdb", buildDatabaseTables()));
    dialog.emplace(UpdateJob{shop, shop + "/online", "http://a", {"h", "u", "d", "n", "abc"}}, env, host);
  }
  std::string answers() const { return fromQt(control<QPlainTextEdit>(*dialog, "txtRisposta")->toPlainText()); }

  test::AnsweringHost host;
  std::optional<frmUpdate> dialog;
};

TEST_F(TheUpdateDialog, StartsByItselfAndEndsWithItsTag) {
  EXPECT_EQ(test::namelessControls(*dialog), "");
  dialog->exec();
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(answers(), "Lingua1: OK\n_______________________\n\nLingua2: OK\n_______________________\n\n");
}

TEST_F(TheUpdateDialog, ShowsAFailureAboveItsHeading) {
  host.answers = {"citt\xE0 piena"};
  dialog->exec();
  EXPECT_TRUE(answers().starts_with("città piena\nLingua1: ERRORE\n")) << answers();
  EXPECT_TRUE(dialog->tag().starts_with("Si sono verificati errori nell'aggiornamento del database:"));
}

TEST_F(TheUpdateDialog, TheCancelIsAskedAboutAndTheRunGoesOnAfterANo) {
  host.onRequest = [this](const HttpRequest&) {
    if (host.requests.size() == 1) click(*dialog, "cmdAnnulla");
  };
  dialog->exec();
  EXPECT_EQ(dialog->tag(), "OK");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].preset, Answer::No);
}

TEST_F(TheUpdateDialog, AYesEndsItWithAnEmptyTag) {
  user.answers = {Answer::Yes};
  host.onRequest = [this](const HttpRequest&) {
    EXPECT_TRUE(control<QFrame>(*dialog, "shpBusy")->isVisible());
    test::keepPicture(*dialog, "update");
    QTest::keyClick(&*dialog, Qt::Key_Escape);
  };
  dialog->exec();
  EXPECT_EQ(dialog->tag(), "");
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(host.requests.size(), 1U);
}

/// Thinks about a question for longer than the window waits before it starts.
class PonderingUser final : public UserPort {
 public:
  explicit PonderingUser(Answer answer) : answer_(answer) {}
  void message(const std::string& /*text*/, Icon /*icon*/) override {}
  Answer question(const Question& /*question*/) override {
    QTest::qWait(1100);
    return answer_;
  }
  std::string chooseFolder(const std::string& /*prompt*/, const std::string& /*initial*/) override { return {}; }
  void progress(const Progress& /*progress*/) override {}
  bool yield() override { return true; }

 private:
  Answer answer_;
};

TEST_F(TheUpdateDialog, WaitsForTheAnswerToACancelBeforeItStarts) {
  for (const Answer answer : {Answer::Yes, Answer::No}) {
    host.requests.clear();
    PonderingUser pondering(answer);
    Environment asked{pondering, settings, clock, random, application, {}};
    dialog.emplace(UpdateJob{shop, shop + "/online", "http://a", {"h", "u", "d", "n", "abc"}}, asked, host);
    QTimer::singleShot(0, &*dialog, [this] { QTest::keyClick(&*dialog, Qt::Key_Escape); });
    dialog->exec();
    EXPECT_EQ(dialog->tag(), answer == Answer::Yes ? "" : "OK");
    EXPECT_EQ(host.requests.empty(), answer == Answer::Yes);
  }
}

TEST(TheBusyShape, MovesFifteenToTheRightAndStartsAgainAtTheEdge) {
  EXPECT_EQ(nextBusyEdge(0, 100), 15);
  EXPECT_EQ(nextBusyEdge(84, 100), 99);
  EXPECT_EQ(nextBusyEdge(85, 100), 0);
}

}  // namespace
}  // namespace kv
