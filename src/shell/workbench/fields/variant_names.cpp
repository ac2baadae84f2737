#include "shell/workbench/fields/variant_names.h"

#include "shell/workbench/fields/current_row.h"
#include "store/schema/schema.h"

namespace kv {

std::array<std::string, 4> variantNames(CatalogueSets& sets, int listino) {
  std::array<std::string, 4> names;
  if (!isOnRow(sets, EditedSet::Articoli)) return names;
  const Session& session = sets.session();
  auto row = sets.session().catalogue.prepare(SelezionaLingua("opzioni", session.currentLanguage, "WHERE ID = ?"));
  if (!row) return names;
  int column = 0;
  while (column < row->columnCount() && row->columnName(column) != "nome") ++column;
  for (int slot = 1; slot <= 4; ++slot) {
    const Value held = sets.dataArticoli().get(variantColumn(slot, listino));
    row->bind(1, isNull(held) ? std::int64_t{1} : asInteger(held));
    const auto found = row->step();
    if (found && *found) names[static_cast<std::size_t>(slot - 1)] = std::string(row->text(column));
    row->reset();
  }
  return names;
}

}  // namespace kv
