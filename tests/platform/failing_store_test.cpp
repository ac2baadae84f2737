// Calls of the engine that fail: what was open is undone, what could not be read is not taken for a value.
#include <gtest/gtest.h>

#include "platform/database/changes/changes.h"
#include "platform/database/recordset.h"
#include "platform/store_fixture.h"
#include "support/failing_store.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

class FailingStoreTest : public StoreTest {
 protected:
  FailingStoreTest() {
    run(database_,
        "CREATE TABLE articoli (ID INTEGER PRIMARY KEY AUTOINCREMENT, titolo TEXT(20) DEFAULT 'nuovo', peso DOUBLE);"
        "INSERT INTO articoli (titolo, peso) VALUES ('Alba', 1.5), ('Brina', 2.5)");
  }
  std::string all() { return rows(database_, "SELECT titolo, peso FROM articoli ORDER BY ID"); }
  Recordset articles() { return valueOf(database_.openRecordset("SELECT * FROM articoli ORDER BY ID")); }
};

TEST_F(FailingStoreTest, AnErrorOfTheGateIsAnErrorOfTheEngine) {
  const FailingStore store(1, AfterFailure::Works, FailingStore::fullDisk);
  const auto done = database_.execute("DELETE FROM articoli");
  EXPECT_EQ(kindOf(done), ErrorKind::Full);
  EXPECT_EQ(done.error().number, FailingStore::fullDisk);
  EXPECT_FALSE(done.error().what.empty());
}

TEST_F(FailingStoreTest, ATransactionThatFailsAnywhereLeavesTheRowsAndNothingOpen) {
  const auto change = [this]() -> Result<> {
    if (auto begun = database_.begin(); !begun) return begun;
    auto done = database_.execute("UPDATE articoli SET titolo = 'x'; DELETE FROM articoli WHERE ID = 2");
    if (done) return database_.commit();
    database_.rollback();
    return done;
  };
  const std::string before = all();
  std::int64_t calls = 0;
  for (std::int64_t n = 1; calls == 0; ++n) {
    FailingStore store(n);
    const bool done = change().has_value();
    if (!store.hasFailed()) calls = store.calls();
    ASSERT_EQ(done, calls > 0) << n;
    ASSERT_EQ(all() == before, calls == 0) << n;
  }
  EXPECT_EQ(calls, 8);  // two each for the beginning, two statements and the end
}

TEST_F(FailingStoreTest, ARowThatCannotBeReadIsReadAtTheNextTry) {
  Recordset rows = articles();
  {
    const FailingStore store(1, AfterFailure::FailsToo);
    EXPECT_TRUE(isNull(rows.get("titolo")));
    EXPECT_FALSE(rows.load());
  }
  EXPECT_EQ(asText(rows.get("titolo")), "Alba");
}

TEST_F(FailingStoreTest, ALoadedRowIsReadFromMemoryUntilTheNextWrite) {
  Recordset rows = articles();
  ASSERT_TRUE(rows.load());
  {
    const FailingStore store(1, AfterFailure::FailsToo);
    EXPECT_TRUE(rows.load());
    EXPECT_EQ(asText(rows.get("titolo")), "Alba");
  }
  run(database_, "UPDATE articoli SET titolo = 'Duna' WHERE ID = 1");
  const FailingStore store(1, AfterFailure::FailsToo);
  EXPECT_FALSE(rows.load());
}

TEST_F(FailingStoreTest, ANewRowThatFailsAnywhereAddsNothing) {
  Recordset rows = articles();
  const std::string before = all();
  const auto add = [&]() -> Result<> {
    if (auto begun = rows.addNew(); !begun) return begun;
    auto done = rows.set("peso", Value(3.5));
    if (done) done = rows.update();
    if (!done) rows.cancelUpdate();
    return done;
  };
  bool done = false;
  for (std::int64_t n = 1; !done; ++n) {
    FailingStore store(n);
    done = add().has_value();
    ASSERT_EQ(done, !store.hasFailed()) << n;
    if (!done) {
      ASSERT_EQ(all(), before) << n;
    }
  }
  EXPECT_EQ(all(), before + "nuovo|3.5\n");
}

TEST_F(FailingStoreTest, ATableThatCannotBeDescribedIsNoTableWithFewerColumns) {
  const auto whole = database_.table("articoli");
  ASSERT_TRUE(whole);
  bool done = false;
  for (std::int64_t n = 1; !done; ++n) {
    FailingStore store(n);
    const auto info = database_.table("articoli");
    done = !store.hasFailed();
    ASSERT_EQ(info.has_value(), done) << n;
  }
}

TEST_F(FailingStoreTest, RevertingAStepThatFailsAnywhereLeavesTheRows) {
  ChangeRecorder recorder(database_, [](std::string_view) { return true; });
  run(database_, "UPDATE articoli SET titolo = 'Duna' WHERE ID = 1; INSERT INTO articoli (titolo) VALUES ('Erba')");
  const auto changes = recorder.take();
  ASSERT_TRUE(changes);
  const std::string after = all();
  bool done = false;
  for (std::int64_t n = 1; !done; ++n) {
    FailingStore store(n);
    done = recorder.revert(*changes).has_value();
    ASSERT_EQ(done, !store.hasFailed()) << n;
    if (!done) {
      ASSERT_EQ(all(), after) << n;
    }
  }
  EXPECT_EQ(all(), "Alba|1.5\nBrina|2.5\n");
}

TEST_F(FailingStoreTest, AFileThatFailsWhileItIsOpenedIsNotOpenAndOpensAfterwards) {
  database_.close();
  for (const OpenMode mode : {OpenMode::Exclusive, OpenMode::Shared, OpenMode::ReadOnly, OpenMode::Scratch}) {
    bool failed = true;
    for (std::int64_t n = 1; failed; ++n) {
      FailingStore store(n, AfterFailure::FailsToo);
      const auto opened = Database::open(path_, mode);
      failed = store.hasFailed();  // closing makes calls of its own
      ASSERT_EQ(opened.has_value(), !failed) << n;
    }
  }
}

}  // namespace
}  // namespace kv::test
