// Each table is compared by statements of the engine alone, so that a shop of any size needs no more memory than its
// cache. The rows that differ, usually few, are carried over into the emptied table: deleting all the others one by one
// would write most of the file.

#include "sqlexport/compare_databases.h"

#include <algorithm>
#include <vector>

#include "platform/database/database.h"
#include "platform/text/text.h"
#include "sqlexport/sql_rows.h"

namespace kv {
namespace {

constexpr std::string_view keyColumn = "ID";

bool isIndexOfKey(const IndexInfo& index) {
  return index.columns.size() == 1 && equalsIgnoringCase(index.columns.front(), keyColumn);
}

bool isSameColumn(const ColumnInfo& a, const ColumnInfo& b) {
  return equalsIgnoringCase(a.name, b.name) && a.type == b.type && a.size == b.size;
}

/// Whether the rows of the new table fit the one that the host has, and keys can be looked up in the latter.
bool isComparable(const TableInfo& now, const TableInfo& last) {
  return now.columnIndex(keyColumn) >= 0 && std::ranges::equal(now.columns, last.columns, isSameColumn) &&
         std::ranges::any_of(last.indexes, isIndexOfKey);
}

/// Whether every row of a table has a key of its own; without one it could be inserted on the host and never deleted.
Result<bool> hasOwnKeys(Database& database, const std::string& table) {
  auto row = database.prepare("SELECT 1 FROM " + table + " GROUP BY ID HAVING COUNT(*) > 1 OR ID IS NULL LIMIT 1");
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  return !*found;
}

/// The statements that reduce one table, in order.
std::string reducingStatements(const TableInfo& table) {
  const std::string name = storeName(table.name), keys = storeName(deletedKeysTable(table.name));
  std::string equal;
  for (const ColumnInfo& column : table.columns) {
    const std::string field = storeName(column.name);
    equal.append(" AND o.").append(field).append(" COLLATE BINARY IS n.").append(field);
  }
  return "CREATE TABLE " + keys + " (ID TEXT);" +
         // Rows that are gone.
         "INSERT INTO " + keys + " SELECT o.ID FROM last." + name +
         " o NOT INDEXED WHERE NOT EXISTS (SELECT 1 FROM main." + name + " n WHERE n.ID = o.ID);" +
         // New rows and changed ones.
         "CREATE TEMP TABLE resto AS SELECT n.* FROM main." + name +
         " n NOT INDEXED WHERE NOT EXISTS (SELECT 1 FROM last." + name + " o WHERE o.ID = n.ID" + equal + ");" +
         "DELETE FROM main." + name + ";INSERT INTO main." + name + " SELECT * FROM temp.resto;" +
         // The old version of a changed row.
         "INSERT INTO " + keys + " SELECT r.ID FROM temp.resto r WHERE EXISTS (SELECT 1 FROM last." + name +
         " o WHERE o.ID = r.ID);" + "DROP TABLE temp.resto";
}

bool reduceTable(Database& upd, const TableInfo& table) {
  for (const std::string_view file : {"main.", "last."}) {
    const auto keyed = hasOwnKeys(upd, std::string(file) + storeName(table.name));
    if (!keyed || !*keyed) return false;
  }
  return upd.execute(reducingStatements(table)).has_value();
}

/// Whether each table has its counterpart in the file at `lastPath`.
bool areComparable(const std::vector<TableInfo>& tables, const std::string& lastPath) {
  auto last = Database::open(lastPath, OpenMode::ReadOnly);
  if (!last) return false;
  return std::ranges::all_of(tables, [&](const TableInfo& table) {
    const auto there = last->table(table.name);
    return there && isComparable(table, *there);
  });
}

}  // namespace

std::string deletedKeysTable(const std::string& table) { return "del_" + table; }

bool CompareDatabases(const std::string& updPath, const std::string& lastPath, const std::function<bool()>& goOn) {
  auto upd = Database::open(updPath, OpenMode::Scratch);
  if (!upd) return false;
  auto tables = upd->tables();
  if (!tables) return false;
  std::erase_if(*tables, [](const TableInfo& table) { return table.attributes != 0; });
  if (!areComparable(*tables, lastPath) || !upd->attach(lastPath, "last")) return false;
  upd->askWhileRunning(goOn);
  return std::ranges::all_of(*tables,
                             [&](const TableInfo& table) { return (!goOn || goOn()) && reduceTable(*upd, table); });
}

}  // namespace kv
