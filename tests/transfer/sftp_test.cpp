// SFTP with a real OpenSSH server: what the port of a transfer promises holds for this protocol too.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "support/local_listener.h"
#include "support/socks_relay.h"
#include "support/ssh_server.h"
#include "transfer/transfer_fixture.h"

namespace kv {
namespace {

using test::SocksRelay;
using test::SshServer;

class AnSftpServer : public test::TransferFixture {
 protected:
  AnSftpServer() {
    transfer = makeTransfer(TransferProtocol::Sftp);
    TransferEvents events;
    events.line = [this](const std::string& line) { lines.push_back(line); };
    events.yield = [this] { return ++yields < cancelAt || cancelAt == 0; };
    events.sent = [this](std::uint64_t bytes) { sent = bytes; };
    events.trust = [this](const UntrustedServer& shown) {
      asked.push_back(shown);
      return trusts;
    };
    transfer->listen(std::move(events));
  }
  ConnectionSettings sftpSettings(const SshServer& at) const {
    ConnectionSettings settings;
    settings.protocol = TransferProtocol::Sftp;
    settings.host = "127.0.0.1";
    settings.ftpPort = at.port();
    settings.user = SshServer::user;
    settings.password = SshServer::password;
    settings.silenceSeconds = 10;
    settings.knownHostsFile = root / "config/known_hosts";
    return settings;
  }
  std::string upload(const std::string& name, const std::string& bytes, TransferMode mode = TransferMode::Binary) {
    return textOf(transfer->upload(localFile("local", bytes), name, mode));
  }
  static std::string bytesOf(const std::string& path) { return readBytes(path).value_or("(missing)"); }

  SshServer server;
  std::vector<UntrustedServer> asked;
  bool trusts = true;
};

TEST_F(AnSftpServer, TakesFilesIntoFoldersThatAreMadeThere) {
  ASSERT_EQ(enter(sftpSettings(server)), "ok") << dialogue();
  EXPECT_EQ(transfer->currentFolder().text, server.home());
  EXPECT_EQ(textOf(transfer->makeFolder("www")), "ok");
  EXPECT_EQ(textOf(transfer->changeFolder("www")), "ok");
  EXPECT_EQ(transfer->currentFolder().text, server.home() + "/www");
  const std::string large(1'500'000, 'x');
  EXPECT_EQ(upload("grande.jpg", large), "ok");
  EXPECT_EQ(sent, large.size());
  EXPECT_EQ(bytesOf(server.home() + "/www/grande.jpg"), large);
  EXPECT_EQ(upload("grande.jpg", "short"), "ok");
  EXPECT_EQ(bytesOf(server.home() + "/www/grande.jpg"), "short");
  EXPECT_EQ(upload("perch\xc3\xa9.htm", ""), "ok");
  EXPECT_EQ(bytesOf(server.home() + "/www/perch\xc3\xa9.htm"), "");
  EXPECT_EQ(textOf(transfer->parentFolder()), "ok");
  const TransferCompletion listing = transfer->list();
  ASSERT_EQ(listing.lines.size(), 1U);
  EXPECT_TRUE(listing.lines[0].starts_with("d") && listing.lines[0].ends_with(" www")) << listing.lines[0];
  EXPECT_EQ(textOf(transfer->quit()), "ok");
  EXPECT_FALSE(transfer->isConnected());
}

TEST_F(AnSftpServer, RefusesWithTheCodesThatCallersTellApart) {
  ASSERT_EQ(enter(sftpSettings(server)), "ok");
  EXPECT_EQ(transfer->changeFolder("manca").code, transferFolderMissing);
  EXPECT_EQ(transfer->deleteFile("manca").code, transferFolderMissing);
  EXPECT_EQ(transfer->rawCommand("MDTM manca").code, transferFolderMissing);
  EXPECT_EQ(upload("manca/a.htm", "a"), "20550 il file o la cartella non esiste");
  ASSERT_EQ(upload("a.htm", "a"), "ok");
  ASSERT_EQ(upload("b.htm", "b"), "ok");
  EXPECT_EQ(transfer->changeFolder("a.htm").code, transferFolderMissing) << "a file is no folder";
  EXPECT_EQ(transfer->makeFolder("a.htm").code, transferFolderMissing);
  EXPECT_TRUE(isFileCommandFailure(transfer->renameFile("a.htm", "b.htm").code)) << "the name is taken";
  EXPECT_EQ(textOf(transfer->deleteFile("b.htm")), "ok");
  EXPECT_EQ(textOf(transfer->renameFile("a.htm", "b.htm")), "ok");
  EXPECT_EQ(bytesOf(server.home() + "/b.htm"), "a");
  EXPECT_TRUE(isFileCommandFailure(transfer->rawCommand("SITE quota").code));
  EXPECT_EQ(transfer->upload(root / "manca", "c", TransferMode::Binary).code, transferLocalFile);
  EXPECT_EQ(textOf(transfer->rawCommand("NOOP")), "ok") << "the connection has outlived all refusals";
}

TEST_F(AnSftpServer, StoresTextsAsUnixReadsThemAndSetsTheirRights) {
  ASSERT_EQ(enter(sftpSettings(server)), "ok");
  EXPECT_EQ(upload("a.pl", "#!/usr/bin/perl\r\nprint 1;\r\nx\ry\r", TransferMode::Ascii), "ok");
  EXPECT_EQ(bytesOf(server.home() + "/a.pl"), "#!/usr/bin/perl\nprint 1;\nx\ry\r");
  EXPECT_EQ(textOf(transfer->rawCommand("SITE chmod 755 a.pl")), "ok");
  struct stat status {};
  ASSERT_EQ(::stat((server.home() + "/a.pl").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0755U);
  const std::string more = localFile("altri", "terza\r\n");
  ASSERT_EQ(upload("liste.ric", "prima\r\nseconda\r\n", TransferMode::Ascii), "ok");
  EXPECT_EQ(textOf(transfer->append(more, "liste.ric", TransferMode::Ascii)), "ok");
  EXPECT_EQ(textOf(transfer->append(more, "nuove.ric", TransferMode::Ascii)), "ok");
  EXPECT_EQ(bytesOf(server.home() + "/liste.ric"), "prima\nseconda\nterza\n");
  EXPECT_EQ(bytesOf(server.home() + "/nuove.ric"), "terza\n");
}

TEST_F(AnSftpServer, IsAskedAboutOnceAndThenKnownByItsKey) {
  ASSERT_EQ(enter(sftpSettings(server)), "ok");
  ASSERT_EQ(asked.size(), 1U);
  EXPECT_TRUE(asked[0].isKey);
  EXPECT_EQ(asked[0].host, "127.0.0.1");
  EXPECT_EQ(asked[0].reason, "ssh-ed25519");
  EXPECT_TRUE(asked[0].fingerprint.starts_with("SHA256:") && asked[0].fingerprint.size() == 50U)
      << asked[0].fingerprint;
  struct stat status {};
  ASSERT_EQ(::stat((root / "config/known_hosts").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U) << "nobody else may see or change it";
  trusts = false;
  EXPECT_EQ(enter(sftpSettings(server)), "ok");
  EXPECT_EQ(asked.size(), 1U);
}

TEST_F(AnSftpServer, WhoseKeyIsRefusedIsToldNoPassword) {
  trusts = false;
  EXPECT_EQ(enter(sftpSettings(server)), "20003 la chiave del server non è conosciuta");
  EXPECT_FALSE(transfer->isConnected());
  EXPECT_FALSE(server.wasAskedForEntry());
  EXPECT_EQ(bytesOf(root / "config/known_hosts"), "(missing)");
}

TEST_F(AnSftpServer, WithAnotherKeyThanBeforeIsLeftWithoutAQuestion) {
  ASSERT_EQ(enter(sftpSettings(server)), "ok");
  server.restartWithAnotherKey();
  const std::string failure = enter(sftpSettings(server));
  EXPECT_TRUE(failure.starts_with("20003 la chiave del server 127.0.0.1 è cambiata (ssh-ed25519 SHA256:")) << failure;
  EXPECT_NE(
      failure.find("togliere la riga \"[127.0.0.1]:" + server.port() + "\" dal file " + (root / "config/known_hosts")),
      std::string::npos)
      << failure;
  EXPECT_EQ(asked.size(), 1U);
  EXPECT_FALSE(server.wasAskedForEntry());
}

TEST_F(AnSftpServer, WithAnRsaKeyAloneIsLeftWithAReasonAndAnAdvice) {
  server.restartWithAnotherKey("rsa");
  const std::string failure = enter(sftpSettings(server));
  EXPECT_TRUE(failure.starts_with("20000 il server SSH e Korvane non hanno in comune un tipo di chiave")) << failure;
  EXPECT_TRUE(failure.ends_with("una chiave Ed25519 o ECDSA, oppure pubblicare per FTP con TLS")) << failure;
  EXPECT_TRUE(asked.empty());
  EXPECT_FALSE(server.wasAskedForEntry());
}

TEST_F(AnSftpServer, RefusesAWrongPasswordWhichIsShownNowhere) {
  auto settings = sftpSettings(server);
  settings.password = "Sbagliata-e-segreta";
  const std::string failure = enter(settings);
  EXPECT_TRUE(failure.starts_with("20530 il server non accetta l'utente o la password")) << failure;
  EXPECT_EQ((dialogue() + failure).find("Sbagliata"), std::string::npos);
  EXPECT_TRUE(server.wasAskedForEntry());
}

TEST_F(AnSftpServer, IsReachedThroughSocks) {
  SocksRelay relay(5, 0, "porta", "chiave");
  auto settings = sftpSettings(server);
  settings.firewall = FirewallKind::Socks5;
  settings.firewallHost = "127.0.0.1";
  settings.firewallPort = relay.port();
  settings.firewallUser = "porta";
  settings.firewallPassword = "chiave";
  ASSERT_EQ(enter(settings), "ok");
  EXPECT_EQ(upload("a", "bytes"), "ok");
  EXPECT_EQ(bytesOf(server.home() + "/a"), "bytes");
  transfer->abort();
  settings.firewall = FirewallKind::ProxyUser;
  EXPECT_EQ(enter(settings), "20000 un proxy FTP non porta connessioni SFTP");
}

TEST_F(AnSftpServer, ThatGoesAwayIsABrokenConnection) {
  ASSERT_EQ(enter(sftpSettings(server)), "ok");
  server.stop();
  EXPECT_EQ(transfer->deleteFile("a").code, transferNoConnection);
  EXPECT_FALSE(transfer->isConnected());
  EXPECT_EQ(transfer->deleteFile("a").text, "la connessione è chiusa");
}

TEST_F(AnSftpServer, IsLeftInTheMiddleOfAFileByACancel) {
  ASSERT_EQ(enter(sftpSettings(server)), "ok");
  cancelAt = yields + 2;
  const std::string path = localFile("large", std::string(8'000'000, 'x'));
  EXPECT_EQ(transfer->upload(path, "large", TransferMode::Binary).code, transferCancelled);
  EXPECT_FALSE(transfer->isConnected());
}

TEST(SftpSettings, AreNotTakenByAConnectionOfFtp) {
  ConnectionSettings settings;
  settings.protocol = TransferProtocol::Sftp;
  EXPECT_EQ(makeTransfer()->connect(settings).code, transferOther);
  settings.protocol = TransferProtocol::Ftp;
  EXPECT_EQ(makeTransfer(TransferProtocol::Sftp)->connect(settings).code, transferOther);
}

using AServerThatHangsUp = test::TransferFixture;

TEST_F(AServerThatHangsUp, IsNoSftpServer) {
  test::ScriptedFtpServer ftp;
  ftp.fail({.kind = test::FtpFault::Kind::Close});
  auto settings = settingsOf(ftp);
  settings.protocol = TransferProtocol::Sftp;
  const auto sftp = makeTransfer(TransferProtocol::Sftp);
  EXPECT_EQ(sftp->connect(settings).code, transferNoConnection);
  EXPECT_FALSE(sftp->isConnected());
}

bool isServed(int port) {
  const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = test::localAddress(port);
  const bool connected = ::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  ::close(client);
  return connected;
}

TEST(AServerOfATest, EndsWithATestThatIsKilled) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const SshServer server;
    const std::string told = server.port() + " " + server.home();
    if (::write(ends[1], told.data(), told.size()) > 0) ::pause();
    ::_exit(1);
  }
  ::close(ends[1]);
  std::array<char, 1000> told{};
  ASSERT_GT(::read(ends[0], told.data(), told.size() - 1), 0);
  ::close(ends[0]);
  std::istringstream words(told.data());
  int port = 0;
  std::string home;
  words >> port >> home;
  EXPECT_TRUE(isServed(port));
  ::kill(child, SIGKILL);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(2);
  while (isServed(port) && std::chrono::steady_clock::now() < giveUp) ::usleep(10'000);
  EXPECT_FALSE(isServed(port)) << "the server is still there";
  std::filesystem::remove_all(std::filesystem::path(home).parent_path());
}

}  // namespace
}  // namespace kv
