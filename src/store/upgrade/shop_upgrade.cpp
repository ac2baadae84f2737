#include "store/upgrade/shop_upgrade.h"

#include <span>

#include "platform/files/files.h"
#include "store/schema/working_copies.h"
#include "store/shop/order_numbers.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

/// A column that an earlier release didn't have, and what it holds once it is new.
struct NewColumn {
  std::string_view name;
  ColumnType type = ColumnType::Bool;
  const char* initial = nullptr;  ///< as an SQL literal; null: no value
};

constexpr NewColumn settingColumns[] = {
    {"p3p", ColumnType::Memo, "'ALL CUR ADM CONi PHY ONL UNI PUR COM NAV INT OUR STP'"},
    {"subtitleincart"},
    {"regprices"},
    {"singleitem_search"},
    {"singleitem_vet"},
    {"reglist"},
    {"showsigns", ColumnType::Bool, "1"}};
constexpr NewColumn newSeedColumns[] = {{"compact_privacy_policy", ColumnType::Memo}};

/// Whether a table has all of the columns, as one of a shop that is up to date has.
bool hasColumns(Database& database, const std::string& table, std::span<const NewColumn> columns) {
  std::string names;
  for (const NewColumn& column : columns) names += (names.empty() ? "" : ", ") + std::string(column.name);
  return database.prepare("SELECT " + names + " FROM " + table).has_value();
}

/// Adds a column; that it is there already is the sign that this has been done.
void addColumn(Database& database, const std::string& table, const NewColumn& column, ShopUpgrade& upgrade) {
  std::string name(column.name);
  std::string declared = "ALTER TABLE " + table + " ADD COLUMN " + name + " " + columnTypeName(column.type, 0);
  if (column.type == ColumnType::Memo) declared += " COLLATE NOCASE";
  if (auto begun = database.begin(); !begun) return;
  Result<> added = database.execute(declared);
  if (added && column.initial != nullptr) {
    added = database.execute("UPDATE " + table + " SET " + name + " = " + column.initial);
  }
  if (!added) {
    database.rollback();
    return;
  }
  if (database.commit()) upgrade.columns.push_back(table + "." + name);
}

void addColumns(Database& database, const std::string& table, std::span<const NewColumn> columns,
                ShopUpgrade& upgrade) {
  if (hasColumns(database, table, columns)) return;
  for (const NewColumn& column : columns) addColumn(database, table, column, upgrade);
}

void stampVersion(Database& catalogue, ShopUpgrade& upgrade) {
  const std::string version = std::to_string(currentVersion);
  // A row that has the version already isn't written: its file keeps its time.
  const auto done =
      catalogue.execute("UPDATE generale SET versione = " + version + " WHERE versione IS NOT " + version);
  if (done && catalogue.changes() > 0) upgrade.stamped = true;
}

}  // namespace

Result<> upgradeSchema(const std::string& shopFolder, ShopUpgrade& upgrade) {
  auto catalogue = ApriDatabase(entryPath(shopFolder, catalogueFile), false);
  if (!catalogue) return fail(catalogue.error());
  ignore(renumberCatalogue(*catalogue), "the numbers are in order as they are");
  ignore(dropWorkingCopies(*catalogue), "the dialog that needs them drops them, too");
  addColumns(*catalogue, "generale", settingColumns, upgrade);
  stampVersion(*catalogue, upgrade);
  auto seed = ApriDatabase(entryPath(shopFolder, tagSeedFile), false);
  if (seed) addColumns(*seed, "categoria", newSeedColumns, upgrade);
  return {};
}

ShopUpgrade plannedUpgrade(Database& catalogue, const std::string& shopFolder, const std::string& applicationFolder) {
  ShopUpgrade upgrade;
  const auto plan = [&](Database& database, const std::string& table, const NewColumn& column) {
    const auto info = database.table(table);
    if (info && info->columnIndex(column.name) < 0) upgrade.columns.push_back(table + "." + std::string(column.name));
  };
  for (const NewColumn& column : settingColumns) plan(catalogue, "generale", column);
  const auto version = catalogueVersion(catalogue);
  upgrade.stamped = version && *version != currentVersion;
  auto seed = Database::open(entryPath(shopFolder, tagSeedFile), OpenMode::ReadOnly);
  if (seed) plan(*seed, "categoria", newSeedColumns[0]);
  planFiles(shopFolder, applicationFolder, upgrade);
  return upgrade;
}

ShopUpgrade AggiornaNegozio(const std::string& shopFolder, const std::string& applicationFolder) {
  ShopUpgrade upgrade;
  // A catalogue that another program holds is the other one's shop: its files stay as they are.
  if (!upgradeSchema(shopFolder, upgrade)) return upgrade;
  ignore(upgradeFiles(shopFolder, applicationFolder, upgrade), "the next opening tries again");
  return upgrade;
}

}  // namespace kv
