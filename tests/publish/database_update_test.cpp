// What the host is asked, how its answers are judged and logged, and what of the last database is kept or forgotten.

#include "publish/update/database_update.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "commerce/prices/price_history.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "publish/update/sent_sql.h"
#include "store/schema/schema.h"
#include "support/answering_host.h"
#include "support/failing_files.h"
#include "support/fixed_clock.h"
#include "support/row_text.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

/// A build database with one article for 12.50 and 299 without a price.
const std::string& theBuild() {
  static const std::string bytes = [] {
    const TempFolder folder;
    const std::string path = folder / "sql.mdb";
    EXPECT_TRUE(createDatabase(path, buildDatabaseTables()));
    {
      auto build = Database::open(path, OpenMode::Scratch).value();
      EXPECT_TRUE(
          build.execute("INSERT INTO dettaglio (ID, catID) VALUES (7, 'cat001');"
                        "INSERT INTO ordinamento (ID, implistino, importo) VALUES (7, 125000, 125000);"
                        "WITH RECURSIVE n(i) AS (VALUES (8) UNION ALL SELECT i + 1 FROM n WHERE i < 306)"
                        "INSERT INTO ordinamento (ID) SELECT i FROM n;"
                        "INSERT INTO dettaglio (ID) SELECT ID FROM ordinamento WHERE ID > 7"));
    }
    return readBytes(path).value();
  }();
  return bytes;
}

constexpr const char* refused = "accesso al database non autorizzato";

class DatabaseUpdate : public ::testing::Test {
 protected:
  DatabaseUpdate() {
    EXPECT_TRUE(createFolders(shop + "/db"));
    EXPECT_TRUE(createFolders(shop + "/online"));
    put("db/sql.mdb", theBuild());
    put("db/last.mdb", "the build before");
    languages(2);
  }

  void put(const std::string& name, std::string_view bytes) { ASSERT_TRUE(writeBytes(joinPath(shop, name), bytes)); }
  std::string read(const std::string& name) const {
    const auto bytes = readBytes(joinPath(shop, name));
    return bytes ? *bytes : "(missing)";
  }
  void languages(int number) { put("online/abc.sc", std::to_string(number) + "\r\n"); }

  UpdateParts parts() {
    return {host, random, user, [this] { return user.yield(); }, [this](const std::string& text) { shown = text; }};
  }
  std::string run() { return updateDatabase(job, parts()); }
  std::string published() const {
    auto history = Database::open(priceHistoryPath(shop), OpenMode::ReadOnly).value();
    return rows(history, "SELECT articolo, listino, CAST(dal AS INTEGER), netto, ridotto FROM prezzi");
  }
  std::string logAdvice() const {
    return "Si sono verificati errori nell'aggiornamento del database:\nconsultare i file " + shop +
           "/db1.log ... db4.log per maggiori dettagli";
  }

  TempFolder folder;
  std::string shop = folder / "negozio";
  UpdateJob job{shop, shop + "/online", "http://www.a.it/shop", {"ftp.a.it", "www.a.it", "localhost", "dbn", "abc"}};
  AnsweringHost host;
  FixedRandom random;
  ScriptedUser user;
  std::string shown;
};

TEST_F(DatabaseUpdate, EachLanguageIsOnePostWithATokenOfItsOwn) {
  languages(4);
  EXPECT_EQ(run(), "OK");
  ASSERT_GE(host.requests.size(), 4U);
  EXPECT_EQ(host.asked().substr(0, host.asked().find("GET")),
            "POST http://www.a.it/shop/updatedb.php\nPOST http://www.a.it/shop/updatedb_l2.php\n"
            "POST http://www.a.it/shop/updatedb_l3.php\nPOST http://www.a.it/shop/updatedb_l4.php\n");
  EXPECT_EQ(host.requests[0].body, "rnd=abcdefghijklmnopqrst&sec=abc");
  EXPECT_EQ(host.requests[1].body, "rnd=uvwxyzabcdefghijklmn&sec=abc");
  EXPECT_EQ(host.requests[0].headers, std::vector<std::string>{"Content-Type: application/x-www-form-urlencoded"});
  EXPECT_EQ(host.requests[0].timeoutSeconds, 28800);
}

TEST_F(DatabaseUpdate, TheKeyOfOrdersGoesAlongWithEachLanguageOnceThereIsOne) {
  job.orderKey = std::string(64, 'f');
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(host.requests[0].body, "rnd=abcdefghijklmnopqrst&sec=abc&chiave=" + job.orderKey);
  EXPECT_EQ(host.requests[1].body, "rnd=uvwxyzabcdefghijklmn&sec=abc&chiave=" + job.orderKey);
  for (const std::string log : {"db1.log", "db2.log"}) EXPECT_EQ(read(log).find(job.orderKey), std::string::npos);
}

TEST_F(DatabaseUpdate, TheNumberOfLanguagesIsThatOfTheBuild) {
  languages(1);
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(host.requests.front().method, "POST");
  EXPECT_EQ(host.asked().find("updatedb_l2"), std::string::npos);
}

TEST_F(DatabaseUpdate, EveryOkMakesTheBuildTheBaseOfTheNextDifference) {
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(read("db/last.mdb"), theBuild());
  EXPECT_EQ(read("db/last.ini"), "ftp.a.it\r\nwww.a.it\r\nlocalhost\r\ndbn\r\n2\r\n");
}

TEST_F(DatabaseUpdate, AConfirmedLoadIsNotedAsPublished) {
  UpdateParts dated = parts();
  FixedClock clock(1.7e9);
  dated.clock = &clock;
  EXPECT_EQ(updateDatabase(job, dated), "OK");
  EXPECT_EQ(published(), "7|0|1700000000|125000|0\n");
}

TEST_F(DatabaseUpdate, ALoadThatFailedOrWasCancelledIsNot) {
  host.answers = {"OK", "Table is full"};
  EXPECT_EQ(run(), logAdvice());
  EXPECT_FALSE(fileExists(priceHistoryPath(shop)));
}

TEST_F(DatabaseUpdate, AHistoryThatCannotBeWrittenIsToldAndTheUpdateIsKept) {
  put("prezzi.mdb", "no database");
  EXPECT_EQ(run(), "OK");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_NE(user.shown[0].text.find("i prezzi pubblicati non sono stati annotati"), std::string::npos);
}

TEST_F(DatabaseUpdate, AnOkFollowedByLineEndsAndTabsIsOne) {
  host.answers = {"OK\r\n\r\n", " OK\t\n\t"};
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(cleanAnswer(" a \r\n\t\r\n"), "a");
  EXPECT_EQ(cleanAnswer("\r\nOK"), "\r\nOK") << "only the end is cleaned";
}

TEST_F(DatabaseUpdate, AnyOtherAnswerIsAFailure) {
  for (const char* answer : {"ok", "OK.", "O K", "", "<html>OK</html>", "\nOK"}) {
    host.answers = {answer};
    EXPECT_EQ(run(), logAdvice()) << answer;
  }
}

TEST_F(DatabaseUpdate, OneLanguageThatFailsFailsTheRunAndTheOthersAreAskedAllTheSame) {
  host.answers = {"Table is full", "OK"};
  EXPECT_EQ(run(), logAdvice());
  EXPECT_EQ(read("db1.log"), "Table is full");
  EXPECT_EQ(read("db2.log"), "OK");
  EXPECT_EQ(read("db/last.mdb"), "(missing)");
}

TEST_F(DatabaseUpdate, TheBaseIsGoneBeforeTheFirstRequest) {
  std::string atFirst = "(no request)";
  host.onRequest = [&](const HttpRequest&) {
    if (host.requests.size() == 1) atFirst = read("db/last.mdb");
  };
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(atFirst, "(missing)");
}

TEST_F(DatabaseUpdate, ABaseThatCannotBeRemovedKeepsTheHostFromBeingAsked) {
  FailingFiles files(1, AfterFailure::Works, EACCES);
  files.onlyAt({FileStep::Remove});
  files.onlyFor("last.mdb");
  const std::string tag = run();
  EXPECT_TRUE(host.requests.empty());
  EXPECT_TRUE(tag.starts_with("last.mdb: ")) << tag;
}

TEST_F(DatabaseUpdate, ACopyThatFailsLeavesNoBase) {
  FailingFiles files(1, AfterFailure::FailsToo, ENOSPC);
  files.onlyAt({FileStep::Create});
  files.onlyFor("last.mdb");
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(read("db/last.mdb"), "(missing)");
}

TEST_F(DatabaseUpdate, ACancelDuringTheCopyOfTheBaseLeavesNoneAndKeepsThePublishedPrices) {
  UpdateParts cancelled = parts();
  cancelled.yield = [&] { return !fileExists(shop + "/db/last.ini"); };  // the copy is what comes next
  EXPECT_EQ(updateDatabase(job, cancelled), "");
  EXPECT_EQ(host.requests.size(), 2U);
  EXPECT_EQ(listFiles(shop + "/db", "*"), (std::vector<std::string>{"last.ini", "sql.mdb"}));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(shop + "/db"), {}), 2) << "no unfinished copy";
  EXPECT_TRUE(published().starts_with("7|0|"));
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(read("db/last.mdb"), theBuild());
}

TEST_F(DatabaseUpdate, ACancelWhileThePricesAreNotedIsAnInterruptionToo) {
  UpdateParts cancelled = parts();
  cancelled.yield = [&] { return !fileExists(priceHistoryPath(shop)); };
  EXPECT_EQ(updateDatabase(job, cancelled), "");
  EXPECT_EQ(listFiles(shop + "/db", "*"), std::vector<std::string>{"sql.mdb"}) << "the copy of the base was not begun";
  EXPECT_TRUE(published().starts_with("7|0|"));
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(DatabaseUpdate, ADifferenceThatWasSentIsNotKept) {
  for (const char* name : {"abcdbupd.sc", "abcdbdelupd.sc", "abcdbupd_l2.sc", "abcdbdelupd_l2.sc", "abcdb.sc"}) {
    put(std::string("online/") + name, "#abc\r\n");
  }
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(listFiles(shop + "/online", "*.sc"), (std::vector<std::string>{"abc.sc", "abcdb.sc"}));
}

TEST_F(DatabaseUpdate, ADifferenceThatCannotBeRemovedHasNoBase) {
  put("online/abcdbupd.sc", "#abc\r\n");
  FailingFiles files(1, AfterFailure::FailsToo, EACCES);
  files.onlyAt({FileStep::Remove});
  files.onlyFor("dbupd.sc");
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(read("db/last.mdb"), "(missing)");
}

TEST_F(DatabaseUpdate, AfterAFailureTheDifferenceStaysForTheNextRun) {
  put("online/abcdbupd.sc", "#abc\r\n");
  host.answers = {"no"};
  run();
  EXPECT_EQ(read("online/abcdbupd.sc"), "#abc\r\n");
}

TEST_F(DatabaseUpdate, ARefusedWordIsToldInTheHostsOwnText) {
  host.answers = {std::string(refused) + "\r\n", refused};
  EXPECT_EQ(run(), std::string(refused) + "\n\n" + refused + "\n\n");
  host.answers = {"ACCESSO al database non autorizzato", "OK"};
  EXPECT_EQ(run(), "ACCESSO al database non autorizzato\n\nOK\n\n");
}

TEST_F(DatabaseUpdate, ARefusalOfALaterLanguageLeadsToTheLogs) {
  host.answers = {"OK", refused};
  EXPECT_EQ(run(), logAdvice());
}

TEST_F(DatabaseUpdate, TheCollectedAnswersArePartedByTwoLineEnds) {
  host.answers = {"a\n", "b"};
  const auto answers = UpdateDB(job, parts());
  ASSERT_TRUE(answers);
  EXPECT_EQ(*answers, "a\r\n\r\nb\r\n\r\n");
}

TEST_F(DatabaseUpdate, TheWindowShowsTheLanguagesAsTheyCome) {
  host.answers = {"riga 1\r\nriga 2", "OK"};
  run();
  EXPECT_EQ(shown,
            "riga 1\nriga 2\nLingua1: ERRORE\n_______________________\n\nLingua2: OK\n_______________________\n\n");
}

TEST_F(DatabaseUpdate, TheLogHasEachLineFeedAsALineEnd) {
  host.answers = {"a\nb\r\nc", "OK"};
  run();
  EXPECT_EQ(read("db1.log"), "a\r\nb\r\r\nc");
}

TEST_F(DatabaseUpdate, LogsOfLanguagesTheShopLacksStayAsTheyWere) {
  put("db3.log", "old 3");
  put("db4.log", "old 4");
  put("db1.log", "old 1");
  run();
  EXPECT_EQ(read("db1.log") + read("db3.log") + read("db4.log"), "OKold 3old 4");
}

TEST_F(DatabaseUpdate, ALongAnswerIsKeptWhole) {
  const std::string answer(3000000, 'x');
  host.answers = {answer};
  run();
  EXPECT_EQ(read("db1.log"), answer);
}

TEST_F(DatabaseUpdate, AnAnswerOfMegabytesIsShownByItsStart) {
  host.answers = {std::string(3'000'000, 'x'), "OK"};
  run();
  EXPECT_TRUE(shown.starts_with(std::string(32'000, 'x') + " ...\n\nLingua1: ERRORE\n")) << shown.substr(31'990, 100);
  EXPECT_LT(shown.size(), 33'000U);
  host.answers = {std::string(refused) + std::string(3'000'000, 'x'), "OK"};
  EXPECT_EQ(run(), std::string(refused) + std::string(2'000 - std::string(refused).size(), 'x') + " ...\n");
}

TEST_F(DatabaseUpdate, AHostThatCannotBeReachedIsTheLanguagesAnswer) {
  host.failing = 1;
  put("db1.log", "OK");
  EXPECT_EQ(run(), logAdvice());
  EXPECT_NE(read("db1.log").find("Could not resolve host"), std::string::npos) << "the user is led there";
  EXPECT_NE(shown.find("Could not resolve host"), std::string::npos);
  EXPECT_NE(shown.find("Lingua1: ERRORE\n_______________________\n\nLingua2: OK"), std::string::npos);
  EXPECT_EQ(read("db/last.mdb"), "(missing)");
}

TEST_F(DatabaseUpdate, ALogThatCannotBeWrittenFailsItsLanguage) {
  ASSERT_TRUE(createFolder(shop + "/db2.log"));
  EXPECT_EQ(run(), logAdvice());
  EXPECT_NE(shown.find("Lingua1: OK"), std::string::npos);
  EXPECT_NE(shown.find("Lingua2: ERRORE"), std::string::npos);
}

TEST_F(DatabaseUpdate, AnInterruptionEndsWithoutATagAndWithoutABase) {
  host.onRequest = [&](const HttpRequest&) {
    if (host.requests.size() == 2) user.cancelAtYield = 1;
  };
  EXPECT_EQ(run(), "");
  EXPECT_EQ(host.requests.size(), 2U);
  EXPECT_EQ(read("db/last.mdb"), "(missing)");
  EXPECT_EQ(read("php.log"), "(missing)");
}

TEST_F(DatabaseUpdate, AnInterruptionIsAskedAboutWithNoAsDefault) {
  user.question(interruptQuestion());
  EXPECT_EQ(asText(user.shown.at(0)),
            "[Question, YesNo, No -> No] Se si annulla l'operazione i dati del negozio online potrebbero essere\n"
            "incoerenti e sarà necessario ripetere al più presto l'aggiornamento.\n\n"
            "Si desidera comunque interrompere l'aggiornamento?");
}

TEST_F(DatabaseUpdate, AFailureFetchesTheDiagnosisWithTheBackslashAsItIs) {
  host.answers = {"no"};
  host.pages["http://www.a.it/shop\\updatedb.php?w=phpinfo"] = {200, "PHP 5"};
  run();
  EXPECT_EQ(read("php.log"), "PHP 5");
  EXPECT_TRUE(host.asked().ends_with("GET http://www.a.it/shop\\updatedb.php?w=phpinfo\n"));
}

TEST_F(DatabaseUpdate, ABackslashThatIsRefusedIsEncodedAndThenASlash) {
  host.answers = {"no"};
  host.pages["http://www.a.it/shop/updatedb.php?w=phpinfo"] = {200, "PHP 8"};
  run();
  EXPECT_EQ(read("php.log"), "PHP 8");
  EXPECT_TRUE(
      host.asked().ends_with("GET http://www.a.it/shop\\updatedb.php?w=phpinfo\n"
                             "GET http://www.a.it/shop%5Cupdatedb.php?w=phpinfo\n"
                             "GET http://www.a.it/shop/updatedb.php?w=phpinfo\n"));
}

TEST_F(DatabaseUpdate, AfterAnOkTheDiagnosisIsNotTouched) {
  put("php.log", "old");
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(read("php.log"), "old");
  EXPECT_EQ(host.asked().find("phpinfo"), std::string::npos);
}

TEST_F(DatabaseUpdate, WithoutANumberOfLanguagesNothingIsAskedAndNothingIsTakenForLoaded) {
  ASSERT_TRUE(deleteFile(shop + "/online/abc.sc"));
  EXPECT_EQ(run(), logAdvice());
  EXPECT_TRUE(host.requests.empty());
  EXPECT_EQ(read("db/last.mdb"), "(missing)");
}

TEST_F(DatabaseUpdate, SqlFilesThatAnybodyCanReadAreWarnedOf) {
  host.pages["http://www.a.it/shop/db.sql"] = {206, "#abc\r\n\r\nCREATE TABLE"};
  EXPECT_EQ(run(), "OK");
  EXPECT_EQ(host.requests.back().enough, 64U) << "a host may answer with gigabytes";
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(asText(user.shown[0]),
            "[Exclamation, Ok, Ok -> Ok] Il file db.sql, con i dati del negozio, può essere letto da chiunque "
            "all'indirizzo\nhttp://www.a.it/shop/db.sql\nEliminarlo dal server e chiedere al fornitore di rendere "
            "scrivibile la cartella del negozio.");
}

TEST_F(DatabaseUpdate, APageInsteadIsNoSqlFile) {
  host.pages["http://www.a.it/shop/db.sql"] = {200, "<html>non trovato</html>"};
  EXPECT_EQ(run(), "OK");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(DatabaseUpdate, WhatTheHostHasLoadedIsSentAgainTheNextTime) {
  const std::string path = shop + "/kvftp.mdb";
  ASSERT_TRUE(createDatabase(path, transferTables()));
  {
    auto table = Database::open(path, OpenMode::Shared);
    ASSERT_TRUE(table && table->execute("INSERT INTO file (nome) VALUES ('ftp.a.it/www/db.sql'), "
                                        "('ftp.b.it/./DBDEL.sql'), ('ftp.a.it/www/db_l2.sql'), "
                                        "('ftp.a.it/www/dbxl2.sql'), ('ftp.a.it/www/mydb.sql'), "
                                        "('ftp.a.it/www/db.sql.htm'), ('ftp.a.it/www/index.php')"));
  }
  EXPECT_EQ(run(), "OK");
  auto table = Database::open(path, OpenMode::ReadOnly);
  ASSERT_TRUE(table);
  const auto left = table->scalar("SELECT GROUP_CONCAT(nome, ' ') FROM file");
  ASSERT_TRUE(left);
  EXPECT_EQ(asText(*left),
            "ftp.a.it/www/db.sql.htm ftp.a.it/www/dbxl2.sql ftp.a.it/www/index.php ftp.a.it/www/mydb.sql");
}

TEST_F(DatabaseUpdate, AFileTableThatCannotBeWrittenKeepsTheHostFromBeingAsked) {
  put("kvftp.mdb", std::string(5000, 'x'));
  EXPECT_TRUE(run().starts_with("kvftp.mdb: "));
  EXPECT_TRUE(host.requests.empty());
}

}  // namespace
}  // namespace kv::test
