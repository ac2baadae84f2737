#pragma once
// A short notation for the tables of the catalogue: one rule for each column family, from which both the table with all
// its columns and the language view are made, so that the two always agree.

#include <string>
#include <string_view>
#include <vector>

#include "store/schema/schema.h"

namespace kv {

/// How many columns a rule makes: one, one for each language, or one for each price list.
enum class Spread { Once, Languages, Listini };

/// One column family of a table.
struct ColumnRule {
  std::string name;  ///< without suffix
  ColumnType type = ColumnType::Text;
  int size = 0;  ///< characters of Text; 0 otherwise
  Spread spread = Spread::Once;
  bool inLanguageView = true;  ///< false: a column that only the plain table shows
};

/// A table as a list of rules, in the order of its columns.
struct TableRule {
  std::string name;
  std::vector<ColumnRule> columns;
};

/// Width, in characters, of a text column that nothing else limits.
constexpr int textWidth = 255;

/// The columns of a rule, that without a suffix first.
std::vector<ColumnInfo> spreadColumns(const ColumnRule& rule);
/// A table with the columns of all rules in turn.
TableInfo spreadTable(const TableRule& rule);

/// The tables with a language view: generale, categorie, articoli, opzioni, dettagliop, pagamento.
/// Null for any other name; case is ignored.
const TableRule* languageViewRule(std::string_view table);

/// Shorthands for a table's list of rules.
namespace columns {
/// Text of at most `width` characters.
ColumnRule text(std::string_view name, int width = textWidth);
/// Text of any length.
ColumnRule memo(std::string_view name);
/// True or false.
ColumnRule flag(std::string_view name);
/// A whole number of 16 bits.
ColumnRule smallNumber(std::string_view name);
/// A whole number of 32 bits.
ColumnRule number(std::string_view name);
/// A real number of single precision.
ColumnRule single(std::string_view name);
/// An amount with four decimals.
ColumnRule money(std::string_view name);
/// The same rule, with one column for each language.
ColumnRule perLanguage(ColumnRule rule);
/// The same rule, with one column for each price list.
ColumnRule perListino(ColumnRule rule);
}  // namespace columns

}  // namespace kv
