#include "shell/workbench/fields/current_row.h"

namespace kv {

bool isOnRow(CatalogueSets& sets, EditedSet set) {
  if (!sets.isBound()) return false;
  const Recordset& rows = sets.edited(set);
  return !rows.bof() && !rows.eof();
}

bool isSettingOn(CatalogueSets& sets, std::string_view column) {
  return isOnRow(sets, EditedSet::Generale) && asFlag(sets.dataGenerale().get(column));
}

std::string settingText(CatalogueSets& sets, std::string_view column) {
  return isOnRow(sets, EditedSet::Generale) ? asText(sets.dataGenerale().get(column)) : std::string();
}

}  // namespace kv
