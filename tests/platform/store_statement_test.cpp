// Statements: what goes into a column comes out of it, and how texts compare.

#include "platform/store_fixture.h"

namespace kv::test {
namespace {

using StoreStatement = StoreTest;

TEST_F(StoreStatement, DigitsInATextColumnStayText) {
  run(database_, "CREATE TABLE t (breve TEXT(20), lungo LONGTEXT)");
  auto insert = valueOf(database_.prepare("INSERT INTO t VALUES (?, ?)"));
  insert.bind(1, "0012");
  insert.bind(2, "007.10");
  ASSERT_TRUE(insert.execute());
  run(database_, "INSERT INTO t VALUES (12, 007.10)");
  EXPECT_EQ(rows(database_, "SELECT breve, lungo, typeof(breve), typeof(lungo) FROM t"),
            "0012|007.10|text|text\n12|7.1|text|text\n");
}

TEST_F(StoreStatement, MoneyComesBackExactOverItsWholeRange) {
  run(database_, "CREATE TABLE t (prezzo MONEY_INTEGER)");
  auto insert = valueOf(database_.prepare("INSERT INTO t VALUES (?)"));
  for (const std::int64_t count :
       {INT64_MIN, INT64_MIN + 1, std::int64_t{-1}, std::int64_t{9007199254740993}, INT64_MAX - 1, INT64_MAX}) {
    insert.bind(1, Money::ofTenThousandths(count));
    ASSERT_TRUE(insert.execute());
    const Value back = valueOf(database_.scalar("SELECT prezzo FROM t ORDER BY rowid DESC LIMIT 1"));
    EXPECT_EQ(back, Value(Money::ofTenThousandths(count)));
  }
}

TEST_F(StoreStatement, ALongOneCanBeCancelledAndTheNextGoesOn) {
  const std::string slow =
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) SELECT max(i) FROM n";
  int asked = 0;
  database_.askWhileRunning([&] { return ++asked < 3; });
  Database moved = std::move(database_);
  const auto ended = moved.scalar(slow);
  ASSERT_FALSE(ended);
  EXPECT_EQ(ended.error().kind, ErrorKind::Cancelled);
  EXPECT_EQ(asked, 3);
  moved.askWhileRunning({});
  EXPECT_EQ(valueOf(moved.scalar(slow)), Value(std::int64_t{100000}));
  EXPECT_EQ(asked, 3);
}

TEST_F(StoreStatement, TheDeclaredTypeDecidesWhatAFieldIs) {
  run(database_,
      "CREATE TABLE t (a BOOLEAN, b TINYINT, c SMALLINT, d INTEGER, e MONEY_INTEGER, f FLOAT, g DOUBLE, h DATETIME,"
      " i BLOB(8), j TEXT(9), k LONGBLOB, l LONGTEXT);"
      "INSERT INTO t VALUES (1, 2, 3, 4, 5, 6, 7, '2004-05-06 07:08:09', x'00ff', '8', x'', '9')");
  auto read = valueOf(database_.prepare("SELECT * FROM t"));
  ASSERT_TRUE(valueOf(read.step()));
  EXPECT_EQ(read.value(0), Value(true));
  EXPECT_EQ(read.value(1), Value(std::int64_t{2}));
  EXPECT_EQ(read.value(2), Value(std::int64_t{3}));
  EXPECT_EQ(read.value(3), Value(std::int64_t{4}));
  EXPECT_EQ(read.value(4), Value(Money::ofTenThousandths(5)));
  EXPECT_EQ(read.value(5), Value(6.0));
  EXPECT_EQ(read.value(6), Value(7.0));
  EXPECT_EQ(read.value(7), Value(std::string("2004-05-06 07:08:09")));
  EXPECT_EQ(read.value(8), Value(Bytes{0, 255}));
  EXPECT_EQ(read.value(9), Value(std::string("8")));
  EXPECT_EQ(read.value(10), Value(Bytes{}));
  EXPECT_EQ(read.value(11), Value(std::string("9")));
}

TEST_F(StoreStatement, AnAliasKeepsTheTypeOfItsColumn) {
  run(database_, "CREATE TABLE t (prezzo3 MONEY_INTEGER); INSERT INTO t VALUES (15000)");
  auto read = valueOf(database_.prepare("SELECT t.prezzo3 AS prezzo FROM t"));
  ASSERT_TRUE(valueOf(read.step()));
  EXPECT_EQ(read.columnName(0), "prezzo");
  EXPECT_EQ(read.value(0), Value(Money::ofTenThousandths(15000)));
}

TEST_F(StoreStatement, AnEmptyTextIsNotNull) {
  run(database_, "CREATE TABLE t (a TEXT(5), b TEXT(5))");
  auto insert = valueOf(database_.prepare("INSERT INTO t VALUES (?, ?)"));
  insert.bind(1, std::string_view());
  insert.bindNull(2);
  ASSERT_TRUE(insert.execute());
  auto read = valueOf(database_.prepare("SELECT a, b FROM t"));
  ASSERT_TRUE(valueOf(read.step()));
  EXPECT_FALSE(read.isNull(0));
  EXPECT_TRUE(read.isNull(1));
  EXPECT_EQ(read.text(0), "");
  EXPECT_EQ(read.text(1), "");
  EXPECT_EQ(read.integer(1), 0);
  EXPECT_EQ(read.value(0), Value(std::string()));
  EXPECT_EQ(read.value(1), Value(Null{}));
}

TEST_F(StoreStatement, ATextMayHoldANullCharacter) {
  run(database_, "CREATE TABLE t (a LONGTEXT)");
  auto insert = valueOf(database_.prepare("INSERT INTO t VALUES (?)"));
  const std::string text("a\0b", 3);
  insert.bind(1, text);
  ASSERT_TRUE(insert.execute());
  EXPECT_EQ(valueOf(database_.scalar("SELECT a FROM t")), Value(text));
}

TEST_F(StoreStatement, EveryKindOfValueCanBeBound) {
  run(database_, "CREATE TABLE t (a, b, c, d, e, f, g)");
  const Bytes bytes{1, 2};
  const Value values[] = {Null{}, true, std::int64_t{-7}, 2.5, Money::ofUnits(3), std::string("x"), bytes};
  auto insert = valueOf(database_.prepare("INSERT INTO t VALUES (?, ?, ?, ?, ?, ?, ?)"));
  int index = 0;
  for (const Value& value : values) insert.bind(++index, value);
  ASSERT_TRUE(insert.execute());
  EXPECT_EQ(rows(database_, "SELECT a, b, c, d, e, f, hex(g) FROM t"), "null|1|-7|2.5|30000|x|0102\n");
}

TEST_F(StoreStatement, AfterTheLastRowItIsReadyToRunAgain) {
  run(database_, "CREATE TABLE t (n INTEGER); INSERT INTO t VALUES (1), (2), (3)");
  auto read = valueOf(database_.prepare("SELECT n FROM t WHERE n > ?"));
  read.bind(1, 2);
  EXPECT_TRUE(valueOf(read.step()));
  EXPECT_FALSE(valueOf(read.step()));
  EXPECT_TRUE(valueOf(read.step()));
  read.reset();
  read.bind(1, 1);
  EXPECT_TRUE(valueOf(read.step()));
  EXPECT_EQ(read.integer(0), 2);
}

TEST_F(StoreStatement, BindingsStayForTheNextRun) {
  run(database_, "CREATE TABLE t (n INTEGER)");
  auto insert = valueOf(database_.prepare("INSERT INTO t VALUES (?)"));
  insert.bind(1, 5);
  ASSERT_TRUE(insert.execute());
  ASSERT_TRUE(insert.execute());
  EXPECT_EQ(rows(database_, "SELECT n FROM t"), "5\n5\n");
  EXPECT_EQ(database_.changes(), 1);
}

TEST_F(StoreStatement, ASecondStatementInOneTextIsRefused) {
  EXPECT_EQ(kindOf(database_.prepare("SELECT 1; SELECT 2")), ErrorKind::Malformed);
  EXPECT_EQ(kindOf(database_.prepare("  ;")), ErrorKind::Malformed);
  EXPECT_TRUE(database_.prepare("SELECT 1 ; "));
}

TEST_F(StoreStatement, AFailureCarriesTheEnginesTextAndNumber) {
  auto failed = database_.execute("SELECT * FROM nessuna");
  ASSERT_FALSE(failed);
  EXPECT_EQ(failed.error().kind, ErrorKind::Other);
  EXPECT_EQ(failed.error().what, "no such table: nessuna");
  EXPECT_EQ(failed.error().where, path_);
  EXPECT_EQ(failed.error().number, SQLITE_ERROR);
}

TEST_F(StoreStatement, AConstraintGivesItsExtendedNumber) {
  run(database_, "CREATE TABLE t (a TEXT(9) NOT NULL)");
  auto failed = database_.execute("INSERT INTO t VALUES (NULL)");
  ASSERT_FALSE(failed);
  EXPECT_EQ(failed.error().number, SQLITE_CONSTRAINT_NOTNULL);
}

TEST_F(StoreStatement, ATextForARowNumberIsATextInANumber) {
  run(database_, "CREATE TABLE t (ID INTEGER PRIMARY KEY)");
  EXPECT_EQ(kindOf(database_.execute("INSERT INTO t VALUES ('uno')")), ErrorKind::TextInNumber);
}

TEST_F(StoreStatement, ScalarIsNullWithoutARow) {
  EXPECT_EQ(valueOf(database_.scalar("SELECT 1 WHERE 0")), Value(Null{}));
}

TEST_F(StoreStatement, ComparisonIgnoresTheCaseOfEveryLetter) {
  run(database_, "CREATE TABLE t (a TEXT(20) COLLATE NOCASE); INSERT INTO t VALUES ('Città'), ('ÈRBA'), ('zoo')");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a = 'CITTÀ'"), "Città\n");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a = 'èrba'"), "ÈRBA\n");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a = 'citta'"), "");
}

TEST_F(StoreStatement, OrderAndGroupsIgnoreCase) {
  run(database_, "CREATE TABLE t (a TEXT(20) COLLATE NOCASE); INSERT INTO t VALUES ('b'), ('A'), ('a'), ('B'), ('ab')");
  EXPECT_EQ(rows(database_, "SELECT a FROM t ORDER BY a, rowid"), "A\na\nab\nb\nB\n");
  EXPECT_EQ(rows(database_, "SELECT count(DISTINCT a) FROM t"), "3\n");
}

TEST_F(StoreStatement, AnIndexOverTextServesAComparisonBeyondAscii) {
  run(database_, "CREATE TABLE t (a TEXT(20) COLLATE NOCASE); CREATE INDEX ix_t_a ON t (a)");
  run(database_, "INSERT INTO t VALUES ('perché'), ('PERCHÉ'), ('pero'), ('Ünder'), ('under')");
  EXPECT_EQ(rows(database_, "SELECT count(*) FROM t INDEXED BY ix_t_a WHERE a = 'Perché'"), "2\n");
  EXPECT_EQ(rows(database_, "SELECT count(*) FROM t INDEXED BY ix_t_a WHERE a = 'ünder'"), "1\n");
  EXPECT_EQ(rows(database_, "PRAGMA integrity_check"), "ok\n");
}

TEST_F(StoreStatement, LikeTakesStarsQuestionMarksDigitsAndLists) {
  run(database_, "CREATE TABLE t (a TEXT(20)); INSERT INTO t VALUES ('cat007'), ('CAT12'), ('dog1'), ('100%'), (NULL)");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a LIKE 'cat*'"), "cat007\nCAT12\n");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a LIKE '?at##'"), "CAT12\n");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a LIKE '[a-d]o[fg]#'"), "dog1\n");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a LIKE '[!c]*'"), "dog1\n100%\n");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a NOT LIKE 'c*'"), "dog1\n100%\n");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE like('DOG?', a)"), "dog1\n");
}

TEST_F(StoreStatement, ThePercentSignIsNoWildcardOfLike) {
  run(database_, "CREATE TABLE t (a TEXT(20) COLLATE NOCASE); CREATE INDEX ix_t_a ON t (a)");
  run(database_, "INSERT INTO t VALUES ('100%'), ('100 euro'), ('a_c'), ('abc')");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a LIKE '100%'"), "100%\n");
  EXPECT_EQ(rows(database_, "SELECT a FROM t WHERE a LIKE 'a_c'"), "a_c\n");
}

}  // namespace
}  // namespace kv::test
