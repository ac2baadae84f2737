#include "shell/workbench/fields/variant_names.h"

#include "shell/workbench/fields/current_row.h"
#include "store/schema/schema.h"

namespace kv {

std::string MostraVarianti(CatalogueSets& sets, int listino, int slot) {
  if (!isOnRow(sets, EditedSet::Articoli)) return {};
  // The one column alone: each field of a row reads its own name, and the statement is compiled each time.
  const auto language = static_cast<std::size_t>(sets.session().currentLanguage - 1);
  const std::string_view suffix = language < languageSuffixes.size() ? languageSuffixes[language] : "";
  auto row = sets.session().catalogue.prepare("SELECT nome" + std::string(suffix) + " FROM opzioni WHERE ID = ?");
  if (!row) return {};
  const Value held = sets.dataArticoli().get(variantColumn(slot, listino));
  row->bind(1, isNull(held) ? std::int64_t{1} : asInteger(held));
  const auto found = row->step();
  return found && *found ? std::string(row->text(0)) : std::string();
}

}  // namespace kv
