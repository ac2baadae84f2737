#include "store/schema/side_tables.h"

#include "store/schema/column_family.h"

namespace kv {

using namespace columns;  // the shorthands of a list of rules

namespace {

constexpr int measureWidth = 2;
constexpr int keyOfDepartment = 20;
constexpr int makerName = 100;

TableInfo keyed(const TableRule& rule) {
  TableInfo table = spreadTable(rule);
  IndexInfo key;
  key.primary = true;
  key.unique = true;
  key.columns = {table.columns.front().name};
  table.indexes.push_back(std::move(key));
  return table;
}

/// A table as it goes to the web server, where rows are looked up by `ID`.
TableInfo sent(const TableRule& rule) {
  TableInfo table = spreadTable(rule);
  IndexInfo index;
  index.name = "ix_" + table.name + "_ID";
  index.columns = {"ID"};
  table.indexes.push_back(std::move(index));
  return table;
}

std::vector<ColumnRule> makerColumns() {
  return {number("ID"),         text("nome", makerName),         text("indirizzo"),
          text("contatto"),     text("responsabile", makerName), text("resp_indirizzo"),
          text("resp_contatto")};
}

}  // namespace

TableInfo unitTable() { return keyed({"unita", {number("ID"), money("contenuto"), text("misura", measureWidth)}}); }

TableInfo makersTable() {
  TableInfo table = keyed({"produttori", makerColumns()});
  table.columns.front().attributes = autoIncrement;
  return table;
}

TableInfo safetyTable() { return keyed({"sicurezza", {text("chiave", keyOfDepartment), number("produttore")}}); }

TableInfo sentUnitTable() {
  return sent({"kv_unita", {number("ID"), money("contenuto"), text("misura", measureWidth)}});
}
TableInfo sentMakersTable() { return sent({"kv_produttori", makerColumns()}); }
TableInfo sentSafetyTable() { return sent({"kv_sicurezza", {number("ID"), number("produttore")}}); }
TableInfo sentLowestTable() {
  return sent({"kv_minimi", {number("ID"), perListino(money("minimo")), perListino(smallNumber("giorni"))}});
}

}  // namespace kv
