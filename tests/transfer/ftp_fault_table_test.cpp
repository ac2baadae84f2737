// Each fault of a reply at each command that a connection knows: the dialogue ends with a success or a message, never
// with a wait, and the next connection goes as if nothing had been.
#include <functional>
#include <ostream>
#include <tuple>

#include "support/tls_server.h"
#include "transfer/transfer_fixture.h"

namespace kv {
namespace {

using test::FtpFault;
using test::FtpManners;
using test::ScriptedFtpServer;
using Kind = FtpFault::Kind;

constexpr const char* refused = "20550 550 no";
constexpr const char* noData = "20503 550 no";

/// A command, and the dialogue in which it comes.
struct Command {
  const char* verb;
  const char* onRefusal = refused;  ///< what comes of "550 no"; "ok" where there is another way, or nothing is lost
  bool isEncrypted = false;         ///< the server knows TLS
  bool extendedPassive = true;      ///< it knows EPSV
  bool passive = true;              ///< the settings say so
  bool cutsData = false;            ///< the file arrives whole, but its connection is reset
};

/// What the server does instead, and what comes of it; no text: it depends on the command.
struct Reply {
  const char* name;
  FtpFault fault;
  const char* outcome;
};

void PrintTo(const Command& command, std::ostream* out) { *out << command.verb; }
void PrintTo(const Reply& reply, std::ostream* out) { *out << reply.name; }

const Command commands[] = {{""},
                            {.verb = "AUTH", .onRefusal = "ok", .isEncrypted = true},
                            {"USER"},
                            {"PASS"},
                            {.verb = "PBSZ", .onRefusal = "ok", .isEncrypted = true},
                            {.verb = "PROT", .onRefusal = "ok", .isEncrypted = true},
                            {"PWD"},
                            {"MKD"},
                            {"CWD"},
                            {"CDUP"},
                            {"TYPE"},
                            {.verb = "EPSV", .onRefusal = "ok"},
                            {.verb = "PASV", .onRefusal = noData, .extendedPassive = false},
                            {.verb = "PORT", .onRefusal = noData, .passive = false},
                            {"STOR"},
                            {.verb = "SIZE", .onRefusal = "ok", .cutsData = true},
                            {.verb = "FEAT", .onRefusal = "ok"},
                            {.verb = "OPTS", .onRefusal = "ok"},
                            {"APPE"},
                            {"SITE"},
                            {"RNFR"},
                            {"RNTO"},
                            {"DELE"},
                            {"LIST"},
                            {.verb = "QUIT", .onRefusal = "ok"}};

const Reply replies[] = {
    {"Late", {.kind = Kind::LateReply, .milliseconds = 120}, "ok"},
    {"InSeveralLines", {.kind = Kind::MoreLines}, "ok"},
    {"Missing", {.kind = Kind::Missing}, "20002 il server non risponde da 1 secondi"},
    {"Closed", {.kind = Kind::Close}, "20001 il server ha chiuso la connessione"},
    {"Malformed", {.reply = "eccomi\r\n"}, "20001 risposta del server non valida: eccomi"},
    {"OverLong", {.reply = "550 " + std::string(70'000, 'x')}, "20001 risposta del server troppo lunga"},
    {"WithoutAnEnd", {.reply = "550-no\r\n e basta\r\n"}, "20002 il server non risponde da 1 secondi"},
    {"Leaving", {.reply = "421 si chiude\r\n"}, "20421 421 si chiude"},
    {"Negative", {.reply = "550 no\r\n"}, nullptr}};

class ATableOfFaults : public test::TransferFixture, public ::testing::WithParamInterface<std::tuple<Command, Reply>> {
 protected:
  const Command& command() const { return std::get<0>(GetParam()); }
  const Reply& reply() const { return std::get<1>(GetParam()); }

  FtpManners manners() const {
    FtpManners manners{.home = "/casa", .extendedPassive = command().extendedPassive, .asksUtf8 = true};
    if (command().isEncrypted) manners.tls = &tls;
    return manners;
  }
  /// One dialogue with every command, until one fails. "ok", or the failure.
  std::string talk(const ScriptedFtpServer& server) {
    ConnectionSettings settings = settingsOf(server);
    settings.passive = command().passive;
    if (command().isEncrypted) settings.tls = TlsMode::IfOffered;
    const std::string file = localFile("a", "uno\n");
    const std::function<TransferCompletion()> steps[] = {
        [&] { return transfer->connect(settings); },
        [&] { return transfer->logIn(); },
        [&] { return transfer->currentFolder(); },
        [&] { return transfer->makeFolder("negozio"); },
        [&] { return transfer->changeFolder("negozio"); },
        [&] { return transfer->upload(file, "a.pl", TransferMode::Ascii); },
        [&] { return transfer->upload(file, "è.gif", TransferMode::Binary); },
        [&] { return transfer->append(file, "a.pl", TransferMode::Binary); },
        [&] { return transfer->rawCommand("SITE chmod 755 a.pl"); },
        [&] { return transfer->renameFile("a.pl", "b.pl"); },
        [&] { return transfer->deleteFile("b.pl"); },
        [&] { return transfer->parentFolder(); },
        [&] { return transfer->list(); },
        [&] { return transfer->quit(); },
    };
    std::string outcome = "ok";
    for (const auto& step : steps) {
      if (outcome == "ok") outcome = textOf(step());
    }
    transfer->abort();
    return outcome;
  }
  /// Whoever hasn't got an answer to QUIT has lost nothing.
  std::string expected() const {
    if (std::string(command().verb) == "QUIT") return "ok";
    return reply().outcome == nullptr ? command().onRefusal : reply().outcome;
  }

  test::TlsServer tls;
};

TEST_P(ATableOfFaults, EndsEachDialogueWithASuccessOrAMessage) {
  TransferEvents events;
  events.line = [this](const std::string& line) { lines.push_back(line); };
  events.trust = [](const UntrustedServer& /*server*/) { return true; };
  transfer->listen(std::move(events));
  ScriptedFtpServer server(manners());
  FtpFault fault = reply().fault;
  fault.verb = command().verb;
  server.fail(fault);
  if (command().cutsData)
    server.fail({.verb = "STOR", .kind = Kind::CutData, .reply = "226 ok\r\n", .occurrence = 2, .bytes = 4});
  EXPECT_EQ(talk(server), expected());
  EXPECT_EQ(dialogue().find("segreto"), std::string::npos);
  const std::string verb = command().verb;
  EXPECT_TRUE(verb.empty() || !server.commands(verb).empty()) << "the dialogue has that command";
  server.forgetFaults();
  server.removeFolders();
  server.makeFolder("/casa");
  EXPECT_EQ(talk(server), "ok");
}

std::string nameOfCase(const ::testing::TestParamInfo<std::tuple<Command, Reply>>& info) {
  const std::string verb = std::get<0>(info.param).verb;
  return (verb.empty() ? "Greeting" : verb) + "_" + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(Reply, ATableOfFaults,
                         ::testing::Combine(::testing::ValuesIn(commands), ::testing::ValuesIn(replies)), nameOfCase);

}  // namespace
}  // namespace kv
