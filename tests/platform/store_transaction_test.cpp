// Transactions, one inside the other.

#include "platform/store_fixture.h"

namespace kv::test {
namespace {

class StoreTransaction : public StoreTest {
 protected:
  StoreTransaction() { run(database_, "CREATE TABLE t (n INTEGER)"); }
  void add(int number) { run(database_, "INSERT INTO t VALUES (" + std::to_string(number) + ")"); }
  std::string numbers() { return rows(database_, "SELECT group_concat(n, ' ') FROM t"); }
};

TEST_F(StoreTransaction, ACommitKeepsItsRows) {
  ASSERT_TRUE(database_.begin());
  add(1);
  ASSERT_TRUE(database_.commit());
  database_.rollback();
  EXPECT_EQ(numbers(), "1\n");
}

TEST_F(StoreTransaction, ARollbackUndoesAllSinceItsBegin) {
  add(1);
  ASSERT_TRUE(database_.begin());
  add(2);
  database_.rollback();
  EXPECT_EQ(numbers(), "1\n");
}

TEST_F(StoreTransaction, AnInnerCommitIsUndoneByTheOuterRollback) {
  ASSERT_TRUE(database_.begin());
  add(1);
  ASSERT_TRUE(database_.begin());
  add(2);
  ASSERT_TRUE(database_.commit());
  EXPECT_EQ(numbers(), "1 2\n");
  database_.rollback();
  EXPECT_EQ(numbers(), "null\n");
}

TEST_F(StoreTransaction, AnInnerCommitIsNotSeenByOthersBeforeTheOuterOne) {
  auto other = valueOf(Database::open(path_, OpenMode::Shared));
  ASSERT_TRUE(database_.begin());
  ASSERT_TRUE(database_.begin());
  add(1);
  ASSERT_TRUE(database_.commit());
  EXPECT_EQ(rows(other, "SELECT count(*) FROM t"), "0\n");
  ASSERT_TRUE(database_.commit());
  EXPECT_EQ(rows(other, "SELECT count(*) FROM t"), "1\n");
}

TEST_F(StoreTransaction, AnInnerRollbackUndoesItsOwnRowsAlone) {
  ASSERT_TRUE(database_.begin());
  add(1);
  ASSERT_TRUE(database_.begin());
  add(2);
  ASSERT_TRUE(database_.begin());
  add(3);
  database_.rollback();
  ASSERT_TRUE(database_.commit());
  ASSERT_TRUE(database_.begin());
  add(4);
  database_.rollback();
  ASSERT_TRUE(database_.commit());
  EXPECT_EQ(numbers(), "1 2\n");
}

TEST_F(StoreTransaction, ACommitWithoutBeginFails) { EXPECT_EQ(kindOf(database_.commit()), ErrorKind::Other); }

TEST_F(StoreTransaction, ATransactionThatTheEngineUndidIsReportedByEveryCommitInIt) {
  ASSERT_TRUE(database_.begin());
  ASSERT_TRUE(database_.begin());
  add(1);
  run(database_, "ROLLBACK");
  EXPECT_FALSE(database_.begin());
  EXPECT_FALSE(database_.commit());
  EXPECT_FALSE(database_.commit());
  ASSERT_TRUE(database_.begin());
  add(2);
  ASSERT_TRUE(database_.commit());
  EXPECT_EQ(numbers(), "2\n");
}

TEST_F(StoreTransaction, AFullStoreUndoesTheStatementAloneAndTheRestCanBeCommitted) {
  run(database_, "PRAGMA max_page_count=4");
  ASSERT_TRUE(database_.begin());
  add(1);
  EXPECT_EQ(kindOf(database_.execute("INSERT INTO t SELECT zeroblob(100000)")), ErrorKind::Full);
  ASSERT_TRUE(database_.commit());
  EXPECT_EQ(numbers(), "1\n");
}

TEST_F(StoreTransaction, AScratchFileRollsBackToo) {
  database_.close();
  database_ = valueOf(Database::open(path_, OpenMode::Scratch));
  add(1);
  ASSERT_TRUE(database_.begin());
  run(database_, "DELETE FROM t");
  add(2);
  database_.rollback();
  EXPECT_EQ(numbers(), "1\n");
}

}  // namespace
}  // namespace kv::test
