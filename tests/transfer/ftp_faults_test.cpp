// A server that fails: every command ends, with a failure that says what has happened.
#include "transfer/transfer_fixture.h"

namespace kv {
namespace {

using test::FtpFault;
using test::ScriptedFtpServer;
using Kind = FtpFault::Kind;

class AFailingServer : public test::TransferFixture {
 protected:
  /// What comes of connecting, changing the folder and sending a file, while one command fails.
  std::string outcome(FtpFault fault, std::size_t bytes = 1000) {
    ScriptedFtpServer server;
    server.makeFolder("/negozio");
    server.fail(std::move(fault));
    std::string failed = enter(settingsOf(server));
    if (failed == "ok") failed = textOf(transfer->changeFolder("negozio"));
    if (failed == "ok") {
      failed = textOf(transfer->upload(localFile("a.gif", std::string(bytes, 'x')), "a.gif", TransferMode::Binary));
    }
    transfer->abort();
    return failed;
  }
};

const char* const everyCommand[] = {"", "USER", "PASS", "CWD", "TYPE", "EPSV", "STOR"};

TEST_F(AFailingServer, ThatSaysNothingIsLeftAfterTheTimeOfSilence) {
  for (const char* verb : everyCommand) {
    EXPECT_EQ(outcome({.verb = verb, .kind = Kind::Missing}), "20002 il server non risponde da 1 secondi") << verb;
    EXPECT_FALSE(transfer->isConnected());
  }
}

TEST_F(AFailingServer, ThatGoesAwayIsNamed) {
  for (const char* verb : everyCommand) {
    EXPECT_EQ(outcome({.verb = verb, .kind = Kind::Close}), "20001 il server ha chiuso la connessione") << verb;
  }
}

TEST_F(AFailingServer, ThatSpeaksNoFtpIsLeft) {
  for (const char* verb : everyCommand) {
    EXPECT_EQ(outcome({.verb = verb, .reply = "HTTP/1.1 400 Bad Request\r\n"}),
              "20001 risposta del server non valida: HTTP/1.1 400 Bad Request")
        << verb;
  }
}

TEST_F(AFailingServer, ThatNeverEndsALineIsLeft) {
  for (const char* verb : everyCommand) {
    EXPECT_EQ(outcome({.verb = verb, .reply = "220 " + std::string(70000, 'x')}),
              "20001 risposta del server troppo lunga")
        << verb;
  }
}

TEST_F(AFailingServer, ThatEndsALineAfterThirtyMegabytesIsLeftBeforeThat) {
  EXPECT_EQ(outcome({.verb = "CWD", .reply = "250 " + std::string(30'000'000, 'x') + "\r\n"}),
            "20001 risposta del server troppo lunga");
}

TEST_F(AFailingServer, ThatNeverComesToItsReplyIsLeft) {
  std::string more;
  for (int i = 0; i < 1000; ++i) more += "150 ancora un momento\r\n";
  for (const char* verb : everyCommand) {
    EXPECT_EQ(outcome({.verb = verb, .reply = more}), "20001 il server non arriva alla risposta") << verb;
    EXPECT_FALSE(transfer->isConnected());
  }
}

TEST_F(AFailingServer, ThatAnswersInLinesWithoutAnEndIsLeftAndCanBeCancelledMeanwhile) {
  std::string more = "250-";
  for (int i = 0; i < 100'000; ++i) more += "riga\r\n";
  EXPECT_TRUE(outcome({.verb = "CWD", .reply = more}).starts_with("20001 risposta del server non valida: riga"));
  ScriptedFtpServer server;
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  server.fail({.verb = "CWD", .reply = more});
  lines.clear();
  cancelAt = yields + 20;
  EXPECT_EQ(textOf(transfer->changeFolder("a")), "20004 operazione annullata");
  EXPECT_LT(lines.size(), 2000U) << "events go on while lines come without a pause";
}

TEST_F(AFailingServer, IsQuotedAsFarAsAMessageCanShow) {
  std::string refusal;
  for (int i = 0; i < 3000; ++i) refusal += "550-no\r\n";
  const std::string told = outcome({.verb = "CWD", .reply = refusal + "550 no\r\n"});
  EXPECT_EQ(told.size(), std::string("20550 550 ").size() + 1000 + 4);
  EXPECT_TRUE(told.starts_with("20550 550 no\nno\nno") && told.ends_with(" ..."));
}

TEST_F(AFailingServer, ThatListsWithoutAnEndIsLeft) {
  ScriptedFtpServer server;
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  for (const std::string& listing : {std::string(30'000'000, 'd'), std::string(300'000, '\n')}) {
    server.fail({.verb = "LIST", .kind = Kind::ListData, .reply = listing});
    EXPECT_EQ(textOf(transfer->list()), "20503 elenco troppo lungo");
  }
}

TEST_F(AFailingServer, ThatIsOnlyLateIsWaitedFor) {
  for (const char* verb : everyCommand) {
    EXPECT_EQ(outcome({.verb = verb, .kind = Kind::LateReply, .milliseconds = 120}), "ok") << verb;
  }
  EXPECT_GT(yields, 7) << "events go on meanwhile";
}

TEST_F(AFailingServer, IsQuotedWithAllLinesOfItsRefusal) {
  for (const char* verb : {"", "USER", "PASS", "CWD", "TYPE", "STOR"}) {
    EXPECT_EQ(outcome({.verb = verb, .reply = "553-uno\r\n due\r\n553 tre\r\n"}), "20553 553 uno\n due\ntre") << verb;
  }
}

TEST_F(AFailingServer, WithoutADataConnectionIsToldApart) {
  ScriptedFtpServer server({.extendedPassive = false});
  server.fail({.verb = "PASV", .reply = "502 no\r\n"});
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  EXPECT_EQ(textOf(transfer->upload(localFile("a", "x"), "a", TransferMode::Binary)), "20503 502 no");
  EXPECT_TRUE(transfer->isConnected());
  EXPECT_EQ(outcome({.verb = "EPSV", .reply = "229 modo (|||1|)\r\n"}),
            "20503 connessione dati: connessione rifiutata");
  EXPECT_EQ(outcome({.verb = "STOR", .kind = Kind::RefuseData}), "20503 425 nessuna connessione dati");
  EXPECT_EQ(outcome({.verb = "STOR", .reply = "503 prima altro\r\n"}), "20500 503 prima altro")
      << "a code of a reply is not that of a missing data connection";
}

TEST_F(AFailingServer, ThatCutsTheDataConnectionHasReceivedNothing) {
  EXPECT_EQ(outcome({.verb = "STOR", .kind = Kind::CutData, .bytes = 5000}, 3'000'000),
            "20503 426 connessione interrotta");
}

TEST_F(AFailingServer, ThatTakesHalfAFileForAWholeOneIsAskedForItsSize) {
  const FtpFault half{.verb = "STOR", .kind = Kind::CutData, .reply = "226 ricevuto\r\n", .bytes = 500};
  EXPECT_EQ(outcome(half), "20503 connessione dati: connessione interrotta");
  // There are servers that end each connection so.
  FtpFault whole = half;
  whole.bytes = 1000;
  EXPECT_EQ(outcome(whole), "ok");
}

TEST_F(AFailingServer, WithAFullDiskIsQuoted) {
  EXPECT_EQ(outcome({.verb = "STOR", .reply = "552 disco pieno\r\n"}), "20552 552 disco pieno");
}

TEST_F(AFailingServer, ThatStopsReadingIsLeftAfterTheTimeOfSilence) {
  EXPECT_EQ(outcome({.verb = "STOR", .kind = Kind::StallData, .bytes = 1000}, 30'000'000),
            "20002 il server non risponde da 1 secondi");
}

TEST_F(AFailingServer, CanBeLeftAtOnceWhileItSaysNothing) {
  for (const char* verb : everyCommand) {
    yields = 0;
    cancelAt = 1;
    ScriptedFtpServer server;
    server.makeFolder("/negozio");
    server.fail({.verb = verb, .kind = Kind::Missing});
    std::string failed = enter(settingsOf(server));
    if (failed == "ok") failed = textOf(transfer->changeFolder("negozio"));
    if (failed == "ok") failed = textOf(transfer->upload(localFile("a", "x"), "a", TransferMode::Binary));
    EXPECT_EQ(failed, "20004 operazione annullata") << verb;
    EXPECT_EQ(yields, 1) << "the first look at the events is enough";
    EXPECT_FALSE(transfer->isConnected());
  }
}

TEST_F(AFailingServer, CanBeAbortedFromWithinAnEvent) {
  ScriptedFtpServer server;
  server.fail({.verb = "CWD", .kind = Kind::Missing});
  ASSERT_EQ(enter(settingsOf(server)), "ok");
  TransferEvents events;
  events.yield = [this] {
    transfer->abort();
    EXPECT_EQ(transfer->quit().code, transferOther) << "not in the middle of another command";
    return true;
  };
  transfer->listen(std::move(events));
  EXPECT_EQ(textOf(transfer->changeFolder("a")), "20004 operazione annullata");
  EXPECT_FALSE(transfer->isConnected());
}

}  // namespace
}  // namespace kv
