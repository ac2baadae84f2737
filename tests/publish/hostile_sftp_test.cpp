// The picker of folders before an SFTP server that means harm: what it lists can't be chosen, and nothing it does goes
// on for ever.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/files/files.h"
#include "publish/settings/folder_picker.h"
#include "support/scripted_user.h"
#include "support/ssh_server.h"

namespace kv::test {
namespace {

class AHostileSftpServer : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    server = std::make_unique<SshServer>();
    server->restartWithSftp(std::string("/usr/bin/python3 -E -S -B ") + KORVANE_TEST_DATA + "/support/hostile_sftp.py");
  }
  static void TearDownTestSuite() { server.reset(); }

  /// Whether the picker shows a folder, while the server behaves in a way of its script.
  bool open(const std::string& mode) {
    EXPECT_TRUE(writeBytes(joinPath(server->home(), "modo"), mode));
    ConnectionSettings settings;
    settings.protocol = TransferProtocol::Sftp;
    settings.host = "127.0.0.1";
    settings.ftpPort = server->port();
    settings.user = SshServer::user;
    settings.password = SshServer::password;
    settings.silenceSeconds = 1;
    user.answers = {Answer::Yes};  // its key is not known
    return picker.open(settings);
  }
  /// What the user was told after the question about the key.
  std::string told() const { return user.shown.size() == 2 ? user.shown[1].text : "(nothing, or more)"; }

  static inline std::unique_ptr<SshServer> server;
  ScriptedUser user;
  std::unique_ptr<Transfer> transfer = makeTransfer(TransferProtocol::Sftp);
  FolderPicker picker{*transfer, user, [this] { return user.yield(); }};
};

TEST_F(AHostileSftpServer, ListsNoFolderThatLeadsElsewhereOrHoldsALineEnd) {
  ASSERT_TRUE(open("nomi")) << told();
  ASSERT_EQ(picker.entries().size(), 1U);
  EXPECT_EQ(picker.entries()[0].name, "www");
  EXPECT_EQ(picker.current(), "/home/ada");
}

TEST_F(AHostileSftpServer, ThatListsWithoutAnEndIsLeft) {
  for (const char* mode : {"lungo", "molti"}) {
    user.shown.clear();
    EXPECT_FALSE(open(mode));
    EXPECT_EQ(told(), "elenco troppo lungo") << mode;
    EXPECT_FALSE(transfer->isConnected());
  }
}

TEST_F(AHostileSftpServer, ThatListsNothingEachTimeHasNoFolders) {
  ASSERT_TRUE(open("vuoto")) << told();
  EXPECT_TRUE(picker.entries().empty());
}

TEST_F(AHostileSftpServer, ThatFloodsWithAnswersToNobodyIsLeft) {
  EXPECT_FALSE(open("altri"));
  EXPECT_TRUE(told().starts_with("errore della connessione SSH (")) << told();
  EXPECT_FALSE(transfer->isConnected());
}

TEST_F(AHostileSftpServer, WithAnAnswerOfGigabytesOrOneThatLiesIsLeft) {
  for (const char* mode : {"enorme", "bugiardo"}) {
    user.shown.clear();
    EXPECT_FALSE(open(mode)) << mode;
    EXPECT_TRUE(told().starts_with("errore della connessione SSH (")) << mode << ": " << told();
    EXPECT_FALSE(transfer->isConnected());
  }
}

TEST_F(AHostileSftpServer, ThatSaysNothingOrLeavesItsConnectionOpenIsLeftAfterTheTimeOfSilence) {
  for (const char* mode : {"tace", "va via"}) {
    user.shown.clear();
    EXPECT_FALSE(open(mode)) << mode;
    EXPECT_EQ(told(), "il server non risponde da 1 secondi") << mode;
    EXPECT_FALSE(transfer->isConnected());
  }
}

}  // namespace
}  // namespace kv::test
