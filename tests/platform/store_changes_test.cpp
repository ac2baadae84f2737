// What a recorder records, and what reverting and repeating it does.

#include "platform/database/changes/changes.h"

#include <optional>

#include "platform/database/changes/written_columns.h"
#include "platform/store_fixture.h"

namespace kv::test {
namespace {

class StoreChanges : public ::testing::Test {
 protected:
  StoreChanges() {
    const std::string path = folder.path() + "/a.mdb";
    database = valueOf(Database::create(path));
    run(database,
        "CREATE TABLE t (ID INTEGER PRIMARY KEY AUTOINCREMENT, nome TEXT(20), prezzo MONEY_INTEGER, n DOUBLE);"
        "CREATE UNIQUE INDEX tn ON t (nome);"
        "CREATE TABLE appunti (x TEXT(20));"
        "INSERT INTO t (nome, prezzo, n) VALUES ('uno', 10000, 1), ('due', NULL, 2.5), ('tre', 5, 0)");
    recorder.emplace(database, [](std::string_view table) { return table != "appunti"; });
  }
  std::string all() { return rows(database, "SELECT * FROM t ORDER BY ID"); }
  RowChanges taken() { return valueOf(recorder->take()); }
  /// Back to the rows of before, and again to the present ones.
  void goBackAndForth(const RowChanges& changes, const std::string& before) {
    const std::string after = all();
    ASSERT_TRUE(recorder->revert(changes));
    EXPECT_EQ(all(), before);
    ASSERT_TRUE(recorder->repeat(changes));
    EXPECT_EQ(all(), after);
  }

  TempFolder folder;
  Database database;
  std::optional<ChangeRecorder> recorder;
};

TEST_F(StoreChanges, EveryKindOfChangeIsRevertedAndRepeated) {
  const std::string before = all();
  run(database,
      "INSERT INTO t (nome) VALUES ('quattro'); UPDATE t SET nome = 'Uno', n = n + 1 WHERE ID = 1;"
      "UPDATE t SET nome = 'uno bis' WHERE ID = 1; DELETE FROM t WHERE ID = 2");
  const RowChanges changes = taken();
  EXPECT_EQ(changes.size(), 3U);
  goBackAndForth(changes, before);
  EXPECT_FALSE(recorder->touched());
}

TEST_F(StoreChanges, ATableEmptiedWithoutAConditionComesBackWhole) {
  const std::string before = all();
  run(database, "DELETE FROM t");
  const RowChanges changes = taken();
  EXPECT_EQ(changes.size(), 3U);
  ASSERT_TRUE(recorder->revert(changes));
  EXPECT_EQ(all(), before);
}

TEST_F(StoreChanges, RowsThatExchangeAUniqueValueGoBack) {
  const std::string before = all();
  run(database,
      "UPDATE t SET nome = 'x' WHERE ID = 1; UPDATE t SET nome = 'uno' WHERE ID = 2;"
      "UPDATE t SET nome = 'due' WHERE ID = 1");
  const RowChanges changes = taken();
  ASSERT_TRUE(recorder->revert(changes));
  EXPECT_EQ(all(), before);
}

TEST_F(StoreChanges, WhatWasRolledBackLeavesNoTrace) {
  ASSERT_TRUE(database.begin());
  run(database, "UPDATE t SET n = 9 WHERE ID = 3");
  ASSERT_TRUE(database.begin());
  run(database, "DELETE FROM t WHERE ID = 1; INSERT INTO t (nome) VALUES ('mai')");
  database.rollback();
  ASSERT_TRUE(database.commit());
  const RowChanges changes = taken();
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].row, 3);
}

TEST_F(StoreChanges, AChangedRowKeepsTheFieldsThatDifferAlone) {
  run(database, "UPDATE t SET n = 7 WHERE ID = 1");
  const RowChanges changes = taken();
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].columns, std::vector<std::size_t>{3});
  EXPECT_EQ(changes[0].before.size(), 1U);
  run(database, "UPDATE t SET nome = 'altro' WHERE ID = 1");
  ASSERT_TRUE(recorder->revert(changes));
  EXPECT_EQ(rows(database, "SELECT nome, n FROM t WHERE ID = 1"), "altro|1.0\n");
}

TEST_F(StoreChanges, OfATableWithAPromiseOnlyThePromisedColumnsAreLookedAt) {
  const std::string before = all();
  {
    const WrittenColumns promise(database, valueOf(database.table("t")), {"Prezzo", "nome", "manca"});
    run(database, "UPDATE t SET prezzo = 7 WHERE ID < 3; UPDATE t SET nome = 'x', prezzo = 8 WHERE ID = 3");
    goBackAndForth(taken(), before);
    run(database, "UPDATE t SET n = 99");
    EXPECT_TRUE(taken().empty());
    run(database, "INSERT INTO t (nome) VALUES ('nuovo'); DELETE FROM t WHERE ID = 1");
    EXPECT_EQ(taken().size(), 2U) << "rows that come or go are kept whole";
    run(database, "CREATE TABLE u (n DOUBLE); INSERT INTO u VALUES (1)");
    ASSERT_TRUE(recorder->take());
    run(database, "UPDATE u SET n = 2");
    EXPECT_EQ(taken().size(), 1U) << "it is about another table";
  }
  run(database, "UPDATE t SET n = 98 WHERE ID = 2");
  EXPECT_EQ(taken().size(), 1U) << "the promise has ended";
}

TEST_F(StoreChanges, ARowThatIsChangedTwiceAndThenDeletedComesBackAsItFirstWas) {
  const std::string before = all();
  run(database,
      "UPDATE t SET n = 7 WHERE ID = 1; UPDATE t SET n = 8, prezzo = 3 WHERE ID = 1; DELETE FROM t WHERE ID = 1;"
      "UPDATE t SET prezzo = 4 WHERE ID = 2; DELETE FROM t WHERE ID = 2; INSERT INTO t (ID, nome) VALUES (2, 'nuovo')");
  goBackAndForth(taken(), before);
}

TEST_F(StoreChanges, FieldsChangedOneAfterTheOtherAreOneChangeOfTheRow) {
  const std::string before = all();
  run(database,
      "UPDATE t SET n = 7 WHERE ID = 1; UPDATE t SET prezzo = 9 WHERE ID = 1; UPDATE t SET n = 1 WHERE ID = 1;"
      "UPDATE t SET nome = 'Uno' WHERE ID = 1");
  const RowChanges changes = taken();
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].columns, (std::vector<std::size_t>{2, 1})) << "n has its old value again";
  goBackAndForth(changes, before);
}

TEST_F(StoreChanges, ARowThatGetsAnotherNumberComesBackUnderItsOwn) {
  const std::string before = all();
  run(database, "UPDATE t SET n = 5 WHERE ID = 1; UPDATE t SET ID = 9 WHERE ID = 1; UPDATE t SET n = 6 WHERE ID = 9");
  goBackAndForth(taken(), before);
}

TEST_F(StoreChanges, RowsThatExchangeAKeyAndRowsThatDoNotGoBackTogether) {
  const std::string before = all();
  run(database,
      "UPDATE t SET nome = 'x', n = 3 WHERE ID = 1; UPDATE t SET nome = 'uno' WHERE ID = 2;"
      "UPDATE t SET nome = 'due' WHERE ID = 1; UPDATE t SET n = NULL, prezzo = 7 WHERE ID = 3");
  goBackAndForth(taken(), before);
}

TEST_F(StoreChanges, AFieldOfAConditionalKeyIsExchangedWithItsRow) {
  run(database, "CREATE UNIQUE INDEX tp ON t (prezzo) WHERE n > 1; UPDATE t SET prezzo = 1, n = 2 WHERE ID = 2");
  (void)taken();
  const std::string before = all();
  run(database, "UPDATE t SET n = 0 WHERE ID = 2; UPDATE t SET prezzo = 1, n = 2 WHERE ID = 3");
  const RowChanges changes = taken();
  ASSERT_TRUE(recorder->revert(changes));
  EXPECT_EQ(all(), before);
}

TEST_F(StoreChanges, AChangeThatComesToNothingIsNoChange) {
  run(database, "UPDATE t SET n = 7 WHERE ID = 1; UPDATE t SET n = 1 WHERE ID = 1");
  EXPECT_TRUE(taken().empty());
}

TEST_F(StoreChanges, TablesLeftOutAreNotRecorded) {
  run(database, "INSERT INTO appunti VALUES ('a')");
  EXPECT_FALSE(recorder->touched());
  EXPECT_TRUE(taken().empty());
}

TEST_F(StoreChanges, ARowThatHasMovedOnIsNotOverwritten) {
  run(database, "UPDATE t SET n = 7 WHERE ID = 1; DELETE FROM t WHERE ID = 3");
  const RowChanges changes = taken();
  run(database, "UPDATE t SET n = 8 WHERE ID = 1");
  const std::string before = all();
  EXPECT_EQ(kindOf(recorder->revert(changes)), ErrorKind::Malformed);
  EXPECT_EQ(all(), before);
}

TEST_F(StoreChanges, TextBytesAndNullsComeBackAsTheyWere) {
  run(database, "CREATE TABLE v (a TEXT(20), b LONGBLOB, c DATETIME); INSERT INTO v VALUES ('è', x'0001ff', NULL)");
  const std::string before = rows(database, "SELECT a, hex(b), c, typeof(b) FROM v");
  (void)taken();
  run(database, "UPDATE v SET a = NULL, b = x'', c = '2026-01-01 00:00:00'");
  const RowChanges changes = taken();
  ASSERT_TRUE(recorder->revert(changes));
  EXPECT_EQ(rows(database, "SELECT a, hex(b), c, typeof(b) FROM v"), before);
}

}  // namespace
}  // namespace kv::test
