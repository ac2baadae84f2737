#include <algorithm>
#include <array>
#include <map>

#include "store/schema/column_family.h"

namespace kv {
namespace {

// The alias of a language column. `note` is in brackets, because some SQL dialects reserve the name.
std::string aliasOf(const std::string& name) { return name == "note" ? "[note]" : name; }

void appendColumn(std::string& list, const std::string& text) {
  if (!list.empty()) list += ", ";
  list += text;
}

void appendRule(std::string& list, const TableRule& table, const ColumnRule& rule, std::string_view suffix) {
  const std::string qualified = table.name + "." + rule.name;
  if (rule.spread == Spread::Languages) {
    appendColumn(list, qualified + std::string(suffix) + " AS " + aliasOf(rule.name));
    return;
  }
  for (const ColumnInfo& column : spreadColumns(rule)) {
    // The view of the departments names its last column without the table.
    const bool bare = table.name == "categorie" && column.name == "nascosto";
    appendColumn(list, bare ? column.name : table.name + "." + column.name);
  }
  // The view has this column, the height of an article's main image, twice; both have the same value.
  if (qualified == "articoli.imgY0") appendColumn(list, qualified);
}

/// The SELECT of each language but the first.
using LanguageSelects = std::array<std::string, maxLanguages - 1>;

LanguageSelects languageSelects(const TableRule& rule) {
  LanguageSelects selects;
  for (std::size_t language = 0; language < selects.size(); ++language) {
    std::string list;
    for (const ColumnRule& column : rule.columns) {
      if (column.inLanguageView) appendRule(list, rule, column, languageSuffixes[language + 1]);
    }
    selects[language] = "SELECT " + list + " FROM " + rule.name;
  }
  return selects;
}

}  // namespace

int languageOfSuffix(std::string_view suffix) {
  const auto found = std::ranges::find(languageSuffixes, suffix);
  return found == languageSuffixes.end() ? 1 : static_cast<int>(found - languageSuffixes.begin()) + 1;
}

std::string SelezionaLingua(std::string_view table, int language, std::string_view rest) {
  const std::string tail = rest.empty() ? std::string() : " " + std::string(rest);
  if (language < 2 || language > maxLanguages) return "SELECT * FROM " + std::string(table) + tail;
  const TableRule* rule = languageViewRule(table);
  if (rule == nullptr) return {};
  // The rules never change, and each step of an editor reads its lists again.
  static std::map<const TableRule*, LanguageSelects> known;
  auto found = known.find(rule);
  if (found == known.end()) found = known.emplace(rule, languageSelects(*rule)).first;
  return found->second[static_cast<std::size_t>(language - 2)] + tail;
}

std::string SelezionaLingua(std::string_view table, std::string_view suffix, std::string_view rest) {
  return SelezionaLingua(table, languageOfSuffix(suffix), rest);
}

}  // namespace kv
