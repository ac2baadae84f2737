// The commands of a connection, as a server that does its part answers them.
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>
#include <utility>

#include "transfer/transfer_fixture.h"

namespace kv {
namespace {

using test::FtpManners;
using test::ScriptedFtpServer;

class AnFtpConnection : public test::TransferFixture {};

/// What the system does next on this process's side of a connection to a port of this machine, and in how many
/// hundredths of a second: "02" and some where it will ask whether the other side is still there. Empty without such a
/// connection. Source: proc(5), /proc/net/tcp.
std::pair<std::string, long> timerOfConnectionTo(const std::string& port) {
  std::array<char, 10> wanted{};
  std::snprintf(wanted.data(), wanted.size(), ":%04X", std::stoi(port));
  std::ifstream table("/proc/net/tcp");
  for (std::string line; std::getline(table, line);) {
    std::istringstream fields(line);
    std::string number, local, remote, state, queues, timer;
    fields >> number >> local >> remote >> state >> queues >> timer;
    if (state != "01" || !remote.ends_with(wanted.data())) continue;
    return {timer.substr(0, 2), std::stol(timer.substr(3), nullptr, 16)};
  }
  return {};
}

TEST_F(AnFtpConnection, LogsInReadsTheFolderAndLeaves) {
  ScriptedFtpServer server({.home = "/casa"});
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  EXPECT_TRUE(transfer->isConnected());
  EXPECT_EQ(transfer->currentFolder().text, "/casa");
  EXPECT_TRUE(transfer->quit().succeeded());
  EXPECT_FALSE(transfer->isConnected());
  EXPECT_EQ(server.commands(), (std::vector<std::string>{"USER mario", "PASS segreto", "PWD", "QUIT"}));
}

TEST_F(AnFtpConnection, IsKeptAliveWhereARouterWouldForgetIt) {
  ScriptedFtpServer server;
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  // Until the last command is confirmed, the system has something else to do first.
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (timerOfConnectionTo(server.port()).first != "02" && std::chrono::steady_clock::now() < giveUp) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  const auto [timer, hundredths] = timerOfConnectionTo(server.port());
  EXPECT_EQ(timer, "02");
  EXPECT_LE(hundredths, 3000) << "half a minute; the system's own two hours are too long";
}

TEST_F(AnFtpConnection, TellsEveryLineButNoPassword) {
  ScriptedFtpServer server;
  server.fail({.verb = "PASS", .reply = "530 PASS segreto non va bene\r\n"});
  EXPECT_EQ(enter(settingsOf(server)), "20530 530 PASS (hidden) non va bene");
  EXPECT_EQ(dialogue(), "220 pronto\nUSER mario\n331 e la password\nPASS (hidden)\n530 PASS (hidden) non va bene\n");
}

TEST_F(AnFtpConnection, SendsAFileWholeByWhateverWayTheServerKnows) {
  const std::string bytes(300'000, 'x');
  for (const bool extended : {true, false}) {
    for (const bool passive : {true, false}) {
      ScriptedFtpServer server({.extendedPassive = extended});
      auto settings = settingsOf(server);
      settings.passive = passive;
      ASSERT_EQ(enter(settings), "ok");
      EXPECT_EQ(textOf(transfer->upload(localFile("a.gif", bytes), "a.gif", TransferMode::Binary)), "ok");
      EXPECT_EQ(textOf(transfer->upload(localFile("b.gif", ""), "b.gif", TransferMode::Binary)), "ok");
      EXPECT_EQ(server.file("/a.gif"), bytes) << extended << passive;
      EXPECT_EQ(server.file("/b.gif"), "");
      EXPECT_EQ(server.commands("EPSV").size(), passive ? (extended ? 2U : 1U) : 0U) << "a refusal is remembered";
      transfer->abort();
    }
  }
  EXPECT_EQ(sent, bytes.size());
}

TEST_F(AnFtpConnection, ConvertsLineEndsInAsciiModeAlone) {
  ScriptedFtpServer server;
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  const std::string path = localFile("a.pl", "uno\ndue\r\ntre\n");
  EXPECT_EQ(textOf(transfer->upload(path, "a.pl", TransferMode::Ascii)), "ok");
  EXPECT_EQ(server.file("/a.pl"), "uno\r\ndue\r\ntre\r\n");
  EXPECT_EQ(textOf(transfer->upload(path, "b.pl", TransferMode::Binary)), "ok");
  EXPECT_EQ(server.file("/b.pl"), "uno\ndue\r\ntre\n");
  EXPECT_EQ(server.commands("TYPE"), (std::vector<std::string>{"TYPE I"})) << "a server begins with ASCII";
}

TEST_F(AnFtpConnection, AppendsRenamesDeletesAndMakesFolders) {
  ScriptedFtpServer server;
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  server.putFile("/a.ris", "uno");
  EXPECT_EQ(textOf(transfer->append(localFile("a.ris", "due"), "a.ris", TransferMode::Binary)), "ok");
  EXPECT_EQ(textOf(transfer->renameFile("a.ris", "b.ris")), "ok");
  EXPECT_EQ(server.file("/b.ris"), "unodue");
  EXPECT_EQ(textOf(transfer->deleteFile("b.ris")), "ok");
  EXPECT_EQ(server.fileNames(), std::vector<std::string>{});
  EXPECT_EQ(textOf(transfer->makeFolder("negozio")), "ok");
  EXPECT_EQ(textOf(transfer->changeFolder("negozio")), "ok");
  EXPECT_EQ(textOf(transfer->parentFolder()), "ok");
  EXPECT_EQ(transfer->list().lines, (std::vector<std::string>{"drwxr-xr-x 2 u g 4096 Jan  1 12:00 negozio"}));
  EXPECT_EQ(textOf(transfer->rawCommand("SITE chmod 755 a.pl")), "ok");
}

TEST_F(AnFtpConnection, TellsAMissingFolderAndAMissingFileApartFromOtherFailures) {
  ScriptedFtpServer server;
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  EXPECT_EQ(transfer->changeFolder("negozio").code, transferFolderMissing);
  EXPECT_EQ(transfer->deleteFile("a.htm").code, transferFolderMissing);
  EXPECT_TRUE(isFileCommandFailure(transfer->rawCommand("XYZ").code));
  server.fail({.verb = "CWD", .reply = "421 si chiude\r\n"});
  EXPECT_EQ(textOf(transfer->changeFolder("negozio")), "20421 421 si chiude");
  EXPECT_FALSE(transfer->isConnected());
}

TEST_F(AnFtpConnection, TakesAFolderThatExistsForAMissingOneWhateverTheServerCallsIt) {
  ScriptedFtpServer server;
  server.makeFolder("/a");
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  EXPECT_EQ(transfer->makeFolder("a").code, transferFolderMissing);
  server.fail({.verb = "MKD", .reply = "521 directory already exists\r\n"});
  EXPECT_EQ(transfer->makeFolder("a").code, transferFolderMissing);
}

TEST_F(AnFtpConnection, NamesFilesAsTheServerWantsThem) {
  for (const bool utf8 : {true, false}) {
    ScriptedFtpServer server({.asksUtf8 = utf8});
    ASSERT_EQ(enter(settingsOf(server)), "ok");
    EXPECT_EQ(textOf(transfer->upload(localFile("a", "x"), "caffè.gif", TransferMode::Binary)), "ok");
    EXPECT_EQ(server.file(utf8 ? "/caffè.gif" : "/caff\xe8.gif"), "x");
    EXPECT_EQ(server.commands("FEAT").size(), 1U);
    transfer->abort();
  }
}

TEST_F(AnFtpConnection, NeverSendsALineEndInsideACommand) {
  ScriptedFtpServer server;
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  EXPECT_EQ(textOf(transfer->deleteFile("a\r\nDELE b")), "20000 un nome contiene un carattere non ammesso");
  EXPECT_EQ(server.commands("DELE"), std::vector<std::string>{});
}

TEST_F(AnFtpConnection, NamesALocalFileThatCannotBeRead) {
  ScriptedFtpServer server;
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  const auto completion = transfer->upload(root / "manca", "manca", TransferMode::Binary);
  EXPECT_EQ(completion.code, transferLocalFile);
  EXPECT_EQ(completion.text, "il file " + (root / "manca") + " non può essere letto");
  EXPECT_EQ(server.commands("STOR"), std::vector<std::string>{});
}

TEST_F(AnFtpConnection, IsNotMadeInTheClearWhenAnotherProtocolIsWanted) {
  ScriptedFtpServer server;
  auto settings = settingsOf(server);
  settings.protocol = TransferProtocol::Sftp;
  EXPECT_EQ(enter(settings), "20000 questa connessione è di FTP");
  EXPECT_EQ(server.connections(), 0);
}

TEST_F(AnFtpConnection, IsNoneWithoutAServer) {
  ConnectionSettings settings;
  settings.host = "127.0.0.1";
  settings.ftpPort = "1";
  EXPECT_EQ(enter(settings), "20001 127.0.0.1 (porta 1): connessione rifiutata");
  settings.ftpPort = "ventuno";
  EXPECT_EQ(enter(settings), "20001 porta non valida");
  settings.host = "";
  EXPECT_EQ(enter(settings), "20001 manca il nome dell'host");
  EXPECT_EQ(transfer->deleteFile("a").code, transferNoConnection);
  EXPECT_TRUE(transfer->quit().succeeded()) << "there is nothing to leave";
}

}  // namespace
}  // namespace kv
