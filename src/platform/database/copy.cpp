// Copies of whole tables. A copy is made from the statements that made the original, so that every declaration stays
// as it is; only names change.

#include "platform/database/engine.h"
#include "platform/database/sql_reader.h"
#include "platform/text/text.h"

namespace kv {
namespace {

/// "CREATE TABLE old (...)" under another name.
std::string renamedTable(std::string_view sql, std::string_view to) {
  engine::SqlReader reader(sql);
  reader.next();
  reader.next();
  const engine::SqlToken name = reader.next();
  return std::string(sql.substr(0, name.position)) + engine::quoted(to) +
         std::string(sql.substr(name.position + name.text.size()));
}

/// "CREATE [UNIQUE] INDEX old ON table (...)" under another name on another table.
std::string renamedIndex(std::string_view sql, std::string_view name, std::string_view table) {
  engine::SqlReader reader(sql);
  engine::SqlToken token = reader.next();
  while (!token.isWord("INDEX")) token = reader.next();
  const engine::SqlToken oldName = reader.next();
  reader.next();
  const engine::SqlToken oldTable = reader.next();
  return std::string(sql.substr(0, oldName.position)) + engine::quoted(name) + " ON " + engine::quoted(table) +
         std::string(sql.substr(oldTable.position + oldTable.text.size()));
}

/// The name of an index of the copy: the table's name in it changes with the table, "ix_opzioni_nome" to
/// "ix_tempopzioni_nome". Copying the copy back gives the old name again.
std::string copiedIndexName(std::string_view name, std::string_view from, std::string_view to) {
  const std::size_t at = findIgnoringCase(name, from);
  if (at == std::string_view::npos) return std::string(to) + "_" + std::string(name);
  return std::string(name.substr(0, at)) + std::string(to) + std::string(name.substr(at + from.size()));
}

struct Declaration {
  std::string name;
  std::string sql;
};

/// The CREATE statements of a table ("table") or of its indexes ("index"), those without a text left out.
Result<std::vector<Declaration>> declarations(Database& database, const char* type, std::string_view table) {
  auto list = database.prepare(
      "SELECT name, sql FROM sqlite_schema WHERE type = ?1 AND tbl_name = ?2 COLLATE NOCASE AND sql IS NOT NULL"
      " ORDER BY rowid");
  if (!list) return fail(list.error());
  list->bind(1, type);
  list->bind(2, table);
  std::vector<Declaration> found;
  for (;;) {
    auto row = list->step();
    if (!row) return fail(row.error());
    if (!*row) return found;
    found.push_back({std::string(list->text(0)), std::string(list->text(1))});
  }
}

bool isAutomatic(const TableInfo& table) {
  for (const ColumnInfo& column : table.columns) {
    if ((column.attributes & autoIncrement) != 0) return true;
  }
  return false;
}

/// Copies the last automatic number, which may be above that of every row that is left.
Result<> copyLastNumber(Database& database, const std::string& from, const std::string& to) {
  const std::string source = engine::literal(from);
  const std::string target = engine::literal(to);
  return database.execute("DELETE FROM sqlite_sequence WHERE name = " + target +
                          ";INSERT INTO sqlite_sequence (name, seq) SELECT " + target +
                          ", seq FROM sqlite_sequence WHERE name = " + source);
}

Result<> copyAll(Database& database, const TableInfo& from, const std::string& to) {
  auto table = declarations(database, "table", from.name);
  if (!table) return fail(table.error());
  auto indexes = declarations(database, "index", from.name);
  if (!indexes) return fail(indexes.error());
  if (auto made = database.execute(renamedTable(table->front().sql, to)); !made) return made;
  const std::string rows =
      "INSERT INTO main." + engine::quoted(to) + " SELECT * FROM main." + engine::quoted(from.name);
  if (auto copied = database.execute(rows); !copied) return copied;
  for (const Declaration& index : *indexes) {
    const std::string sql = renamedIndex(index.sql, copiedIndexName(index.name, from.name, to), to);
    if (auto made = database.execute(sql); !made) return made;
  }
  return isAutomatic(from) ? copyLastNumber(database, from.name, to) : Result<>();
}

}  // namespace

Result<> Database::copyTable(std::string_view from, std::string_view to) {
  auto source = table(from);
  if (!source) return fail(source.error());
  if (auto taken = table(to)) return fail(ErrorKind::Exists, path_, "table " + std::string(to) + " already exists");
  if (auto begun = begin(); !begun) return begun;
  if (auto copied = copyAll(*this, *source, std::string(to)); !copied) {
    rollback();
    return copied;
  }
  return commit();
}

}  // namespace kv
