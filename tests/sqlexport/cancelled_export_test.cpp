// An export that the user cancels: at whatever moment, nothing of it is left, nobody is told, and the next one is
// whole.

#include <map>
#include <utility>

#include "sqlexport/compare_databases.h"
#include "sqlexport/difference_fixture.h"

namespace kv::test {
namespace {

using Names = std::vector<std::string>;

class ACancelledExport : public DifferenceTest {
 protected:
  ACancelledExport() {
    note("2\r\n");
    makeBoth(keyedTable("articoli") + keyedTable("reparti") + keyedTable("articoli_l2") +
             "INSERT INTO articoli VALUES (1, 'a'), (2, 'b'); INSERT INTO articoli_l2 VALUES (1, 'a'), (2, 'b')");
    change("sql.mdb", "UPDATE articoli SET nome = 'c' WHERE ID = 2; DELETE FROM articoli_l2 WHERE ID = 1");
    EXPECT_TRUE(keepLastRun(shop, now, 2));
    change("sql.mdb", "INSERT INTO articoli VALUES (3, 'd')");
  }

  /// The export of a publish run that is cancelled at a yield (from 1; 0 never); whether it went to its end.
  bool publish(bool allRecords, int cancelAt = 0) {
    user.yields = 0;
    user.cancelAtYield = cancelAt;
    report = {};
    return exportForPublishing(context(), now, allRecords, &report);
  }
  /// The names and bytes of all published files.
  std::string published() const {
    std::string all;
    for (const std::string& name : listFiles(online, "*.sql")) all.append(name).append(":\n").append(read(name));
    return all;
  }
  /// All files go but what the build has made.
  void clear() {
    for (const char* pattern : {"*.sql", "abcdb*.sc"}) {
      for (const std::string& name : listFiles(online, pattern)) ASSERT_TRUE(deleteFile(joinPath(online, name)));
    }
  }
  /// Cancels at each yield in turn. Each time nothing is left, and the export after it is as if nothing had been.
  void expectNothingLeftAtAnyYield(bool allRecords) {
    ASSERT_TRUE(publish(allRecords));
    const std::string whole = published();
    const int yields = user.yields;
    EXPECT_GT(yields, 6) << "before each table and each copy";
    for (int at = 1; at <= yields; ++at) {
      clear();
      EXPECT_FALSE(publish(allRecords, at)) << at;
      EXPECT_TRUE(report.cancelled) << at;
      EXPECT_EQ(published(), "") << at;
      EXPECT_FALSE(fileExists(shop + "/db/upd.mdb")) << at;
      ASSERT_TRUE(publish(allRecords)) << at;
      EXPECT_EQ(published(), whole) << at;
    }
    EXPECT_TRUE(user.shown.empty());
  }

  PublishedShop now{"ftp.a.it", "www.a.it", "localhost", "negozio", "abc"};
};

TEST_F(ACancelledExport, OfAllRecordsLeavesNothingAndTheNextIsWhole) { expectNothingLeftAtAnyYield(true); }

TEST_F(ACancelledExport, OfADifferenceLeavesNothingAndTheNextIsWhole) {
  expectNothingLeftAtAnyYield(false);
  EXPECT_TRUE(report.incremental) << "and a cancel is no reason for a full one";
}

TEST_F(ACancelledExport, LeavesNoHalfFilesThatTheNextOneMightTakeForACache) {
  for (const auto& [allRecords, cancelAt] : {std::pair{true, 2}, std::pair{false, 6}}) {
    ASSERT_FALSE(publish(allRecords, cancelAt));
    EXPECT_EQ(listFiles(online, "*"), Names{"abc.sc"});
  }
  EXPECT_TRUE(fileExists(lastDatabasePath(shop))) << "the host still holds what it held";
}

TEST_F(ACancelledExport, NeedNotWaitForTheEndOfALongTable) {
  const std::string many =
      "INSERT INTO reparti WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000) "
      "SELECT i, 'reparto' FROM n";
  std::map<bool, int> before;
  for (const bool allRecords : {true, false}) {
    ASSERT_TRUE(publish(allRecords));
    before[allRecords] = user.yields;
  }
  change("sql.mdb", many);
  for (const bool allRecords : {true, false}) {
    clear();
    ASSERT_TRUE(publish(allRecords));
    const int yields = user.yields;
    EXPECT_GT(yields, before[allRecords] + 5) << "some within the table";
    clear();
    const int amidst = before[allRecords] - 2;
    EXPECT_FALSE(publish(allRecords, amidst));
    EXPECT_EQ(user.yields, amidst) << "the first cancel is the end";
    EXPECT_EQ(listFiles(online, "*"), Names{"abc.sc"});
  }
}

TEST_F(ACancelledExport, EndsTheComparisonToo) {
  ASSERT_TRUE(copyFile(shop + "/db/sql.mdb", shop + "/db/upd.mdb"));
  int asked = 0;
  EXPECT_FALSE(CompareDatabases(shop + "/db/upd.mdb", lastDatabasePath(shop), [&] { return ++asked < 2; }));
  EXPECT_EQ(asked, 2);
}

}  // namespace
}  // namespace kv::test
