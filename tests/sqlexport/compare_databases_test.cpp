// What of two build databases counts as new, changed, gone and equal, and which databases can't be compared.

#include "sqlexport/compare_databases.h"

#include "sqlexport/difference_fixture.h"

namespace kv::test {
namespace {

class CompareDatabasesTest : public DifferenceTest {
 protected:
  bool compare() {
    ignore(deleteFile(shop + "/db/upd.mdb"), "none there yet");
    EXPECT_TRUE(copyFile(shop + "/db/sql.mdb", shop + "/db/upd.mdb"));
    return CompareDatabases(shop + "/db/upd.mdb", shop + "/db/last.mdb");
  }
  std::string left() { return fields("upd.mdb", "SELECT ID FROM t NOT INDEXED"); }
  std::string deleted() { return fields("upd.mdb", "SELECT ID FROM del_t"); }
};

TEST_F(CompareDatabasesTest, EqualRowsLeaveNothing) {
  makeBoth(keyedTable("t") + "INSERT INTO t VALUES (1, 'a'), (2, NULL), (3, '')");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "");
  EXPECT_EQ(deleted(), "");
}

TEST_F(CompareDatabasesTest, ANewRowStaysAndDeletesNothing) {
  makeBoth(keyedTable("t") + "INSERT INTO t VALUES (1, 'a')");
  change("sql.mdb", "INSERT INTO t VALUES (7, 'new')");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "7");
  EXPECT_EQ(deleted(), "");
}

TEST_F(CompareDatabasesTest, AGoneRowIsToBeDeleted) {
  makeBoth(keyedTable("t") + "INSERT INTO t VALUES (1, 'a'), (2, 'b')");
  change("sql.mdb", "DELETE FROM t WHERE ID = 2");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "");
  EXPECT_EQ(deleted(), "2");
}

TEST_F(CompareDatabasesTest, AChangedRowStaysAndItsOldVersionIsToBeDeleted) {
  makeBoth(keyedTable("t") + "INSERT INTO t VALUES (1, 'a'), (2, 'b'), (3, 'c')");
  change("sql.mdb", "UPDATE t SET nome = 'x' WHERE ID = 2; DELETE FROM t WHERE ID = 1; INSERT INTO t VALUES (9, 'n')");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "2 9");
  EXPECT_EQ(deleted(), "1 2") << "first those that are gone";
  EXPECT_EQ(fields("upd.mdb", "SELECT nome FROM t"), "x n");
}

TEST_F(CompareDatabasesTest, ATextThatDiffersInCaseAloneHasChanged) {
  makeBoth(keyedTable("t", "nome TEXT(50) COLLATE NOCASE") + "INSERT INTO t VALUES (1, 'Tazza'), (2, 'città')");
  change("sql.mdb", "UPDATE t SET nome = 'TAZZA' WHERE ID = 1; UPDATE t SET nome = 'cittÀ' WHERE ID = 2");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "1 2");
}

TEST_F(CompareDatabasesTest, NullAndAnEmptyTextDiffer) {
  makeBoth(keyedTable("t") + "INSERT INTO t VALUES (1, NULL), (2, '')");
  change("sql.mdb", "UPDATE t SET nome = '' WHERE ID = 1; UPDATE t SET nome = NULL WHERE ID = 2");
  ASSERT_TRUE(compare());
  EXPECT_EQ(fields("upd.mdb", "SELECT typeof(nome) FROM t"), "text null");
  EXPECT_EQ(deleted(), "1 2");
}

TEST_F(CompareDatabasesTest, ADifferenceInTheLastColumnIsSeen) {
  makeBoth(keyedTable("t", "a LONGTEXT, b BOOLEAN, c MONEY_INTEGER, d DATETIME, e FLOAT, f BLOB(9)") +
           "INSERT INTO t VALUES (1, 'a', 1, 12500, '2024-01-01 00:00:00', 1.5, x'00'),"
           "(2, 'a', 1, 12500, '2024-01-01 00:00:00', 1.5, x'00')");
  change("sql.mdb", "UPDATE t SET f = x'0000' WHERE ID = 2");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "2");
}

TEST_F(CompareDatabasesTest, EveryColumnTypeIsCarriedOverUnchanged) {
  const std::string row = "'a', 1, 12500, '2024-01-01 00:00:00', 1.5, x'00FF'";
  makeBoth(keyedTable("t", "a TEXT(9) COLLATE NOCASE, b BOOLEAN, c MONEY_INTEGER, d DATETIME, e DOUBLE, f LONGBLOB"));
  change("sql.mdb", "INSERT INTO t VALUES (1, " + row + ")");
  ASSERT_TRUE(compare());
  EXPECT_EQ(fields("upd.mdb", "SELECT typeof(a) || typeof(b) || c || d || e || hex(f) FROM t"),
            "textinteger125002024-01-01 00:00:001.500FF");
}

TEST_F(CompareDatabasesTest, ATextKeyIsFoundInAnyCase) {
  makeBoth(
      "CREATE TABLE t (ID TEXT(20) COLLATE NOCASE, n INTEGER); CREATE INDEX i ON t (ID); INSERT INTO t VALUES"
      " ('cat001', 1), ('cat002', 1)");
  change("sql.mdb", "UPDATE t SET ID = 'CAT001' WHERE ID = 'cat001'");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "CAT001");
  EXPECT_EQ(deleted(), "CAT001") << "one deletion, which the host applies in any case";
}

TEST_F(CompareDatabasesTest, RowsStayInTheirOrder) {
  makeBoth(keyedTable("t"));
  change("sql.mdb", "INSERT INTO t VALUES (5, 'a'), (1, 'b'), (3, 'c')");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "5 1 3");
}

TEST_F(CompareDatabasesTest, EachTableIsComparedWithItsOwnCounterpart) {
  makeBoth(keyedTable("t") + keyedTable("u") + "INSERT INTO t VALUES (1, 'a'); INSERT INTO u VALUES (1, 'z')");
  change("sql.mdb", "UPDATE u SET nome = 'y'");
  ASSERT_TRUE(compare());
  EXPECT_EQ(left(), "");
  EXPECT_EQ(fields("upd.mdb", "SELECT ID FROM u"), "1");
  EXPECT_EQ(fields("upd.mdb", "SELECT ID FROM del_u"), "1");
}

TEST_F(CompareDatabasesTest, TheOldDatabaseIsLeftAsItIs) {
  makeBoth(keyedTable("t") + "INSERT INTO t VALUES (1, 'a')");
  change("sql.mdb", "DELETE FROM t");
  const auto before = readBytes(shop + "/db/last.mdb");
  ASSERT_TRUE(before && compare());
  EXPECT_EQ(readBytes(shop + "/db/last.mdb"), *before);
}

TEST_F(CompareDatabasesTest, ATableOfTheBuildsOwnSchemaCanBeCompared) {
  ASSERT_TRUE(createDatabase(shop + "/db/sql.mdb", buildDatabaseTables()));
  ASSERT_TRUE(copyFile(shop + "/db/sql.mdb", shop + "/db/last.mdb"));
  change("sql.mdb", "INSERT INTO categorie (ID) VALUES ('cat001')");
  ASSERT_TRUE(compare());
  EXPECT_EQ(fields("upd.mdb", "SELECT ID FROM categorie"), "cat001");
  EXPECT_EQ(fields("upd.mdb", "SELECT name FROM sqlite_schema WHERE name = 'del_ordinamento'"), "del_ordinamento");
}

TEST_F(CompareDatabasesTest, ATableWithoutAKeyColumnCannotBeCompared) {
  makeBoth("CREATE TABLE t (n INTEGER)");
  EXPECT_FALSE(compare());
}

TEST_F(CompareDatabasesTest, ATableWithoutAnIndexOfTheKeyAloneCannotBeCompared) {
  makeBoth("CREATE TABLE t (ID INTEGER, n INTEGER); CREATE INDEX i ON t (ID, n)");
  EXPECT_FALSE(compare());
}

TEST_F(CompareDatabasesTest, ATableThatTheHostLacksCannotBeCompared) {
  makeBoth(keyedTable("t"));
  change("sql.mdb", keyedTable("nuova"));
  EXPECT_FALSE(compare());
}

TEST_F(CompareDatabasesTest, TablesOfDifferentColumnsCannotBeCompared) {
  make("sql.mdb", keyedTable("t", "a LONGTEXT, b INTEGER"));
  make("last.mdb", keyedTable("t", "a LONGTEXT"));
  EXPECT_FALSE(compare());
  change("last.mdb", "ALTER TABLE t ADD b LONGTEXT");
  EXPECT_FALSE(compare()) << "the same names, another type";
}

TEST_F(CompareDatabasesTest, RowsWithoutAKeyOfTheirOwnCannotBeCompared) {
  makeBoth(keyedTable("t") + "INSERT INTO t VALUES (1, 'a')");
  change("sql.mdb", "INSERT INTO t VALUES (1, 'b')");
  EXPECT_FALSE(compare());
  change("sql.mdb", "UPDATE t SET ID = NULL WHERE nome = 'b'");
  EXPECT_FALSE(compare());
}

TEST_F(CompareDatabasesTest, AMissingOrDamagedBaseCannotBeCompared) {
  make("sql.mdb", keyedTable("t"));
  EXPECT_FALSE(compare());
  ASSERT_TRUE(writeBytes(shop + "/db/last.mdb", std::string(5000, 'x')));
  EXPECT_FALSE(compare());
}

}  // namespace
}  // namespace kv::test
