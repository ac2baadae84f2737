// The schema view, read from the engine's own tables in the order of creation, and its reverse, createTable.
//
// The engine allows one primary key and wants an automatic number to be it. Where a table has an automatic number
// beside another primary key, that key becomes a unique index by the name of "pk_" and the table.

#include <algorithm>

#include "platform/database/engine.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view primaryPrefix = "pk_";
constexpr std::string_view tablePrimaryName = "PrimaryKey";

/// Adds the primary index that has no entry of its own: a whole-number column that is the number of the row.
void addRowNumberKey(TableInfo& table, const std::string& keyColumn) {
  const auto isPrimary = [](const IndexInfo& index) { return index.primary; };
  if (keyColumn.empty() || std::any_of(table.indexes.begin(), table.indexes.end(), isPrimary)) return;
  table.indexes.insert(table.indexes.begin(), IndexInfo{std::string(tablePrimaryName), true, true, {keyColumn}});
}

/// The one column of a primary key; empty when there is none or more than one.
Result<std::string> singleKeyColumn(Database& database, const std::string& table) {
  auto found =
      database.prepare("SELECT CASE count(*) WHEN 1 THEN max(name) END FROM pragma_table_info(?1) WHERE pk > 0");
  if (!found) return fail(found.error());
  found->bind(1, table);
  auto row = found->step();
  if (!row) return fail(row.error());
  return std::string(found->text(0));
}

/// The first column of all rows that are left.
Result<> readColumnNames(Statement& rows, std::vector<std::string>& names) {
  for (;;) {
    auto row = rows.step();
    if (!row) return fail(row.error());
    if (!*row) return {};
    names.emplace_back(rows.text(0));
  }
}

Result<> readIndexes(Database& database, TableInfo& table) {
  auto list = database.prepare(
      "SELECT m.name, l.\"unique\", l.origin = 'pk' FROM sqlite_schema AS m JOIN pragma_index_list(?1) AS l"
      " ON l.name = m.name WHERE m.type = 'index' AND m.tbl_name = ?1 ORDER BY m.rowid");
  if (!list) return fail(list.error());
  auto parts = database.prepare("SELECT name FROM pragma_index_info(?1) WHERE name IS NOT NULL ORDER BY seqno");
  if (!parts) return fail(parts.error());
  list->bind(1, table.name);
  for (;;) {
    auto row = list->step();
    if (!row) return fail(row.error());
    if (!*row) return {};
    const std::string name(list->text(0));
    const bool ofTable = list->flag(2);
    IndexInfo index{
        ofTable ? std::string(tablePrimaryName) : name, ofTable || name.starts_with(primaryPrefix), list->flag(1), {}};
    parts->bind(1, name);
    if (auto read = readColumnNames(*parts, index.columns); !read) return read;
    table.indexes.push_back(std::move(index));
  }
}

Result<TableInfo> readTable(Database& database, sqlite3* handle, const std::string& name) {
  TableInfo table;
  table.name = name;
  auto columns = engine::readColumns(handle, "main", name);
  if (!columns) return fail(columns.error());
  table.columns = std::move(*columns);
  if (auto read = readIndexes(database, table); !read) return fail(read.error());
  auto key = singleKeyColumn(database, name);
  if (!key) return fail(key.error());
  addRowNumberKey(table, *key);
  return table;
}

/// A default as the engine accepts it: a literal as it is, an expression in parentheses.
std::string defaultClause(const std::string& value) {
  const bool literal =
      value.front() == '\'' || value.front() == '"' || value.find_first_of(" ()+*/|") == std::string::npos;
  return " DEFAULT " + (literal || value.front() == '(' ? value : "(" + value + ")");
}

std::string columnLine(const ColumnInfo& column) {
  std::string line = "\n  " + engine::quoted(column.name) + " ";
  if ((column.attributes & autoIncrement) != 0) return line + "INTEGER PRIMARY KEY AUTOINCREMENT";
  line += columnTypeName(column.type, column.size);
  if (engine::isTextual(column.type)) line += " COLLATE NOCASE";
  if (column.required) line += " NOT NULL";
  if (!column.defaultValue.empty()) line += defaultClause(column.defaultValue);
  return line;
}

std::string nameList(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + engine::quoted(name);
  return list;
}

bool hasAutomaticKey(const TableInfo& table) {
  return std::any_of(table.columns.begin(), table.columns.end(),
                     [](const ColumnInfo& column) { return (column.attributes & autoIncrement) != 0; });
}

bool isAutomaticKey(const TableInfo& table, const IndexInfo& index) {
  if (index.columns.size() != 1) return false;
  const int at = table.columnIndex(index.columns.front());
  return at >= 0 && (table.columns[static_cast<std::size_t>(at)].attributes & autoIncrement) != 0;
}

/// Whether an index is written inside CREATE TABLE. Only the first can be, or the order would change.
bool isTableKey(const TableInfo& table, std::size_t at) {
  return at == 0 && table.indexes[0].primary && !hasAutomaticKey(table);
}

std::string tableSql(const TableInfo& table) {
  std::string sql = "CREATE TABLE " + engine::quoted(table.name) + " (";
  for (const ColumnInfo& column : table.columns) sql += (sql.back() == '(' ? "" : ",") + columnLine(column);
  if (!table.indexes.empty() && isTableKey(table, 0)) {
    sql += ",\n  PRIMARY KEY (" + nameList(table.indexes[0].columns) + ")";
  }
  return sql + "\n)";
}

/// Names of indexes are one set for the whole file, so a name may be taken by another table's index.
std::string madeIndexName(const TableInfo& table, const IndexInfo& index) {
  if (index.primary) return "pk_" + table.name;
  std::string made = "ix_" + table.name;
  for (const std::string& column : index.columns) made += "_" + column;
  return made;
}

Result<std::string> freeIndexName(Database& database, const TableInfo& table, const IndexInfo& index) {
  // The prefix tells a primary index from the others, so a given name counts only when it says what the index is.
  std::string name = index.primary == index.name.starts_with(primaryPrefix) ? index.name : std::string();
  const std::string made = madeIndexName(table, index);
  for (int round = 1;; ++round) {
    if (name.empty() || round > 1) name = round <= 2 ? made : made + "_" + std::to_string(round - 1);
    auto taken =
        database.scalar("SELECT 1 FROM sqlite_schema WHERE name = " + engine::literal(name) + " COLLATE NOCASE");
    if (!taken) return fail(taken.error());
    if (isNull(*taken)) return name;
  }
}

Result<> createIndexes(Database& database, const TableInfo& table) {
  for (std::size_t at = 0; at < table.indexes.size(); ++at) {
    const IndexInfo& index = table.indexes[at];
    if (isTableKey(table, at) || (index.primary && isAutomaticKey(table, index))) continue;
    auto name = freeIndexName(database, table, index);
    if (!name) return fail(name.error());
    auto made = database.execute(std::string("CREATE ") + (index.unique || index.primary ? "UNIQUE " : "") + "INDEX " +
                                 engine::quoted(*name) + " ON " + engine::quoted(table.name) + " (" +
                                 nameList(index.columns) + ")");
    if (!made) return made;
  }
  return {};
}

}  // namespace

namespace engine {

Result<std::vector<ColumnInfo>> readColumns(sqlite3* handle, std::string_view schema, std::string_view table) {
  sqlite3_stmt* list = nullptr;
  int code = prepare(handle, columnsSql, 0, &list);
  if (code != SQLITE_OK) return fail(errorOf(handle, code, std::string(table)));
  const std::string schemaName(schema);
  const std::string tableName(table);
  sqlite3_bind_text(list, 1, tableName.c_str(), -1, SQLITE_STATIC);
  sqlite3_bind_text(list, 2, schemaName.c_str(), -1, SQLITE_STATIC);
  const auto text = [&](int at) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(list, at));
    return std::string(bytes == nullptr ? "" : bytes);
  };
  std::vector<ColumnInfo> columns;
  while ((code = step(list)) == SQLITE_ROW) {
    const DeclaredType type = declaredType(text(1));
    ColumnInfo column{text(0), type.type, type.size, 0, sqlite3_column_int(list, 2) != 0, text(3)};
    int automatic = 0;
    if (sqlite3_column_int(list, 4) == 1) {
      sqlite3_table_column_metadata(handle, schemaName.c_str(), tableName.c_str(), column.name.c_str(), nullptr,
                                    nullptr, nullptr, nullptr, &automatic);
    }
    if (automatic != 0) column.attributes = autoIncrement;
    columns.push_back(std::move(column));
  }
  sqlite3_finalize(list);
  if (code != SQLITE_DONE) return fail(errorOf(handle, code, tableName));
  return columns;
}

}  // namespace engine

Result<std::vector<TableInfo>> Database::tables() {
  auto names =
      prepare("SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT GLOB 'sqlite_*' ORDER BY rowid");
  if (!names) return fail(names.error());
  std::vector<TableInfo> tables;
  for (;;) {
    auto row = names->step();
    if (!row) return fail(row.error());
    if (!*row) return tables;
    auto table = readTable(*this, handle_, std::string(names->text(0)));
    if (!table) return fail(table.error());
    tables.push_back(std::move(*table));
  }
}

Result<TableInfo> Database::table(std::string_view name) {
  auto found = scalar("SELECT name FROM sqlite_schema WHERE type = 'table' AND name = " + engine::literal(name) +
                      " COLLATE NOCASE");
  if (!found) return fail(found.error());
  if (kv::isNull(*found)) return fail(ErrorKind::Missing, path_, "no such table: " + std::string(name));
  return readTable(*this, handle_, asText(*found));
}

Result<> Database::createTable(const TableInfo& table) {
  if (table.columns.empty()) return fail(ErrorKind::Malformed, path_, "no columns: " + table.name);
  if (auto existing = this->table(table.name)) {
    return fail(ErrorKind::Exists, path_, "table " + table.name + " already exists");
  }
  if (auto begun = begin(); !begun) return begun;
  auto made = execute(tableSql(table));
  if (made) made = createIndexes(*this, table);
  if (!made) {
    rollback();
    return made;
  }
  return commit();
}

}  // namespace kv
