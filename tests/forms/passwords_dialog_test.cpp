// The dialog of the one-time passwords and the window of their transfer.
#include <gtest/gtest.h>

#include <QFrame>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

#include "captions.h"
#include "dialog_fixture.h"
#include "publish/passwords/frm_otp.h"
#include "publish/settings/firewall_settings.h"
#include "support/answering_host.h"
#include "support/scripted_ftp_server.h"

namespace kv {
namespace {

using test::click;
using test::control;

constexpr const char* remotePasswords = "/casa/www/abcdefghijklmnopqrst.php";
constexpr const char* passwordsUrl = "http://a/abcdefghijklmnopqrst.php";

class ThePasswordsDialog : public ::testing::Test {
 protected:
  ThePasswordsDialog() : server({.home = "/casa"}), transfer(makeTransfer()) {
    EXPECT_TRUE(createFolders(root / "online"));
    EXPECT_TRUE(writeBytes(root / "a.ric", "r1\nr2"));
    EXPECT_TRUE(writeBytes(root / "a.ris", "s1\r\n"));
    server.makeFolder("/casa/www");
    host.pages[passwordsUrl] = {200, "OK"};
    host.onRequest = [this](const HttpRequest&) { sent = server.file(remotePasswords); };
    FirewallSettings way;
    way.ftpPort = server.port();
    job.shopFolder = root.path();
    job.onlineFolder = root / "online";
    job.connection = connectionOf({"127.0.0.1", "mario", "segreto"}, way, 1);
    job.folderFTP = "www";
    job.siteBase = "http://a";
    dialog.emplace(job, PasswordServices{*transfer, host, user}, random);
    dialog->chooseFiles = [this] { return chosen; };
  }
  std::string field(const char* name) const { return fromQt(control<QLineEdit>(*dialog, name)->text()); }
  bool canUpdate() const { return control<QPushButton>(*dialog, "cmdAggiorna")->isEnabled(); }
  void choose(std::vector<std::string> files) {
    chosen = std::move(files);
    click(*dialog, "cmdCerca");
  }
  void showPasswords() {
    dialog->setModal(true);
    dialog->show();
    QApplication::setActiveWindow(&*dialog);
    QApplication::processEvents();
  }
  void update() {
    showPasswords();
    choose({root / "a.ris", root / "a.ric"});
    click(*dialog, "cmdAggiorna");
  }

  test::TempFolder root;
  test::ScriptedFtpServer server;
  std::unique_ptr<Transfer> transfer;
  test::AnsweringHost host;
  test::ScriptedUser user;
  test::FixedRandom random;
  PasswordJob job;
  std::vector<std::string> chosen;
  std::string sent;
  std::optional<frmOTP> dialog;
};

TEST_F(ThePasswordsDialog, ShowsWhereThePasswordsGoAndCannotUpdateWithoutLists) {
  EXPECT_EQ(field("txtHost"), "127.0.0.1");
  EXPECT_EQ(field("txtCartella"), "www");
  for (const char* name : {"txtHost", "txtCartella", "txtRic", "txtRis"}) {
    EXPECT_TRUE(control<QLineEdit>(*dialog, name)->isReadOnly()) << name;
  }
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optSostituisci")->isChecked());
  EXPECT_FALSE(canUpdate());
  EXPECT_EQ(test::namelessControls(*dialog), "");
  EXPECT_EQ(test::missingCaptions(
                *dialog, {"Sostituisci le password sul server", "Accoda le password a quelle presenti sul server"}),
            "");
  test::keepPicture(*dialog, "passwords");
}

TEST_F(ThePasswordsDialog, TakesTheTwoListsAndRefusesOthers) {
  choose({"/b/x.ris"});
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
  EXPECT_EQ(user.shown[0].text.substr(0, 40), "E' necessario selezionare due file: \"xxx");
  EXPECT_FALSE(canUpdate());
  choose({"/b/x.ris", "/b/x.ric"});
  EXPECT_EQ(field("txtRic") + field("txtRis"), "/b/x.ric/b/x.ris");
  EXPECT_TRUE(canUpdate());
  choose({});
  EXPECT_EQ(field("txtRic") + field("txtRis"), "/b/x.ric/b/x.ris") << "a choice that was left changes nothing";
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(ThePasswordsDialog, ReplacesThePasswordsAndCloses) {
  update();
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_NE(sent.find("DELETE FROM kv_OTP"), std::string::npos);
  EXPECT_NE(sent.find("('r1',1),\r\n('r2',1),\r\n('s1',2),\r\n('stop',3)"), std::string::npos);
  EXPECT_EQ(server.file(remotePasswords), "(missing)");
  EXPECT_TRUE(listFiles(root / "online", "*.*").empty());
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Aggiornamento password completato.");
}

TEST_F(ThePasswordsDialog, AppendsWithoutDeleting) {
  control<QRadioButton>(*dialog, "optAccoda")->setChecked(true);
  update();
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(sent.find("DELETE"), std::string::npos);
}

TEST_F(ThePasswordsDialog, StaysOpenAfterAFailure) {
  host.pages[passwordsUrl] = {200, "accesso negato"};
  update();
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_TRUE(canUpdate());
  EXPECT_EQ(user.shown.back().text, "accesso negato");
  EXPECT_TRUE(listFiles(root / "online", "*.*").empty());
}

TEST_F(ThePasswordsDialog, TellsTheCodeOfAListThatIsGone) {
  showPasswords();
  choose({root / "b.ric", root / "b.ris"});
  click(*dialog, "cmdAggiorna");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_TRUE(user.shown[0].text.starts_with("2: ")) << user.shown[0].text;
  EXPECT_TRUE(dialog->isVisible());
}

TEST_F(ThePasswordsDialog, EscapeLeavesWithNothingSent) {
  showPasswords();
  choose({root / "a.ris", root / "a.ric"});
  QTest::keyClick(&*dialog, Qt::Key_Escape);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(dialog->tag(), "");
  EXPECT_EQ(server.connections(), 0);
}

TEST_F(ThePasswordsDialog, TheWaitForTheHostIsShownAndCanBeCancelled) {
  EXPECT_TRUE(writeBytes(root / "online/abcdefghijklmnopqrst.php", "<?php"));
  frmFTPOTP window(job, "abcdefghijklmnopqrst.php", {*transfer, host, user});
  EXPECT_EQ(window.windowTitle(), "Korvane - Trasferimento file");
  EXPECT_EQ(test::namelessControls(window), "");
  host.onRequest = [&](const HttpRequest&) {
    EXPECT_TRUE(control<QFrame>(window, "shpBusy")->isVisible());
    const std::string log = fromQt(control<QPlainTextEdit>(window, "txtLog")->toPlainText());
    EXPECT_NE(log.find("PASS (hidden)\n"), std::string::npos);
    EXPECT_EQ(log.find("segreto"), std::string::npos);
    test::keepPicture(window, "password_transfer");
    click(window, "cmdAnnulla");
  };
  window.exec();
  EXPECT_EQ(window.tag(), "");
  EXPECT_FALSE(window.isVisible());
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, "Aggiornamento interrotto");
}

}  // namespace
}  // namespace kv
