#include "store/schema/side_tables.h"

#include "store/schema/schema_parts.h"

namespace kv {

using namespace columns;  // the shorthands of a list of rules

namespace {

constexpr int measureWidth = 2;
constexpr int keyOfDepartment = 20;
constexpr int makerName = 100;
constexpr int digitsOfKey = 64;

TableInfo keyed(const TableRule& rule) {
  TableInfo table = spreadTable(rule);
  IndexInfo key;
  key.primary = true;
  key.unique = true;
  key.columns = {table.columns.front().name};
  table.indexes.push_back(std::move(key));
  return table;
}

std::vector<ColumnRule> makerColumns() {
  return {number("ID"),         text("nome", makerName),         text("indirizzo"),
          text("contatto"),     text("responsabile", makerName), text("resp_indirizzo"),
          text("resp_contatto")};
}

/// key: the name of the column with the number of an article or the ID of a department.
std::vector<ColumnRule> deliveryColumns(std::string_view key) {
  return {text(key, keyOfDepartment), perLanguage(text("tempo", deliveryWidth))};
}

}  // namespace

TableInfo unitTable() { return keyed({"unita", {number("ID"), money("contenuto"), text("misura", measureWidth)}}); }

TableInfo makersTable() {
  TableInfo table = keyed({"produttori", makerColumns()});
  table.columns.front().attributes = autoIncrement;
  return table;
}

TableInfo safetyTable() { return keyed({"sicurezza", {text("chiave", keyOfDepartment), number("produttore")}}); }

TableInfo orderKeyTable() {
  return keyed({std::string(orderKeyTableName), {number("ID"), text("chiave", digitsOfKey)}});
}

TableInfo deliveryTable() { return keyed({"consegna", deliveryColumns("chiave")}); }

TableInfo sentUnitTable() {
  return exported({"kv_unita", {number("ID"), money("contenuto"), text("misura", measureWidth)}});
}
TableInfo sentMakersTable() { return exported({"kv_produttori", makerColumns()}); }
TableInfo sentSafetyTable() { return exported({"kv_sicurezza", {number("ID"), number("produttore")}}); }
TableInfo sentDeliveryTable() { return exported({"kv_consegna", deliveryColumns("ID")}); }
TableInfo sentLowestTable() {
  return exported({"kv_minimi", {number("ID"), perListino(money("minimo")), perListino(smallNumber("giorni"))}});
}

}  // namespace kv
