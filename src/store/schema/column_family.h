#pragma once
// The short form in which the tables of the catalogue are written down: one rule for each column family, from which
// both the table with all its columns and the language view are made, so that the two cannot part.

#include <string>
#include <string_view>
#include <vector>

#include "store/schema/schema.h"

namespace kv {

/// How a rule spreads: one column, one for each language, or one for each price list.
enum class Spread { Once, Languages, Listini };

struct ColumnRule {
  std::string name;
  ColumnType type = ColumnType::Text;
  int size = 0;
  Spread spread = Spread::Once;
  bool inLanguageView = true;  ///< false: a column that only the plain table shows
};

struct TableRule {
  std::string name;
  std::vector<ColumnRule> columns;
};

/// Width of a text column that nothing limits.
constexpr int textWidth = 255;

/// The columns of a rule, the bare name first.
std::vector<ColumnInfo> spreadColumns(const ColumnRule& rule);
/// A table with the columns of all rules in turn.
TableInfo spreadTable(const TableRule& rule);

/// The tables with a language view: generale, categorie, articoli, opzioni, dettagliop, pagamento.
/// Null for any other name; case is ignored.
const TableRule* languageViewRule(std::string_view table);

/// Shorthands for a table's list of rules.
namespace columns {
ColumnRule text(std::string_view name, int width = textWidth);
ColumnRule memo(std::string_view name);
ColumnRule flag(std::string_view name);
ColumnRule smallNumber(std::string_view name);
ColumnRule number(std::string_view name);
ColumnRule single(std::string_view name);
ColumnRule money(std::string_view name);
ColumnRule perLanguage(ColumnRule rule);
ColumnRule perListino(ColumnRule rule);
}  // namespace columns

}  // namespace kv
