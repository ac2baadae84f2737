#include "shell/sheet/sheet_columns.h"

#include <algorithm>
#include <array>

#include "import/tables/table_columns.h"
#include "shell/workbench/fields/field_forms.h"
#include "shell/workbench/fields/field_store.h"
#include "store/schema/schema.h"

namespace kv {
namespace {

enum class Repeats { Once, PerLanguage, PerListino };

/// A column of `articoli` as the sheet knows it.
struct SheetRule {
  std::string_view column;
  Repeats repeats = Repeats::Once;
  bool isUsual = false;  ///< in language 1 and price list 0
};

// In the order in which the sheet shows them until the merchant moves them.
constexpr std::array<SheetRule, 25> rules{{{"codice", Repeats::Once, true},
                                           {"titolo", Repeats::PerLanguage, true},
                                           {"sottotitolo", Repeats::PerLanguage},
                                           {"prezzo", Repeats::PerListino, true},
                                           {"offerta", Repeats::PerListino, true},
                                           {"offertaprezzo", Repeats::PerListino, true},
                                           {"scq", Repeats::PerListino},
                                           {"peso", Repeats::Once, true},
                                           {"novita", Repeats::Once, true},
                                           {"inelenco", Repeats::Once, true},
                                           {"fuoricatalogo", Repeats::Once, true},
                                           {"popup", Repeats::Once},
                                           {"linkesterno", Repeats::Once},
                                           {"correlazione", Repeats::Once},
                                           {"link", Repeats::Once},
                                           {"scqart0", Repeats::Once},
                                           {"scqperc0", Repeats::Once},
                                           {"scqart1", Repeats::Once},
                                           {"scqperc1", Repeats::Once},
                                           {"opzione1", Repeats::PerListino},
                                           {"opzione2", Repeats::PerListino},
                                           {"opzione3", Repeats::PerListino},
                                           {"opzione4", Repeats::PerListino},
                                           {"descrizione", Repeats::PerLanguage},
                                           {"note", Repeats::PerLanguage}}};

SheetKind kindOf(const Editor& editor, const ColumnInfo& stored) {
  if (editor.control == Control::Variant) return SheetKind::Variant;
  if (editor.control == Control::Check) return SheetKind::Flag;
  if (editor.control == Control::Memo) return SheetKind::Lines;
  if (editor.kind == FieldKind::Price) return SheetKind::Price;
  return isNumberType(stored.type) ? SheetKind::Number : SheetKind::Text;
}

/// The columns of one open shop.
class ColumnList {
 public:
  /// names: the same columns as exports head them, so that one thing has one name.
  ColumnList(const Session& session, const TableInfo& table, const SheetTable& names)
      : session_(session), table_(table), names_(names) {}

  void add(const SheetRule& rule) {
    const Editor* editor = editorOf(EditedSet::Articoli, rule.column);
    if (editor == nullptr) return;
    switch (rule.repeats) {
      case Repeats::Once:
        return addOne(rule, *editor, std::string(rule.column), true);
      case Repeats::PerLanguage:
        for (std::size_t i = 0; i < static_cast<std::size_t>(session_.languageCount); ++i) {
          addOne(rule, *editor, std::string(rule.column) + std::string(languageSuffixes[i]), i == 0);
        }
        return;
      case Repeats::PerListino:
        for (int listino = 0; listino < listini; ++listino) {
          addOne(rule, *editor, columnOf(*editor, listino), listino == 0);
          if (rule.column == "prezzo") addVat(listino);
        }
    }
  }
  void addDepartment() {
    SheetColumn column;
    column.name = "reparto";
    column.heading = "Reparto";
    column.kind = SheetKind::Department;
    column.isUsual = true;
    columns_.push_back(std::move(column));
  }
  std::vector<SheetColumn> take() { return std::move(columns_); }

 private:
  void addOne(const SheetRule& rule, const Editor& editor, std::string name, bool first) {
    const int index = table_.columnIndex(name);
    if (index < 0) return;
    const ColumnInfo& stored = table_.columns[static_cast<std::size_t>(index)];
    const SheetKind kind = kindOf(editor, stored);
    const Editor* const rulesOfTyping = kind == SheetKind::Variant ? nullptr : &editor;
    const auto exported = names_.columnIndex(name);
    std::string heading = exported ? names_.columns[*exported].italian : plainLabel(editor.label);
    columns_.push_back({std::move(name), std::move(heading), kind, rulesOfTyping, stored, rule.isUsual && first});
  }
  void addVat(int listino) {
    const SheetColumn price = columns_.back();
    const std::string list = std::to_string(listino);
    columns_.push_back({"iva" + list, listino == 0 ? "Con IVA" : "Con IVA listino " + list, SheetKind::Vat, nullptr,
                        price.stored, listino == 0});
  }

  const Session& session_;
  const TableInfo& table_;
  const SheetTable& names_;
  std::vector<SheetColumn> columns_;
};

}  // namespace

Result<std::vector<SheetColumn>> sheetColumns(Session& session) {
  const auto table = session.catalogue.table("articoli");
  if (!table) return fail(table.error());
  const auto names = sheetTable(session.catalogue, session.languageCount, "articoli");
  if (!names) return fail(names.error());
  ColumnList list(session, *table, *names);
  list.add(rules.front());
  list.addDepartment();
  std::for_each(rules.begin() + 1, rules.end(), [&](const SheetRule& rule) { list.add(rule); });
  return list.take();
}

std::vector<std::size_t> chosenColumns(const std::vector<SheetColumn>& all, std::string_view stored) {
  std::vector<std::size_t> chosen;
  while (!stored.empty()) {
    const std::size_t end = std::min(stored.find(' '), stored.size());
    const auto found = std::ranges::find(all, stored.substr(0, end), &SheetColumn::name);
    if (found != all.end()) chosen.push_back(static_cast<std::size_t>(found - all.begin()));
    stored.remove_prefix(std::min(end + 1, stored.size()));
  }
  if (!chosen.empty()) return chosen;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all[i].isUsual) chosen.push_back(i);
  }
  return chosen;
}

std::string storedChoice(const std::vector<SheetColumn>& all, const std::vector<std::size_t>& chosen) {
  std::string names;
  for (const std::size_t index : chosen) names += (names.empty() ? "" : " ") + all[index].name;
  return names;
}

bool isChoice(const SheetColumn& column) {
  return column.kind == SheetKind::Variant || column.kind == SheetKind::Department;
}

bool isEditable(const SheetColumn& column) { return column.editor != nullptr || isChoice(column); }

bool isSearchable(const SheetColumn& column) {
  return column.kind == SheetKind::Text || column.kind == SheetKind::Lines;
}

}  // namespace kv
