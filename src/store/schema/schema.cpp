#include "store/schema/schema.h"

#include "platform/files/files.h"
#include "store/schema/column_family.h"

namespace kv {

using namespace columns;  // the shorthands of a list of rules

namespace {

Result<> createTables(Database& database, std::span<const TableInfo> tables) {
  if (auto begun = database.begin(); !begun) return begun;
  for (const TableInfo& table : tables) {
    if (auto created = database.createTable(table); !created) {
      database.rollback();
      return created;
    }
  }
  return database.commit();
}

}  // namespace

std::string variantColumn(int slot, int listino) {
  std::string name = "opzione" + std::to_string(slot);
  if (listino > 0) name += "_" + std::to_string(listino);
  return name;
}

std::vector<TableInfo> transferTables() {
  ColumnRule when = number("data");
  when.type = ColumnType::DateTime;
  TableInfo table = spreadTable({"file", {text("nome"), when, number("peso")}});
  IndexInfo byName;
  byName.name = "ix_file_nome";
  byName.columns = {"nome"};
  table.indexes.push_back(std::move(byName));
  return {std::move(table)};
}

Result<> createDatabase(const std::string& path, std::span<const TableInfo> tables) {
  auto database = Database::create(path);
  if (!database) return fail(database.error());
  auto created = createTables(*database, tables);
  database->close();
  // A file with half of its tables would be taken for a good database the next time.
  if (!created) ignore(deleteFile(path), "the first failure is the one to report");
  return created;
}

}  // namespace kv
