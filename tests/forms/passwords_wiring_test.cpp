// One-time passwords from the main window: the payment system's button opens the lists, and what is chosen there goes
// over the connection of the shop to the host that the catalogue names.
#include <gtest/gtest.h>

#include <QLineEdit>

#include "forms/wired_window.h"
#include "publish/passwords/frm_otp.h"
#include "support/scripted_ftp_server.h"
#include "support/scripted_http_server.h"

namespace kv::test {
namespace {

class PasswordsInTheWindow : public WiredWindow {
 protected:
  PasswordsInTheWindow()
      : server({.home = "/casa"}), host({"HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\nOK"}) {
    server.makeFolder("/casa/www");
    EXPECT_TRUE(writeBytes(root / "a.ric", "r1\n"));
    EXPECT_TRUE(writeBytes(root / "a.ris", "s1\n"));
    EXPECT_TRUE(writeBytes(shop + "/firewall.net", "MODE: 1\r\nFPRT: " + server.port() + "\r\n"));
    fill(
        "UPDATE generale SET hostname = '127.0.0.1', username = 'mario', password = 'segreto', folderFTP = 'www',"
        " cartella = '', URL = '" +
        host.url("") + "'");
  }
  /// Opens the lists by way of the payment system's dialog, and leaves both afterwards.
  void inPasswordLists(std::function<void(frmOTP&)> act) {
    whenShown(QStringLiteral("Korvane - Configurazione sistemi di pagamento"), [this, act](QWidget& systems) {
      whenShown(QStringLiteral("Korvane - Banca Sella"), [this, act](QWidget& system) {
        whenShown(QStringLiteral("Korvane - Liste delle password"), [act](QWidget& lists) {
          auto* dialog = dynamic_cast<frmOTP*>(&lists);
          ASSERT_NE(dialog, nullptr);
          act(*dialog);
        });
        click(system, "cmdPwd");
        QTest::keyClick(&system, Qt::Key_Escape);
      });
      click(systems, "cmdConfigura1");
      QTest::keyClick(&systems, Qt::Key_Escape);
    });
    ASSERT_TRUE(choose("payment"));
  }

  ScriptedFtpServer server;
  ScriptedHttpServer host;
};

TEST_F(PasswordsInTheWindow, AreSentCalledAndRemovedByTheButtonOfThePaymentSystem) {
  openWindow();
  goTab(Tab::Site);
  inPasswordLists([this](frmOTP& lists) {
    EXPECT_EQ(fromQt(control<QLineEdit>(lists, "txtHost")->text()), "127.0.0.1");
    EXPECT_EQ(fromQt(control<QLineEdit>(lists, "txtCartella")->text()), "www");
    lists.chooseFiles = [this] { return std::vector<std::string>{root / "a.ric", root / "a.ris"}; };
    click(lists, "cmdCerca");
    click(lists, "cmdAggiorna");
    EXPECT_EQ(lists.tag(), "OK");
  });
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Aggiornamento password completato."});
  ASSERT_EQ(host.requests().size(), 1U);
  EXPECT_TRUE(host.requests()[0].starts_with("GET /"));
  EXPECT_TRUE(server.fileNames().empty()) << "the script is gone";
  EXPECT_FALSE(fileExists(shop + "/kvotp.dat"));
}

}  // namespace
}  // namespace kv::test
