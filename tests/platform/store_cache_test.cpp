// Statements and columns that a connection keeps: nothing that was changed meanwhile is taken for what it was, and what
// is kept holds no lock.
#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/database/engine.h"
#include "platform/database/recordset.h"
#include "platform/store_fixture.h"
#include "support/failing_store.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

constexpr const char* allPlanets = "SELECT * FROM pianeti ORDER BY ID";
constexpr const char* plainShape = "ID=1 nome=Terra lune=1 / ID nome lune";

class StoreCache : public StoreTest {
 protected:
  StoreCache() {
    run(database_,
        "CREATE TABLE pianeti (ID INTEGER PRIMARY KEY AUTOINCREMENT, nome TEXT(20), lune SMALLINT);"
        "INSERT INTO pianeti (nome, lune) VALUES ('Terra', 1), ('Marte', 2)");
  }
  Recordset planets() { return opened(allPlanets); }
  Recordset opened(const std::string& source) {
    auto set = database_.openRecordset(source);
    if (!set) throw std::runtime_error(set.error().what);
    return std::move(*set);
  }
  /// The columns of a new record set and of a new statement, which has not been stepped, and the record set's first
  /// row.
  std::string shape() {
    std::string text;
    auto set = database_.openRecordset(allPlanets);
    if (!set) return set.error().what;
    for (const ColumnInfo& each : set->columns()) text += each.name + "=" + asText(set->get(each.name)) + " ";
    auto statement = database_.prepare(allPlanets);
    if (!statement) return statement.error().what;
    text += "/";
    for (int at = 0; at < statement->columnCount(); ++at) text += " " + std::string(statement->columnName(at));
    return text;
  }
  void addColumn(const std::string& name) {
    run(database_, "ALTER TABLE pianeti ADD COLUMN " + name + " TEXT(5) DEFAULT 'x'");
  }
  void addAndRollBack(const std::string& name) {
    ASSERT_TRUE(database_.begin());
    addColumn(name);
    EXPECT_EQ(shape(), "ID=1 nome=Terra lune=1 " + name + "=x / ID nome lune " + name);
    database_.rollback();
    EXPECT_EQ(shape(), plainShape);
  }
};

TEST_F(StoreCache, WhatIsOpenedTwiceIsTheSameBothTimes) {
  EXPECT_EQ(shape(), plainShape);
  EXPECT_EQ(shape(), plainShape);
}

TEST_F(StoreCache, AnAddedColumnIsSeenAtTheNextOpening) {
  EXPECT_EQ(shape(), plainShape);
  addColumn("a");
  EXPECT_EQ(shape(), "ID=1 nome=Terra lune=1 a=x / ID nome lune a");
}

TEST_F(StoreCache, AColumnAddedByAnotherConnectionIsSeenAtTheNextOpening) {
  EXPECT_EQ(shape(), plainShape);
  EXPECT_EQ(rowsOfPlainEngine(path_, "ALTER TABLE pianeti ADD COLUMN b TEXT(5) DEFAULT 'y'"), "");
  EXPECT_EQ(shape(), "ID=1 nome=Terra lune=1 b=y / ID nome lune b");
}

TEST_F(StoreCache, AColumnThatWasRolledBackIsGoneAndItsNameFree) {
  EXPECT_EQ(shape(), plainShape);
  for (const std::string name : {"a", "b"}) addAndRollBack(name);
}

TEST_F(StoreCache, AColumnOfAnInnerTransactionGoesWithIt) {
  ASSERT_TRUE(database_.begin());
  for (const std::string name : {"a", "b"}) addAndRollBack(name);
  ASSERT_TRUE(database_.commit());
  EXPECT_EQ(shape(), plainShape);
}

TEST_F(StoreCache, ADroppedTableIsMissingAtOnceAndItsFollowerIsReadAsItIs) {
  EXPECT_EQ(shape(), plainShape);
  run(database_, "DROP TABLE pianeti");
  EXPECT_EQ(shape(), "no such table: pianeti");
  run(database_, "CREATE TABLE pianeti (ID INTEGER PRIMARY KEY, massa DOUBLE); INSERT INTO pianeti VALUES (7, 5)");
  EXPECT_EQ(shape(), "ID=7 massa=5 / ID massa");
}

TEST_F(StoreCache, ATemporaryTableHidesTheOneOfItsName) {
  EXPECT_EQ(shape(), plainShape);
  run(database_,
      "CREATE TEMP TABLE pianeti (ID INTEGER PRIMARY KEY, t TEXT(3)); INSERT INTO temp.pianeti VALUES (3, 'q')");
  EXPECT_EQ(shape(), "ID=3 t=q / ID t");
  run(database_, "DROP TABLE temp.pianeti");
  EXPECT_EQ(shape(), plainShape);
}

TEST_F(StoreCache, TablesOfAnAttachedFileAreItsOwn) {
  const std::string other = folder_ / "altro.mdb";
  {
    Database made = valueOf(Database::create(other));
    run(made,
        "CREATE TABLE pianeti (ID INTEGER PRIMARY KEY, c TEXT(3)); INSERT INTO pianeti VALUES (9, 'z');"
        "CREATE TABLE comete (ID INTEGER PRIMARY KEY); INSERT INTO comete VALUES (4)");
  }
  const std::string comets = "SELECT ID FROM comete";
  EXPECT_EQ(shape(), plainShape);
  ASSERT_TRUE(database_.attach(other, "altro"));
  EXPECT_EQ(shape(), plainShape);
  EXPECT_EQ(asText(valueOf(database_.scalar(comets))), "4");
  EXPECT_EQ(asText(opened("SELECT * FROM altro.pianeti").get("c")), "z");
  run(database_, "CREATE TABLE main.comete (ID INTEGER PRIMARY KEY); INSERT INTO main.comete VALUES (5)");
  EXPECT_EQ(asText(valueOf(database_.scalar(comets))), "5");
  run(database_, "DROP TABLE main.comete");
  ASSERT_TRUE(database_.detach("altro"));
  EXPECT_FALSE(database_.scalar(comets));
  EXPECT_FALSE(database_.openRecordset("SELECT * FROM altro.pianeti"));
  EXPECT_EQ(shape(), plainShape);
}

TEST_F(StoreCache, AFileAttachedUnderTheNameOfAnotherIsReadItself) {
  for (const std::string name : {"uno", "due"}) {
    Database made = valueOf(Database::create(folder_ / name));
    run(made, "CREATE TABLE comete (" + name + " TEXT(5)); INSERT INTO comete VALUES ('in " + name + "')");
  }
  for (const std::string name : {"uno", "due", "uno"}) {
    ASSERT_TRUE(database_.attach(folder_ / name, "altro"));
    EXPECT_EQ(asText(opened("SELECT * FROM altro.comete").get(name)), "in " + name);
    ASSERT_TRUE(database_.detach("altro"));
  }
}

TEST_F(StoreCache, TwoRecordSetsOfOneSourceMoveAndEditEachByItself) {
  ignore(planets().get("nome"), "its statements are kept");
  Recordset one = planets();
  Recordset two = planets();
  two.moveLast();
  EXPECT_EQ(asText(one.get("nome")) + asText(two.get("nome")), "TerraMarte");
  for (Recordset* each : {&one, &two}) {
    ASSERT_TRUE(each->edit());
    ASSERT_TRUE(each->set("lune", std::int64_t{each == &one ? 10 : 20}));
  }
  ASSERT_TRUE(two.update());
  ASSERT_TRUE(one.update());
  EXPECT_EQ(rows(database_, allPlanets), "1|Terra|10\n2|Marte|20\n");
}

TEST_F(StoreCache, TwoStatementsOfOneTextStepEachByItself) {
  const std::string text = "SELECT nome FROM pianeti ORDER BY ID";
  ignore(valueOf(database_.prepare(text)).step(), "it is given back in the middle of its rows");
  Statement one = valueOf(database_.prepare(text));
  Statement two = valueOf(database_.prepare(text));
  ASSERT_TRUE(valueOf(one.step()) && valueOf(one.step()) && valueOf(two.step()));
  EXPECT_EQ(std::string(one.text(0)) + std::string(two.text(0)), "MarteTerra");
}

TEST_F(StoreCache, AStatementStartsWithoutTheValuesOfItsFormerUse) {
  const std::string text = "SELECT ifnull(?1, 'nulla')";
  {
    Statement first = valueOf(database_.prepare(text));
    const std::string shortLived = "qualcosa";
    first.bind(1, shortLived);
    ASSERT_TRUE(valueOf(first.step()));
  }
  Statement second = valueOf(database_.prepare(text));
  ASSERT_TRUE(valueOf(second.step()));
  EXPECT_EQ(second.text(0), "nulla");
}

TEST_F(StoreCache, WhatIsKeptHoldsNoLock) {
  {
    Recordset set = planets();
    EXPECT_EQ(asText(set.get("nome")), "Terra");
    Statement rest = valueOf(database_.prepare(allPlanets));
    ASSERT_TRUE(valueOf(rest.step()));
  }
  EXPECT_EQ(rowsOfPlainEngine(path_, "BEGIN EXCLUSIVE; UPDATE pianeti SET lune = 3; COMMIT"), "");
  EXPECT_EQ(rows(database_, allPlanets), "1|Terra|3\n2|Marte|3\n");
  run(database_, "DROP TABLE pianeti; VACUUM");
  database_.close();
  EXPECT_TRUE(Database::open(path_, OpenMode::Exclusive));
}

TEST_F(StoreCache, AnotherProgramsLockIsMetByTheStepAsEver) {
  EXPECT_EQ(shape(), plainShape);
  Database other = valueOf(Database::open(path_, OpenMode::Exclusive));
  Statement statement = valueOf(database_.prepare(allPlanets));
  EXPECT_EQ(kindOf(statement.step()), ErrorKind::InUse);
}

TEST_F(StoreCache, TheGateIsAskedAsOftenForWhatIsKept) {
  const auto calls = [this] {
    const FailingStore counting;
    shape();
    ignore(database_.scalar("SELECT count(*) FROM pianeti"), "only the calls count");
    return counting.calls();
  };
  const std::int64_t first = calls();
  EXPECT_GT(first, 10);
  EXPECT_EQ(calls(), first);
  for (std::int64_t call = 1; call <= 5; ++call) {
    const FailingStore failing(call);
    EXPECT_FALSE(database_.openRecordset(allPlanets)) << call;
  }
}

TEST_F(StoreCache, ASourceWithAWrongConditionFailsForAKnownTableToo) {
  EXPECT_EQ(shape(), plainShape);
  const auto set = database_.openRecordset("SELECT * FROM pianeti WHERE anelli = 1");
  ASSERT_FALSE(set);
  EXPECT_EQ(set.error().what, "no such column: anelli");
}

TEST_F(StoreCache, RowsAreOrderedByACountedColumnAndByAnAlias) {
  const auto names = [this](const std::string& source) {
    Recordset set = opened(source);
    std::string text;
    for (; !set.eof(); set.moveNext()) text += asText(set.get("nome")) + " ";
    return text;
  };
  EXPECT_EQ(names("SELECT * FROM pianeti ORDER BY 2"), "Marte Terra ");
  EXPECT_EQ(names("SELECT * FROM pianeti ORDER BY nome DESC LIMIT 1"), "Terra ");
  EXPECT_EQ(names("SELECT nome, -lune AS x FROM pianeti ORDER BY x"), "Marte Terra ");
  EXPECT_EQ(names("SELECT lune AS nome, nome AS lune FROM pianeti ORDER BY nome DESC"), "2 1 ");
}

TEST(StatementCache, NoMoreThanItsBoundIsKeptAndTheLongestUnusedGoes) {
  const auto connection = valueOf(engine::openMemory());
  const auto textOf = [](std::size_t number) { return "SELECT " + std::to_string(number); };
  const auto use = [&](std::size_t number) {
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(engine::borrow(connection.get(), textOf(number), &statement), SQLITE_OK);
    engine::giveBack(statement);
  };
  constexpr std::size_t most = engine::StatementCache::mostStatements;
  for (std::size_t number = 0; number < 2 * most; ++number) use(number);
  std::size_t kept = 0;
  for (sqlite3_stmt* each = nullptr; (each = sqlite3_next_stmt(connection.get(), each)) != nullptr;) ++kept;
  EXPECT_EQ(kept, most + 1);  // and the one that asks for the schema

  use(most);
  use(0);
  engine::StatementCache& cache = *engine::cacheOf(connection.get());
  EXPECT_EQ(cache.take(textOf(most + 1)), nullptr);
  sqlite3_stmt* const used = cache.take(textOf(most));
  EXPECT_NE(used, nullptr);
  EXPECT_EQ(cache.take(textOf(most)), nullptr) << "a statement in use is nobody else's";
  engine::giveBack(used);
}

TEST(StatementCache, WhileItIsPausedNothingIsKept) {
  const auto connection = valueOf(engine::openMemory());
  engine::StatementCache& cache = *engine::cacheOf(connection.get());
  const auto borrowed = [&](const char* text) {
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(engine::borrow(connection.get(), text, &statement), SQLITE_OK);
    return statement;
  };
  engine::giveBack(borrowed("SELECT 1"));
  sqlite3_stmt* const inUse = borrowed("SELECT 2");
  cache.pause();
  EXPECT_EQ(cache.take("SELECT 1"), nullptr);
  engine::giveBack(inUse);
  engine::giveBack(borrowed("SELECT 3"));
  cache.resume();
  EXPECT_TRUE(cache.refresh(connection.get()));
  for (const char* text : {"SELECT 1", "SELECT 2", "SELECT 3"}) EXPECT_EQ(cache.take(text), nullptr) << text;
  engine::giveBack(borrowed("SELECT 4"));
  sqlite3_stmt* const kept = cache.take("SELECT 4");
  EXPECT_NE(kept, nullptr);
  engine::giveBack(kept);
}

}  // namespace
}  // namespace kv::test
