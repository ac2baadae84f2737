#include "store/catalogue/shop_identity.h"

#include <algorithm>

#include "store/catalogue/side_fields.h"
#include "store/catalogue/tree_change.h"
#include "store/schema/column_family.h"

namespace kv {
namespace {

bool isIdentityColumn(std::string_view column) {
  return std::ranges::find(identityColumns, column) != identityColumns.end();
}

TableInfo identityTable() {
  TableRule rule{"identita", {columns::number("ID")}};
  for (const std::string_view column : identityColumns) rule.columns.push_back(columns::text(std::string(column)));
  TableInfo table = spreadTable(rule);
  IndexInfo key;
  key.primary = true;
  key.unique = true;
  key.columns = {"ID"};
  table.indexes.push_back(std::move(key));
  return table;
}

}  // namespace

Result<std::string> readIdentity(Database& catalogue, std::string_view column) {
  const auto there = findSideTable(catalogue, "identita");
  if (!there) return fail(there.error());
  if (!isIdentityColumn(column) || !*there) return std::string();
  auto text = scalarWith(catalogue, "SELECT " + std::string(column) + " FROM identita WHERE ID = 1", {});
  if (!text) return fail(text.error());
  return asText(*text);
}

Result<> prepareIdentity(Database& catalogue) {
  const auto there = findSideTable(catalogue, "identita");
  if (!there) return fail(there.error());
  return *there ? Result<>() : catalogue.createTable(identityTable());
}

Result<> writeIdentity(Database& catalogue, std::string_view column, const std::string& text) {
  if (!isIdentityColumn(column)) return fail(ErrorKind::Malformed, "identita", std::string(column));
  const std::string name(column);
  auto written = runWith(catalogue,
                         "INSERT INTO identita (ID, " + name + ") VALUES (1, ?) ON CONFLICT (ID) DO UPDATE SET " +
                             name + " = excluded." + name,
                         {Value(text)});
  if (!written) return written;
  std::string empty = "DELETE FROM identita WHERE ID = 1";
  for (const std::string_view each : identityColumns) empty += " AND COALESCE(" + std::string(each) + ", '') = ''";
  return catalogue.execute(empty);
}

}  // namespace kv
