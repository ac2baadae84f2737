// The files of a difference byte by byte, when they are made and when used again, and when the full export runs
// instead.

#include "sqlexport/incremental_export.h"

#include "sqlexport/difference_fixture.h"
#include "support/failing_files.h"

namespace kv::test {
namespace {

class IncrementalExportTest : public DifferenceTest {
 protected:
  IncrementalExportTest() { note("1\r\n"); }
  void start(const std::string& sql = keyedTable("articoli") + "INSERT INTO articoli VALUES (1, 'a'), (2, 'b')") {
    makeBoth(sql);
  }
};

TEST_F(IncrementalExportTest, AnUnchangedShopGivesHeadsAndEmptyLinesAlone) {
  start(keyedTable("articoli") + keyedTable("dettaglio") + "INSERT INTO articoli VALUES (1, 'a')");
  ASSERT_TRUE(run());
  EXPECT_EQ(read("db.sql"), "#abc\n\n\n");
  EXPECT_EQ(read("dbdel.sql"), "#abc\n\n\n");
  EXPECT_EQ(report.rows, 0);
  EXPECT_TRUE(report.incremental);
}

TEST_F(IncrementalExportTest, ChangedAndNewRowsAreInsertedAfterTheirOldOnesAreDeleted) {
  start();
  change("sql.mdb",
         "UPDATE articoli SET nome = 'l''olio' WHERE ID = 2; DELETE FROM articoli WHERE ID = 1;"
         "INSERT INTO articoli VALUES (3, NULL)");
  ASSERT_TRUE(run());
  EXPECT_EQ(read("dbdel.sql"), "#abc\n\nDELETE FROM articoli WHERE ID IN ('1','2');\n");
  EXPECT_EQ(read("db.sql"),
            "#abc\n\nINSERT INTO articoli VALUES ( 2, 'l\\'olio');\nINSERT INTO articoli VALUES ( 3, NULL);\n");
  EXPECT_EQ(report.rows, 2);
  EXPECT_EQ(report.published, (std::vector<std::string>{"db.sql", "dbdel.sql"}));
}

TEST_F(IncrementalExportTest, LockStatementsAreAroundRowsOnlyAndThereIsNoDefinition) {
  start(keyedTable("articoli", "a INTEGER, b INTEGER, c INTEGER") + keyedTable("vuota"));
  lock.on = true;
  change("sql.mdb", "INSERT INTO articoli VALUES (1, 2, NULL, -4)");
  ASSERT_TRUE(run());
  EXPECT_EQ(read("db.sql"),
            "#abc\n\nLOCK TABLES articoli WRITE;\nINSERT INTO articoli\nVALUES (\n 1, \n 2, \nNULL, \n-4 );\n\n"
            "UNLOCK TABLES;\n\n");
}

TEST_F(IncrementalExportTest, FiftyKeysAreOneLineAndFiftyOneAreTwo) {
  start(keyedTable("articoli"));
  std::string rows, fifty;
  for (int i = 1; i <= 51; ++i) {
    rows += (i == 1 ? "(" : ",(") + std::to_string(i) + ", 'x')";
    if (i <= 50) fifty += (i == 1 ? "'" : ",'") + std::to_string(i) + "'";
  }
  change("last.mdb", "INSERT INTO articoli VALUES " + rows);
  change("sql.mdb", "INSERT INTO articoli VALUES (51, 'x')");
  ASSERT_TRUE(run());
  const std::string line = "DELETE FROM articoli WHERE ID IN (" + fifty + ");\n";
  EXPECT_EQ(read("dbdel.sql"), "#abc\n\n" + line);
  change("sql.mdb", "DELETE FROM articoli");
  ASSERT_TRUE(deleteCache(ExportKind::Incremental, online, "abc"));
  ASSERT_TRUE(run());
  EXPECT_EQ(read("dbdel.sql"), "#abc\n\n" + line + "DELETE FROM articoli WHERE ID IN ('51');\n");
}

TEST_F(IncrementalExportTest, AQuoteInAKeyIsEscapedAndABackslashIsNot) {
  start("CREATE TABLE categorie (ID TEXT(20) COLLATE NOCASE); CREATE INDEX i ON categorie (ID)");
  change("last.mdb", "INSERT INTO categorie VALUES ('l''olio'), ('a\\b'), ('citt\xC3\xA0')");
  ASSERT_TRUE(run());
  const auto bytes = readBytes(joinPath(online, "dbdel.sql"));
  EXPECT_EQ(bytes, "#abc\r\n\r\nDELETE FROM categorie WHERE ID IN ('l\\'olio','a\\b','citt\xE0');\r\n");
}

TEST_F(IncrementalExportTest, ATableWithDelInItsNameIsLeftOut) {
  start(keyedTable("articoli") + keyedTable("model_x"));
  change("sql.mdb", "INSERT INTO articoli VALUES (1, 'a'); INSERT INTO model_x VALUES (1, 'a')");
  ASSERT_TRUE(run());
  EXPECT_EQ(read("db.sql"), "#abc\n\nINSERT INTO articoli VALUES ( 1, 'a');\n");
}

TEST_F(IncrementalExportTest, AReservedNameIsWrittenAsTheFullExportWritesIt) {
  start("CREATE TABLE \"order\" (ID INTEGER); CREATE INDEX i ON \"order\" (ID); INSERT INTO \"order\" VALUES (1)");
  change("sql.mdb", "UPDATE \"order\" SET ID = 2");
  ASSERT_TRUE(run());
  EXPECT_EQ(read("dbdel.sql"), "#abc\n\nDELETE FROM _order WHERE ID IN ('1');\n");
  EXPECT_EQ(read("db.sql"), "#abc\n\nINSERT INTO _order VALUES ( 2);\n");
}

TEST_F(IncrementalExportTest, EachLanguageHasItsOwnTables) {
  note("2\r\n");
  start(keyedTable("articoli") + keyedTable("articoli_l2"));
  change("sql.mdb", "INSERT INTO articoli VALUES (1, 'a'); INSERT INTO articoli_l2 VALUES (1, 'b')");
  ASSERT_TRUE(run());
  EXPECT_EQ(report.languages, 2);
  EXPECT_EQ(read("db.sql"), "#abc\n\nINSERT INTO articoli VALUES ( 1, 'a');\n");
  EXPECT_EQ(read("db_l2.sql"), "#abc\n\nINSERT INTO articoli_l2 VALUES ( 1, 'b');\n");
  EXPECT_EQ(listFiles(online, "*.sc"), (std::vector<std::string>{"abc.sc", "abcdbdelupd.sc", "abcdbdelupd_l2.sc",
                                                                 "abcdbupd.sc", "abcdbupd_l2.sc"}));
}

TEST_F(IncrementalExportTest, TheSeparatorEndsEveryStatementAndIsNamedInBothHeads) {
  ASSERT_TRUE(settings.set(settingsSection, "QS2", ";\\g"));
  lock.on = true;
  start();
  change("sql.mdb", "UPDATE articoli SET nome = 'x' WHERE ID = 1");
  ASSERT_TRUE(run());
  EXPECT_EQ(read("dbdel.sql"), "#abc\n#QS=;\\g\n\nDELETE FROM articoli WHERE ID IN ('1');\\g\n");
  EXPECT_EQ(read("db.sql"),
            "#abc\n#QS=;\\g\n\nLOCK TABLES articoli WRITE;\\g\nINSERT INTO articoli VALUES ( 1, 'x');\\g\n"
            "UNLOCK TABLES;\\g\n");
}

TEST_F(IncrementalExportTest, AnExistingCacheIsPublishedAgainWithoutReadingTheDatabases) {
  put("abcdbupd.sc", "#abc\r\nkept\r\n");
  put("abcdbdelupd.sc", "#abc\r\nkept too\r\n");
  ASSERT_TRUE(run());
  EXPECT_EQ(read("db.sql"), "#abc\nkept\n");
  EXPECT_EQ(read("dbdel.sql"), "#abc\nkept too\n");
  EXPECT_EQ(report.languages, 0);
}

TEST_F(IncrementalExportTest, AnotherSeparatorMakesTheCacheStale) {
  start();
  change("sql.mdb", "DELETE FROM articoli WHERE ID = 1");
  ASSERT_TRUE(run());
  ASSERT_TRUE(settings.set(settingsSection, "QS2", ";\\g"));
  ASSERT_TRUE(run());
  EXPECT_EQ(report.languages, 1);
  EXPECT_EQ(read("dbdel.sql"), "#abc\n#QS=;\\g\n\nDELETE FROM articoli WHERE ID IN ('1');\\g\n");
  ASSERT_TRUE(settings.set(settingsSection, "QS2", ""));
  ASSERT_TRUE(run());
  EXPECT_EQ(read("dbdel.sql"), "#abc\n\nDELETE FROM articoli WHERE ID IN ('1');\n");
}

TEST_F(IncrementalExportTest, WithoutANumberOfLanguagesThereIsNoDifference) {
  start();
  note("0\r\n");
  EXPECT_FALSE(run());
  EXPECT_EQ(read("db.sql"), "(missing)");
}

TEST_F(IncrementalExportTest, AComparisonThatFailsIsNotToldAndLeavesNothing) {
  make("sql.mdb", "CREATE TABLE t (n INTEGER)");
  make("last.mdb", "CREATE TABLE t (n INTEGER)");
  EXPECT_FALSE(run());
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(listFiles(online, "*"), std::vector<std::string>{"abc.sc"});
  EXPECT_EQ(listFiles(shop + "/db", "*"), (std::vector<std::string>{"last.mdb", "sql.mdb"}));
}

TEST_F(IncrementalExportTest, TheScratchCopyIsThereOnlyDuringTheExport) {
  start();
  ASSERT_TRUE(writeBytes(shop + "/db/upd.mdb", "of an export that was killed"));
  ASSERT_TRUE(run());
  EXPECT_FALSE(fileExists(shop + "/db/upd.mdb"));
}

TEST_F(IncrementalExportTest, AFileThatCannotBeWrittenIsToldAndHalfADifferenceIsNoCache) {
  start();
  change("sql.mdb", "DELETE FROM articoli");
  FailingFiles files(1, AfterFailure::Works, ENOSPC);
  files.onlyAt({FileStep::Write});
  files.onlyFor("updnew.sc");
  EXPECT_FALSE(run());
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
  EXPECT_EQ(listFiles(online, "*"), std::vector<std::string>{"abc.sc"});
}

TEST_F(IncrementalExportTest, AnExportThatWasKilledLeavesNoCache) {
  start();
  put("abcupdnew.sc", "#abc\r\n\r\nINSERT INTO articoli VALUES ( 9, 'half');\r\n");
  put("abcdbdelupd.sc", "#abc\r\n");
  ASSERT_TRUE(run());
  EXPECT_EQ(read("db.sql"), "#abc\n\n");
  EXPECT_FALSE(fileExists(joinPath(online, "abcupdnew.sc")));
}

class PublishedExport : public IncrementalExportTest {
 protected:
  PublishedExport() {
    start();
    EXPECT_TRUE(keepLastRun(shop, now, 1));
  }
  /// Whether the export of a publish run is a difference.
  bool isDifference(bool allRecords = false) {
    report = {};
    exportForPublishing(context(), now, allRecords, &report);
    EXPECT_EQ(report.published.size(), 2U);
    EXPECT_EQ(read("db.sql").find("CREATE TABLE") == std::string::npos, report.incremental);
    return report.incremental;
  }
  PublishedShop now{"ftp.a.it", "www.a.it", "localhost", "negozio", "abc"};
};

TEST_F(PublishedExport, IsADifferenceWhenThatIsWantedAndPossible) {
  EXPECT_TRUE(isDifference());
  EXPECT_FALSE(isDifference(true));
}

TEST_F(PublishedExport, IsFullAtTheFirstPublishWhateverTheChoice) {
  ASSERT_TRUE(forgetLastRun(shop));
  EXPECT_FALSE(isDifference());
}

TEST_F(PublishedExport, AsksNothingWhenTheHostHasChanged) {
  now.hostname = "ftp.b.it";
  EXPECT_TRUE(isDifference());
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(PublishedExport, IsFullWhenTheDatabasesCannotBeCompared) {
  change("last.mdb", "DROP TABLE articoli");
  EXPECT_FALSE(isDifference());
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(PublishedExport, IsFullWhenTheDifferenceCannotBeCopied) {
  put("abcdbupd.sc", "#abc\r\n");
  FailingFiles files(1);
  files.onlyAt({FileStep::Create});
  files.onlyFor("/db.sql");
  EXPECT_FALSE(isDifference());
}

}  // namespace
}  // namespace kv::test
