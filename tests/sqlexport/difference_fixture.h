#pragma once
// A shop folder with the build database of now and the one that the host is known to hold.

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/files/settings.h"
#include "sqlexport/export_fixture.h"
#include "sqlexport/incremental_export.h"
#include "store/schema/schema.h"
#include "store/shop/session.h"

namespace kv::test {

class DifferenceTest : public ::testing::Test {
 protected:
  DifferenceTest() {
    EXPECT_TRUE(createFolders(shop + "/db"));
    EXPECT_TRUE(createFolders(online));
  }

  /// Creates a database of the db folder with these statements.
  void make(const std::string& name, std::string_view sql) {
    ASSERT_TRUE(Database::create(shop + "/db/" + name));
    change(name, sql);
  }
  void change(const std::string& name, std::string_view sql) {
    auto database = Database::open(shop + "/db/" + name, OpenMode::Shared);
    ASSERT_TRUE(database);
    const auto done = database->execute(sql);
    ASSERT_TRUE(done) << done.error().what;
  }
  /// Both databases with the same statements.
  void makeBoth(const std::string& sql) {
    make("sql.mdb", sql);
    make("last.mdb", sql);
  }
  /// The first fields of a query over a database of the db folder, parted by spaces.
  std::string fields(const std::string& name, const std::string& query) {
    auto database = Database::open(shop + "/db/" + name, OpenMode::ReadOnly);
    if (!database) return "(missing)";
    auto row = database->prepare(query);
    if (!row) return "(" + row.error().what + ")";
    std::string text;
    for (auto more = row->step(); more && *more; more = row->step()) {
      text += (text.empty() ? "" : " ") + std::string(row->isNull(0) ? "NULL" : row->text(0));
    }
    return text;
  }

  void note(std::string_view languages) { put("abc.sc", languages); }
  void put(const std::string& name, std::string_view text) { ASSERT_TRUE(writeText(joinPath(online, name), text)); }
  std::string read(const std::string& name) const {
    const auto bytes = readBytes(joinPath(online, name));
    return bytes ? plainLines(*bytes) : "(missing)";
  }
  ExportContext context() { return {shop, online, user, settings, lock}; }
  bool run() {
    report = {};
    return ExportIncrementalSql(context(), "abc", &report);
  }

  TempFolder folder;
  std::string shop = folder / "shop";
  std::string online = folder / "shop/online";
  ScriptedUser user;
  MemorySettings settings;
  LockStatements lock{false};
  ExportReport report;
};

/// A table as a build makes it.
inline std::string keyedTable(const std::string& name, const std::string& columns = "nome LONGTEXT") {
  return "CREATE TABLE " + name + " (ID INTEGER, " + columns + "); CREATE INDEX ix_" + name + "_ID ON " + name +
         " (ID);";
}

}  // namespace kv::test
