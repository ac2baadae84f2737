#include "store/schema/column_family.h"

#include <utility>

namespace kv {
namespace {

ColumnRule rule(std::string_view name, ColumnType type, int size = 0) {
  ColumnRule made;
  made.name = name;
  made.type = type;
  made.size = size;
  return made;
}

ColumnInfo column(const ColumnRule& rule, std::string_view suffix) {
  ColumnInfo made;
  made.name = rule.name + std::string(suffix);
  made.type = rule.type;
  made.size = rule.size;
  return made;
}

}  // namespace

namespace columns {

ColumnRule text(std::string_view name, int width) { return rule(name, ColumnType::Text, width); }
ColumnRule memo(std::string_view name) { return rule(name, ColumnType::Memo); }
ColumnRule flag(std::string_view name) { return rule(name, ColumnType::Bool); }
ColumnRule smallNumber(std::string_view name) { return rule(name, ColumnType::Int); }
ColumnRule number(std::string_view name) { return rule(name, ColumnType::Long); }
ColumnRule single(std::string_view name) { return rule(name, ColumnType::Single); }
ColumnRule money(std::string_view name) { return rule(name, ColumnType::Money); }

ColumnRule perLanguage(ColumnRule rule) {
  rule.spread = Spread::Languages;
  return rule;
}

ColumnRule perListino(ColumnRule rule) {
  rule.spread = Spread::Listini;
  return rule;
}

}  // namespace columns

std::vector<ColumnInfo> spreadColumns(const ColumnRule& rule) {
  std::vector<ColumnInfo> columns;
  switch (rule.spread) {
    case Spread::Once:
      columns.push_back(column(rule, ""));
      break;
    case Spread::Languages:
      for (std::string_view suffix : languageSuffixes) columns.push_back(column(rule, suffix));
      break;
    case Spread::Listini:
      for (std::string_view suffix : listinoSuffixes) columns.push_back(column(rule, suffix));
      break;
  }
  return columns;
}

TableInfo spreadTable(const TableRule& rule) {
  TableInfo table;
  table.name = rule.name;
  for (const ColumnRule& one : rule.columns) {
    for (ColumnInfo& made : spreadColumns(one)) table.columns.push_back(std::move(made));
  }
  return table;
}

}  // namespace kv
