// The driver: which files are made, which are published again as they are, and what makes a dump stale.

#include "platform/files/settings.h"
#include "sqlexport/export_fixture.h"
#include "store/shop/session.h"

namespace kv::test {
namespace {

using std::string_literals::operator""s;

class FullExportTest : public ::testing::Test {
 protected:
  FullExportTest() {
    EXPECT_TRUE(createFolders(folder / "shop/db"));
    EXPECT_TRUE(createFolders(online));
    const std::string path = folder / "shop/db/sql.mdb";
    EXPECT_TRUE(Database::create(path));
    auto database = Database::open(path, OpenMode::Shared).value();
    for (const char* table : {"articoli", "articoli_l2", "articoli_l3", "articoli_l4"}) {
      EXPECT_TRUE(database.execute("CREATE TABLE "s + table + " (ID INTEGER); INSERT INTO " + table + " VALUES (7)"));
    }
  }

  void note(std::string_view languages) { put("abc.sc", languages); }
  void put(const std::string& name, std::string_view text) { ASSERT_TRUE(writeText(joinPath(online, name), text)); }
  std::string read(const std::string& name) const {
    const auto bytes = readBytes(joinPath(online, name));
    return bytes ? *bytes : "(missing)";
  }
  void separator(std::string_view text) { ASSERT_TRUE(settings.set(settingsSection, "QS2", text)); }
  ExportReport run() {
    ExportReport report;
    ExportFullSql({folder / "shop", online, user, settings, lock}, "abc", &report);
    return report;
  }
  void removeDatabase() { ASSERT_TRUE(deleteFile(folder / "shop/db/sql.mdb")); }
  std::vector<std::string> files() const { return listFiles(online, "*.sql"); }

  TempFolder folder;
  std::string online = folder / "shop/online";
  ScriptedUser user;
  MemorySettings settings;
  LockStatements lock;
};

TEST_F(FullExportTest, EachLanguageHasItsTwoFilesAndTheirPublishedCopies) {
  note("2\r\n");
  const ExportReport report = run();
  EXPECT_EQ(report.published, (std::vector<std::string>{"db.sql", "dbdel.sql", "db_l2.sql", "dbdel_l2.sql"}));
  EXPECT_EQ(report.languages, 2);
  EXPECT_EQ(report.rows, 2);
  EXPECT_EQ(listFiles(online, "*.sc"),
            (std::vector<std::string>{"abc.sc", "abcdb.sc", "abcdb_l2.sc", "abcdbdel.sc", "abcdbdel_l2.sc"}));
  for (const char* name : {"db", "dbdel", "db_l2", "dbdel_l2"})
    EXPECT_EQ(read("abc"s + name + ".sc"), read(name + ".sql"s));
  EXPECT_EQ(plainLines(read("dbdel_l2.sql")), "#abc\n\nDROP TABLE articoli_l2;\n");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(FullExportTest, FourLanguagesGiveEightFiles) {
  note("4\r\n");
  EXPECT_EQ(run().published, (std::vector<std::string>{"db.sql", "dbdel.sql", "db_l2.sql", "dbdel_l2.sql", "db_l3.sql",
                                                       "dbdel_l3.sql", "db_l4.sql", "dbdel_l4.sql"}));
}

TEST_F(FullExportTest, ACountOfZeroOrATextLeavesTheFolderWithoutFilesAndSaysNothing) {
  for (const char* count : {"0\r\n", "due\r\n", "\r\n", ""}) {
    note(count);
    EXPECT_TRUE(run().published.empty()) << count;
    EXPECT_TRUE(files().empty()) << count;
  }
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(FullExportTest, WithoutACountFileNothingHappens) {
  EXPECT_TRUE(run().published.empty());
  EXPECT_EQ(listFiles(online, "*"), std::vector<std::string>{});
}

TEST_F(FullExportTest, AnExistingDumpIsPublishedAgainWithoutReadingTheDatabase) {
  note("1\r\n");
  removeDatabase();
  put("abcdb.sc", "#abc\r\n\r\nold\r\n");
  put("abcdbdel.sc", "#abc\r\nold\r\n");
  const ExportReport report = run();
  EXPECT_EQ(report.languages, 0);
  EXPECT_EQ(report.published, (std::vector<std::string>{"db.sql", "dbdel.sql"}));
  EXPECT_EQ(read("db.sql"), "#abc\r\n\r\nold\r\n");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(FullExportTest, AnExistingDumpNeedsNoCount) {
  put("abcdb.sc", "#abc\r\n");
  EXPECT_EQ(run().published, std::vector<std::string>{"db.sql"});
}

TEST_F(FullExportTest, ADumpOfAnotherBuildIsNotThisOnes) {
  note("1\r\n");
  put("xyzdb.sc", "#xyz\r\n");
  EXPECT_EQ(run().languages, 1);
  EXPECT_TRUE(read("db.sql").starts_with("#abc\r\n"));
}

TEST_F(FullExportTest, AnotherSeparatorMakesTheDumpStale) {
  note("1\r\n");
  run();
  separator(";\\g");
  EXPECT_EQ(run().languages, 1);
  EXPECT_TRUE(read("db.sql").starts_with("#abc\r\n#QS=;\\g\r\n"));
  EXPECT_EQ(run().languages, 0);
  separator(";\\G");
  EXPECT_EQ(run().languages, 1);
  EXPECT_TRUE(read("dbdel.sql").starts_with("#abc\r\n#QS=;\\G\r\n"));
  separator("");
  EXPECT_EQ(run().languages, 1);
  EXPECT_TRUE(read("db.sql").starts_with("#abc\r\n\r\n"));
}

TEST_F(FullExportTest, ASettingThatDoesNotStartWithTheSemicolonIsNone) {
  note("1\r\n");
  separator("\\g");
  run();
  EXPECT_NE(read("dbdel.sql").find("DROP TABLE articoli;\r\n"), std::string::npos);
  EXPECT_EQ(run().languages, 0);
}

TEST_F(FullExportTest, TheLockOptionAloneDoesNotMakeTheDumpStale) {
  note("1\r\n");
  run();
  EXPECT_NE(read("db.sql").find("\r\nLOCK TABLES articoli WRITE;\r\n"), std::string::npos);
  lock.on = false;
  EXPECT_EQ(run().languages, 0);
  ASSERT_TRUE(deleteFile(joinPath(online, "abcdb.sc")));
  EXPECT_EQ(run().languages, 1);
  EXPECT_EQ(read("db.sql").find("LOCK TABLES"), std::string::npos);
}

TEST_F(FullExportTest, AFailureIsReportedAndTheOtherLanguagesGoOn) {
  note("2\r\n");
  removeDatabase();
  const ExportReport report = run();
  EXPECT_TRUE(report.failed);
  EXPECT_EQ(user.shown.size(), 2U);
  EXPECT_TRUE(report.published.empty());
}

TEST_F(FullExportTest, ACopyThatCannotBeWrittenIsReportedAndTheOthersAreMade) {
  note("2\r\n");
  ASSERT_TRUE(createFolder(joinPath(online, "db.sql")));
  const ExportReport report = run();
  EXPECT_EQ(report.unwritten, (std::vector<std::string>{"db.sql"}));
  EXPECT_EQ(report.published, (std::vector<std::string>{"dbdel.sql", "db_l2.sql", "dbdel_l2.sql"}));
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(FullExportTest, AHalfWrittenDumpCountsAsOneUntilTheNextBuild) {
  note("1\r\n");
  put("abcdb.sc", "#abc\r\n\r\nCREATE TA");
  run();
  EXPECT_EQ(read("db.sql"), "#abc\r\n\r\nCREATE TA");
}

TEST_F(FullExportTest, OldLanguageFilesAreReplacedWithTheFirst) {
  note("2\r\n");
  put("abcdb_l2.sc", "old");
  run();
  EXPECT_TRUE(read("db_l2.sql").starts_with("#abc\r\n"));
}

class LockOption : public FullExportTest {
 protected:
  bool readWith(std::string_view ini, bool before = true) {
    EXPECT_TRUE(writeText(folder / "shop/kvftp.ini", ini));
    lock.on = before;
    readLockOption(folder / "shop", lock);
    return lock.on;
  }
};

TEST_F(LockOption, ZeroTurnsTheLockStatementsOffAndAnyOtherValueOn) {
  EXPECT_FALSE(readWith("MODE: 1\r\nLOCK: 0\r\n"));
  EXPECT_FALSE(readWith("lock:0"));
  EXPECT_TRUE(readWith("LOCK: -1\r\n", false));
  EXPECT_TRUE(readWith("LOCK: 1\r\n", false));
  EXPECT_TRUE(readWith("LOCK:\r\n", false));
}

TEST_F(LockOption, WithoutTheLineOrTheFileTheStateIsKept) {
  EXPECT_TRUE(readWith("MODE: 0\r\n"));
  EXPECT_FALSE(readWith("MODE: 0\r\n", false));
  ASSERT_TRUE(deleteFile(folder / "shop/kvftp.ini"));
  readLockOption(folder / "shop", lock);
  EXPECT_FALSE(lock.on);
}

}  // namespace
}  // namespace kv::test
