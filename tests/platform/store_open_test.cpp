// Opening, creating, attaching and compacting files, and the condition that each failure is reported as.

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/database/recordset.h"
#include "platform/store_fixture.h"

namespace kv::test {
namespace {

class StoreOpen : public StoreTest {
 protected:
  StoreOpen() {
    run(database_, "CREATE TABLE t (n INTEGER, a LONGTEXT); INSERT INTO t VALUES (1, 'uno'), (2, 'due')");
    database_.close();
  }
  ErrorKind failure(OpenMode mode) { return kindOf(Database::open(path_, mode)); }
  void overwrite(const std::string& bytes) { std::ofstream(path_, std::ios::binary | std::ios::trunc) << bytes; }
};

constexpr OpenMode everyMode[] = {OpenMode::Shared, OpenMode::Exclusive, OpenMode::ReadOnly, OpenMode::Scratch};

TEST_F(StoreOpen, EveryModeReadsWhatWasWritten) {
  for (const OpenMode mode : everyMode) {
    auto database = valueOf(Database::open(path_, mode));
    EXPECT_EQ(database.path(), path_);
    EXPECT_EQ(rows(database, "SELECT * FROM t"), "1|uno\n2|due\n");
  }
}

TEST_F(StoreOpen, AFileThatIsNotThereIsMissingAndIsNotMade) {
  for (const OpenMode mode : everyMode) {
    EXPECT_EQ(kindOf(Database::open(folder_ / "altro.mdb", mode)), ErrorKind::Missing);
    EXPECT_EQ(kindOf(Database::open(folder_ / "no/altro.mdb", mode)), ErrorKind::Missing);
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "altro.mdb"));
}

TEST_F(StoreOpen, AFileWithoutWritePermissionIsReadOnlyForEveryUser) {
  ASSERT_EQ(chmod(path_.c_str(), 0444), 0);
  EXPECT_EQ(failure(OpenMode::Shared), ErrorKind::ReadOnly);
  EXPECT_EQ(failure(OpenMode::Exclusive), ErrorKind::ReadOnly);
  EXPECT_EQ(failure(OpenMode::Scratch), ErrorKind::ReadOnly);
  EXPECT_TRUE(Database::open(path_, OpenMode::ReadOnly));
}

TEST_F(StoreOpen, AFileInAFolderWithoutWritePermissionIsReadOnly) {
  ASSERT_EQ(chmod(folder_.path().c_str(), 0555), 0);
  EXPECT_EQ(failure(OpenMode::Exclusive), ErrorKind::ReadOnly);
  EXPECT_EQ(kindOf(Database::create(folder_ / "nuovo.mdb")), ErrorKind::ReadOnly);
  EXPECT_TRUE(Database::open(path_, OpenMode::ReadOnly));
  ASSERT_EQ(chmod(folder_.path().c_str(), 0755), 0);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "nuovo.mdb"));
}

TEST_F(StoreOpen, AFileOpenedReadOnlyRefusesEveryWrite) {
  auto database = valueOf(Database::open(path_, OpenMode::ReadOnly));
  EXPECT_EQ(kindOf(database.execute("DELETE FROM t")), ErrorKind::ReadOnly);
  ASSERT_TRUE(database.begin());
  EXPECT_EQ(rows(database, "SELECT count(*) FROM t"), "2\n");
  ASSERT_TRUE(database.commit());
}

TEST_F(StoreOpen, GarbageIsCorrupt) {
  overwrite(
      "Questo non è un catalogo, ma un testo abbastanza lungo da riempire l'intestazione di un database, "
      "con qualche altra parola per arrivare oltre i cento byte.");
  for (const OpenMode mode : everyMode) EXPECT_EQ(failure(mode), ErrorKind::Corrupt);
}

TEST_F(StoreOpen, AnEmptyFileAndAFolderAreCorrupt) {
  overwrite("");
  for (const OpenMode mode : everyMode) EXPECT_EQ(failure(mode), ErrorKind::Corrupt);
  EXPECT_EQ(kindOf(Database::open(folder_.path(), OpenMode::ReadOnly)), ErrorKind::Corrupt);
}

TEST_F(StoreOpen, AHeaderCutOffIsCorrupt) {
  std::filesystem::resize_file(path_, 60);
  for (const OpenMode mode : everyMode) EXPECT_EQ(failure(mode), ErrorKind::Corrupt);
}

TEST_F(StoreOpen, AFileCutOffAnywhereIsCorrupt) {
  const auto size = std::filesystem::file_size(path_);
  ASSERT_GE(size, 8192U);
  for (const std::uintmax_t left : {size - 1, size - 100, size - 4096}) {
    std::filesystem::resize_file(path_, left);
    for (const OpenMode mode : everyMode) EXPECT_EQ(failure(mode), ErrorKind::Corrupt) << left;
  }
}

TEST_F(StoreOpen, ADamagedSchemaPageIsCorrupt) {
  std::fstream file(path_, std::ios::binary | std::ios::in | std::ios::out);
  file.seekp(100);
  file << std::string(300, '\xee');
  file.close();
  for (const OpenMode mode : everyMode) EXPECT_EQ(failure(mode), ErrorKind::Corrupt);
}

TEST_F(StoreOpen, CreatingReplacesNoFile) {
  EXPECT_EQ(kindOf(Database::create(path_)), ErrorKind::Exists);
  EXPECT_EQ(kindOf(Database::create(folder_ / "no/nuovo.mdb")), ErrorKind::Missing);
  auto database = valueOf(Database::open(path_, OpenMode::ReadOnly));
  EXPECT_EQ(rows(database, "SELECT count(*) FROM t"), "2\n");
}

TEST_F(StoreOpen, AFileJustCreatedIsADatabaseWithoutTables) {
  valueOf(Database::create(folder_ / "nuovo.mdb")).close();
  auto database = valueOf(Database::open(folder_ / "nuovo.mdb", OpenMode::Exclusive));
  EXPECT_TRUE(valueOf(database.tables()).empty());
  EXPECT_EQ(rows(database, "PRAGMA auto_vacuum"), "0\n");
}

TEST_F(StoreOpen, AMovedHandleIsClosed) {
  auto first = valueOf(Database::open(path_, OpenMode::Exclusive));
  Database second = std::move(first);
  EXPECT_FALSE(first.isOpen());  // NOLINT(bugprone-use-after-move): what a move leaves is what is tested
  EXPECT_TRUE(second.isOpen());
  first.close();
  EXPECT_EQ(rows(second, "SELECT count(*) FROM t"), "2\n");
}

TEST_F(StoreOpen, ClosingLeavesTheFileAlone) {
  auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
  run(database, "INSERT INTO t VALUES (3, 'tre')");
  EXPECT_TRUE(std::filesystem::exists(path_ + "-journal"));
  database.close();
  EXPECT_FALSE(std::filesystem::exists(path_ + "-journal"));
}

TEST_F(StoreOpen, AStatementThatOutlivesItsDatabaseHoldsNoLock) {
  auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
  auto statement = valueOf(database.prepare("SELECT n FROM t"));
  ASSERT_TRUE(valueOf(statement.step()));
  auto records = database.openRecordset("t");
  ASSERT_TRUE(records);
  database.close();
  EXPECT_TRUE(Database::open(path_, OpenMode::Exclusive));
}

TEST_F(StoreOpen, WhatWasNotCommittedGoesWithTheHandle) {
  auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
  ASSERT_TRUE(database.begin());
  run(database, "DELETE FROM t");
  database.close();
  database = valueOf(Database::open(path_, OpenMode::Shared));
  EXPECT_EQ(rows(database, "SELECT count(*) FROM t"), "2\n");
}

TEST_F(StoreOpen, AShopWrittenWithAWriteAheadLogOpensExclusively) {
  EXPECT_EQ(rowsOfPlainEngine(path_, "PRAGMA journal_mode=WAL"), "wal\n");
  auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
  EXPECT_EQ(rows(database, "PRAGMA journal_mode"), "truncate\n");
  EXPECT_EQ(failure(OpenMode::Shared), ErrorKind::InUse);
}

TEST_F(StoreOpen, AFullStoreIsFullAndKeepsItsRows) {
  auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
  run(database, "PRAGMA max_page_count=4");
  auto insert = valueOf(database.prepare("INSERT INTO t VALUES (9, hex(zeroblob(100000)))"));
  auto written = insert.execute();
  ASSERT_FALSE(written);
  EXPECT_EQ(written.error().kind, ErrorKind::Full);
  EXPECT_EQ(rows(database, "SELECT count(*) FROM t"), "2\n");
}

TEST_F(StoreOpen, RowsGoIntoTheTableOfAnAttachedFile) {
  const std::string other = folder_ / "l'altro.mdb";
  auto target = valueOf(Database::create(other));
  run(target, "CREATE TABLE opcodici (ID INTEGER, codice TEXT(50))");
  target.close();
  auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
  ASSERT_TRUE(database.attach(other, "ext"));
  run(database, "INSERT INTO ext.opcodici SELECT n, TRIM(a) AS codice FROM t");
  EXPECT_EQ(database.changes(), 2);
  ASSERT_TRUE(database.detach("ext"));
  target = valueOf(Database::open(other, OpenMode::Exclusive));
  EXPECT_EQ(rows(target, "SELECT * FROM opcodici"), "1|uno\n2|due\n");
}

TEST_F(StoreOpen, AttachingReportsTheSameConditionsAsOpening) {
  auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
  EXPECT_EQ(kindOf(database.attach(folder_ / "altro.mdb", "ext")), ErrorKind::Missing);
  std::ofstream(folder_ / "testo.mdb") << std::string(5000, 'x');
  EXPECT_EQ(kindOf(database.attach(folder_ / "testo.mdb", "ext")), ErrorKind::Corrupt);
  valueOf(Database::create(folder_ / "preso.mdb")).close();
  auto held = valueOf(Database::open(folder_ / "preso.mdb", OpenMode::Exclusive));
  EXPECT_EQ(kindOf(database.attach(folder_ / "preso.mdb", "ext")), ErrorKind::InUse);
  held.close();
  EXPECT_TRUE(database.attach(folder_ / "preso.mdb", "ext"));
}

TEST_F(StoreOpen, CompactingDropsTheSpaceOfDeletedRowsAndKeepsTheRest) {
  auto database = valueOf(Database::open(path_, OpenMode::Exclusive));
  run(database,
      "CREATE TABLE k (ID INTEGER PRIMARY KEY AUTOINCREMENT, a TEXT(9) COLLATE NOCASE);"
      "CREATE INDEX ix_k_a ON k (a); INSERT INTO k (a) VALUES ('È'), ('b'), ('c'); DELETE FROM k WHERE ID=3;"
      "INSERT INTO t SELECT 7, hex(zeroblob(50000)) FROM t; DELETE FROM t WHERE n=7");
  database.close();
  ASSERT_EQ(chmod(path_.c_str(), 0640), 0);
  const std::string to = folder_ / "catalog.tm0";
  ASSERT_TRUE(Database::compact(path_, to));
  EXPECT_LT(std::filesystem::file_size(to) + 100000, std::filesystem::file_size(path_));
  struct stat status {};
  ASSERT_EQ(stat(to.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
  database = valueOf(Database::open(to, OpenMode::Exclusive));
  EXPECT_EQ(rows(database, "SELECT * FROM t"), "1|uno\n2|due\n");
  run(database, "INSERT INTO k (a) VALUES ('d')");
  EXPECT_EQ(rows(database, "SELECT * FROM k"), "1|È\n2|b\n4|d\n");
  EXPECT_EQ(rows(database, "PRAGMA integrity_check"), "ok\n");
}

TEST_F(StoreOpen, CompactingAFileInUseOrOntoAFileFails) {
  EXPECT_EQ(kindOf(Database::compact(folder_ / "altro.mdb", folder_ / "a.tm0")), ErrorKind::Missing);
  EXPECT_EQ(kindOf(Database::compact(path_, path_)), ErrorKind::Exists);
  auto held = valueOf(Database::open(path_, OpenMode::Exclusive));
  EXPECT_EQ(kindOf(Database::compact(path_, folder_ / "a.tm0")), ErrorKind::InUse);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "a.tm0"));
}

}  // namespace
}  // namespace kv::test
