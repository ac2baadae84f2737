// The transfer of one-time passwords against a server and a host that a test directs: what is sent, called and removed,
// what the user reads, and what becomes of a script that was left.
#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "publish/passwords/password_run.h"
#include "publish_fixture.h"
#include "support/answering_host.h"

namespace kv {
namespace {

constexpr const char* script = "abcdefghijklmnopqrst.php";
constexpr const char* remoteScript = "/casa/www/negozio/abcdefghijklmnopqrst.php";
constexpr const char* scriptUrl = "http://a/abcdefghijklmnopqrst.php";

class ThePasswordRun : public test::PublishFixture {
 protected:
  ThePasswordRun() {
    host.pages[scriptUrl] = {200, "OK"};
    host.onRequest = [this](const HttpRequest&) { atCall = server.file(remoteScript); };
    write(std::string("online/") + script, "<?php\r\n?>\r\n");
    passwords.shopFolder = job.shopFolder;
    passwords.onlineFolder = job.onlineFolder;
    passwords.connection = connectionOf(job.login, way, settings.silenceSeconds);
    passwords.folderFTP = "www\\negozio/";
    passwords.siteBase = "http://a";
  }
  bool send() {
    EXPECT_TRUE(rememberScript(root.path(), {passwords.serverFolderKey(), script}));
    const auto transfer = makeTransfer();
    PasswordRun run(passwords, {*transfer, host, user, view, {}});
    return run.send(script);
  }
  /// Names of the scripts that are remembered, a space after each.
  std::string left() const {
    std::string names;
    for (const LeftScript& one : leftScripts(root.path())) names += one.name + " ";
    return names;
  }
  std::string shown() const {
    std::string text;
    for (const test::Shown& one : user.shown) text += asText(one) + "\n";
    return text;
  }

  test::AnsweringHost host;
  PasswordJob passwords;
  std::string atCall = "(never called)";
};

TEST_F(ThePasswordRun, SendsCallsAndRemovesTheScript) {
  EXPECT_TRUE(send());
  EXPECT_EQ(atCall, "<?php\r\n?>\r\n");
  EXPECT_EQ(host.asked(), std::string("GET ") + scriptUrl + "\n");
  EXPECT_EQ(server.file(remoteScript), "(missing)");
  EXPECT_EQ(left(), "");
  EXPECT_EQ(shown(), "[Information, Ok, Ok -> Ok] Aggiornamento password completato.\n");
  EXPECT_EQ(view.titles,
            (std::vector<std::string>{"Korvane - Trasferimento file", "Korvane - Rimozione file di aggiornamento"}));
  EXPECT_NE(log(3).find("STOR abcdefghijklmnopqrst.php\r\n"), std::string::npos);
  EXPECT_NE(log(4).find("DELE abcdefghijklmnopqrst.php\r\n"), std::string::npos);
  EXPECT_NE(log(3).find("PASS (hidden)"), std::string::npos);
  EXPECT_EQ((log(3) + log(4)).find("segreto"), std::string::npos);
}

TEST_F(ThePasswordRun, LooksAtNoFileTable) {
  EXPECT_TRUE(send());
  EXPECT_FALSE(fileExists(root / "kvftp.mdb"));
}

TEST_F(ThePasswordRun, TakesAnAnswerWithLineEndsForOk) {
  host.pages[scriptUrl] = {200, "OK \r\n\t\n"};
  EXPECT_TRUE(send());
}

TEST_F(ThePasswordRun, ShowsAnotherAnswerAndLeavesTheScriptRemembered) {
  host.pages[scriptUrl] = {200, "Tabella non pi\xF9 valida\r\nriga 2\r\n"};
  EXPECT_FALSE(send());
  EXPECT_EQ(shown(), "[Exclamation, Ok, Ok -> Ok] Tabella non più valida\nriga 2\n");
  EXPECT_NE(server.file(remoteScript), "(missing)");
  EXPECT_EQ(left(), std::string(script) + " ");
}

TEST_F(ThePasswordRun, SaysInterruptedForAnEmptyAnswer) {
  host.pages[scriptUrl] = {200, "\r\n"};
  EXPECT_FALSE(send());
  EXPECT_EQ(shown(), "[Exclamation, Ok, Ok -> Ok] Aggiornamento interrotto\n");
}

TEST_F(ThePasswordRun, SaysWhyTheHostCouldNotBeCalled) {
  host.failing = 1;
  EXPECT_FALSE(send());
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
  EXPECT_NE(user.shown[0].text.find("Could not resolve host"), std::string::npos);
}

TEST_F(ThePasswordRun, RemovesWhatAFailedRunHasLeftAndOnlyThat) {
  const std::string old = "zzzzzzzzzzzzzzzzzzzz.php", elsewhere = "yyyyyyyyyyyyyyyyyyyy.php";
  ASSERT_TRUE(rememberScript(root.path(), {"127.0.0.1/www/negozio", old}));
  ASSERT_TRUE(rememberScript(root.path(), {"127.0.0.1/altro", elsewhere}));
  server.putFile("/casa/www/negozio/" + old, "passwords");
  server.putFile("/casa/www/negozio/index.php", "page");
  EXPECT_TRUE(send());
  EXPECT_EQ(server.fileNames(), std::vector<std::string>{"/casa/www/negozio/index.php"});
  EXPECT_EQ(left(), elsewhere + " ");
}

TEST_F(ThePasswordRun, ForgetsALeftScriptThatIsNoLongerThere) {
  ASSERT_TRUE(rememberScript(root.path(), {"127.0.0.1/www/negozio", "zzzzzzzzzzzzzzzzzzzz.php"}));
  EXPECT_TRUE(send());
  EXPECT_EQ(left(), "");
  EXPECT_EQ(user.shown.size(), 1U);
}

TEST_F(ThePasswordRun, DoesNotMakeAMissingFolder) {
  passwords.folderFTP = "www/assente";
  EXPECT_FALSE(send());
  EXPECT_EQ(shown(), "[Exclamation, Ok, Ok -> Ok] La cartella specificata (www/assente)\nnon è presente sul server\n");
  EXPECT_FALSE(server.hasFolder("/casa/www/assente"));
  EXPECT_EQ(left(), "") << "nothing was sent";
}

TEST_F(ThePasswordRun, TellsTheServersRefusal) {
  server.fail({.verb = "STOR", .kind = test::FtpFault::Kind::Reply, .reply = "553 vietato\r\n"});
  EXPECT_FALSE(send());
  EXPECT_EQ(shown(), "[Exclamation, Ok, Ok -> Ok] Errore: 553 vietato\n");
  EXPECT_TRUE(host.requests.empty());
}

TEST_F(ThePasswordRun, HalfAScriptThatWasSentStaysRemembered) {
  server.fail({.verb = "STOR", .kind = test::FtpFault::Kind::CutData, .bytes = 0});
  EXPECT_FALSE(send());
  EXPECT_EQ(left(), std::string(script) + " ");
  EXPECT_TRUE(host.requests.empty());
}

TEST_F(ThePasswordRun, ARemovalThatFailsIsToldAndMadeGoodByTheNextRun) {
  server.fail({.verb = "DELE", .kind = test::FtpFault::Kind::Reply, .reply = "550 vietato\r\n", .occurrence = 2});
  EXPECT_TRUE(send());
  EXPECT_EQ(shown(),
            "[Exclamation, Ok, Ok -> Ok] Errore: 550 vietato\n"
            "[Information, Ok, Ok -> Ok] Aggiornamento password completato.\n");
  EXPECT_EQ(left(), std::string(script) + " ");
  server.forgetFaults();
  const std::string next = "bbbbbbbbbbbbbbbbbbbb.php";
  write("online/" + next, "<?php\r\n?>\r\n");
  host.pages["http://a/" + next] = {200, "OK"};
  const auto transfer = makeTransfer();
  PasswordRun run(passwords, {*transfer, host, user, view, {}});
  EXPECT_TRUE(run.send(next));
  EXPECT_TRUE(server.fileNames().empty());
  EXPECT_EQ(left(), "");
}

TEST_F(ThePasswordRun, ACancelOfTheTransferIsSilentAndOneOfTheCallIsTold) {
  user.cancelAtYield = 1;
  EXPECT_FALSE(send());
  EXPECT_EQ(shown(), "");
  EXPECT_TRUE(host.requests.empty());
  user.cancelAtYield = 0;
  host.onRequest = [this](const HttpRequest&) { user.cancelAtYield = 1; };
  EXPECT_FALSE(send());
  EXPECT_EQ(shown(), "[Exclamation, Ok, Ok -> Ok] Aggiornamento interrotto\n");
}

TEST_F(ThePasswordRun, CarriedByHandAsksForTheFileAndForItsRemoval) {
  passwords.disabled = true;
  passwords.connection.host = "ftp://127.0.0.1/";
  user.answers = {Answer::Ok};
  EXPECT_TRUE(send());
  ASSERT_EQ(user.shown.size(), 3U);
  EXPECT_EQ(asText(user.shown[0]),
            "[Question, OkCancel, Cancel -> Ok] Il file \"abcdefghijklmnopqrst.php\"\n"
            "contenuto nella cartella locale: \n\"" +
                root / "online" +
                "\"\n\ndeve essere trasferito manualmente sul server \"ftp://127.0.0.1/\" nella cartella:\n"
                "\"www\\negozio/\"\n\nEseguire adesso il trasferimento manuale\n"
                "e premere OK solo quando è stato completato");
  EXPECT_EQ(user.shown[1].text,
            "Eliminare adesso dal server il file \"abcdefghijklmnopqrst.php\"\n"
            "contenuto nella cartella:\n\"www\\negozio/\"");
  EXPECT_EQ(user.shown[2].text, "Aggiornamento password completato.");
  EXPECT_EQ(server.connections(), 0);
  EXPECT_EQ(left(), std::string(script) + " ") << "a later run over FTP sees whether it is gone";
}

TEST_F(ThePasswordRun, CarriedByHandEndsWithCancel) {
  passwords.disabled = true;
  EXPECT_FALSE(send());
  EXPECT_EQ(user.shown.size(), 1U);
  EXPECT_TRUE(host.requests.empty());
}

}  // namespace
}  // namespace kv
