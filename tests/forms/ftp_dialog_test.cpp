// The window of a publish run: what it shows, how it ends, and how it is left while the server says nothing.
#include <gtest/gtest.h>

#include <QPlainTextEdit>

#include "dialog_fixture.h"
#include "publish/run/frm_ftp.h"
#include "support/scripted_ftp_server.h"

namespace kv {
namespace {

using test::control;
using test::ScriptedFtpServer;
using test::TempFolder;

class TheFtpDialog : public ::testing::Test {
 protected:
  TheFtpDialog() : server({.home = "/casa"}), transfer(makeTransfer()) {
    for (const char* folder : {"online", "scripts"}) EXPECT_TRUE(createFolders(root / folder));
    server.makeFolder("/casa/www");
    job.shopFolder = root.path();
    job.onlineFolder = root / "online";
    job.scriptFolder = root / "scripts";
    job.login = {"127.0.0.1", "mario", "segreto"};
    job.folderFTP = "www";
    EXPECT_TRUE(writeBytes(root / "online/a.htm", "pagina"));
    EXPECT_TRUE(writeBytes(root / "online/b.htm", "pagina"));
  }
  UploadOptions options() const {
    FirewallSettings way;
    way.ftpPort = server.port();
    PublishSettings settings;
    settings.onlyShopFiles = false;
    return uploadOptions(job, settings, way);
  }
  frmFTP* dialog() {
    window = std::make_unique<frmFTP>(job, options(), PublishServices{*transfer, user, clock});
    return window.get();
  }

  TempFolder root;
  ScriptedFtpServer server;
  std::unique_ptr<Transfer> transfer;
  PublishJob job;
  test::ScriptedUser user;
  test::FixedClock clock;
  std::unique_ptr<frmFTP> window;
};

TEST_F(TheFtpDialog, ReadsAsToldBeforeItStarts) {
  frmFTP* shown = dialog();
  EXPECT_EQ(shown->windowTitle(), "Korvane - Aggiornamento del sito");
  EXPECT_EQ(control<QPushButton>(*shown, "cmdAnnulla")->text(), "Annulla");
  EXPECT_TRUE(control<QPlainTextEdit>(*shown, "txtLog")->isReadOnly());
  EXPECT_EQ(test::namelessControls(*shown), "");
}

TEST_F(TheFtpDialog, PublishesOnceAndCloses) {
  frmFTP* shown = dialog();
  shown->steps.updateDatabase = [] { return "OK"; };
  EXPECT_EQ(shown->exec(), QDialog::Accepted);
  EXPECT_EQ(shown->tag(), "OK");
  EXPECT_EQ(shown->outcome(), PublishOutcome::Done);
  EXPECT_EQ(shown->report().sent, 2);
  EXPECT_EQ(server.file("/casa/www/b.htm"), "pagina");
  EXPECT_FALSE(shown->isVisible());
  EXPECT_EQ(user.shown.back().preset, Answer::Yes) << "whether to see the site";
}

TEST_F(TheFtpDialog, SaysThatItPreparesTheDatabaseWhileTheExportGoesOn) {
  frmFTP* shown = dialog();
  QString during;
  shown->steps.exportSql = [&](UserPort&) {
    during = control<QLabel>(*shown, "lblStato")->text();
    return true;
  };
  EXPECT_EQ(shown->exec(), QDialog::Accepted);
  EXPECT_EQ(during, "Preparazione database...");
}

TEST_F(TheFtpDialog, IsLeftWhileTheExportGoesOn) {
  frmFTP* shown = dialog();
  bool isCancelled = false;
  shown->steps.exportSql = [&](UserPort& asked) {
    QTimer::singleShot(0, shown, [&] { test::click(*shown, "cmdAnnulla"); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return isCancelled = !asked.yield(); }));
    return false;
  };
  EXPECT_EQ(shown->exec(), QDialog::Rejected);
  EXPECT_TRUE(isCancelled);
  EXPECT_EQ(shown->outcome(), PublishOutcome::Cancelled);
  EXPECT_FALSE(shown->isVisible());
  EXPECT_EQ(server.connections(), 0);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(TheFtpDialog, TellsWhatWasSentBeforeItClosesAfterAFailure) {
  server.fail({.verb = "STOR", .reply = "552 disco pieno\r\n", .occurrence = 2});
  EXPECT_EQ(dialog()->exec(), QDialog::Rejected);
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Errore: 552 disco pieno",
                                                    "File inviati: 1 (6 byte), già presenti: 0, non inviato: b.htm"}));
}

TEST_F(TheFtpDialog, ShowsOperationFilesAndDialogue) {
  // The question comes in the middle of the run, with the window up to date.
  server.removeFolders();
  server.makeFolder("/casa");
  struct Watcher final : public UserPort {
    std::function<void()> look;
    void message(const std::string&, Icon) override {}
    Answer question(const Question& question) override {
      look();
      return question.preset;
    }
    std::string chooseFolder(const std::string&, const std::string&) override { return {}; }
    void progress(const Progress&) override {}
    bool yield() override { return true; }
  } watcher;
  window = std::make_unique<frmFTP>(job, options(), PublishServices{*transfer, watcher, clock});
  frmFTP* shown = window.get();
  watcher.look = [&] {
    EXPECT_EQ(control<QLabel>(*shown, "lblStato")->text(), "Connessione a 127.0.0.1/www");
    EXPECT_EQ(shown->windowTitle(), "Korvane - Aggiornamento cartella del negozio");
    const std::string log = fromQt(control<QPlainTextEdit>(*shown, "txtLog")->toPlainText());
    EXPECT_NE(log.find("PASS (hidden)\n"), std::string::npos);
    EXPECT_NE(log.find("550 nessuna cartella"), std::string::npos);
    EXPECT_EQ(log.find("segreto"), std::string::npos);
    test::keepPicture(*shown, "ftp");
  };
  EXPECT_EQ(shown->exec(), QDialog::Rejected);
  EXPECT_EQ(shown->outcome(), PublishOutcome::Failed);
}

/// Leaves a run by `leave` once the server has stopped to answer.
void expectLeft(frmFTP& dialog, ScriptedFtpServer& server, const std::function<void()>& leave) {
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &dialog, [&] {
    if (server.commands("STOR").empty()) return;
    poll.stop();
    test::keepPicture(dialog, "ftp_running");
    leave();
    EXPECT_FALSE(control<QPushButton>(dialog, "cmdAnnulla")->isEnabled());
    EXPECT_EQ(control<QLabel>(dialog, "lblStato")->text(), "Annullamento in corso...");
  });
  poll.start(5);
  EXPECT_EQ(dialog.exec(), QDialog::Rejected);
  EXPECT_EQ(dialog.tag(), "");
  EXPECT_EQ(dialog.outcome(), PublishOutcome::Cancelled);
  EXPECT_FALSE(dialog.isVisible());
}

TEST_F(TheFtpDialog, AnnullaEscapeAndTheCloseBoxLeaveASilentServerWithoutAWord) {
  const std::vector<std::function<void(frmFTP&)>> ways{[](frmFTP& shown) { test::click(shown, "cmdAnnulla"); },
                                                       [](frmFTP& shown) { QTest::keyClick(&shown, Qt::Key_Escape); },
                                                       [](frmFTP& shown) { shown.close(); }};
  for (const auto& way : ways) {
    server.fail({.verb = "STOR", .kind = test::FtpFault::Kind::Missing});
    server.forgetCommands();
    frmFTP* shown = dialog();
    expectLeft(*shown, server, [&] { way(*shown); });
    EXPECT_TRUE(user.shown.empty());
    server.forgetFaults();
  }
}

}  // namespace
}  // namespace kv
