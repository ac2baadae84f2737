#include "shell/workbench/fields/editor_table.h"

#include <algorithm>
#include <vector>

#include "shell/workbench/fields/editor_rows.h"
#include "store/schema/schema.h"

namespace kv {

std::span<const Editor> editorTable() {
  static const std::vector<Editor> table = [] {
    std::vector<Editor> rows = catalogueEditors();
    for (const Editor& row : siteEditors()) rows.push_back(row);
    for (const Editor& row : internetEditors()) rows.push_back(row);
    return rows;
  }();
  return table;
}

const Editor* editorOf(EditedSet set, std::string_view column) {
  const auto table = editorTable();
  const auto found =
      std::ranges::find_if(table, [&](const Editor& row) { return row.set == set && row.column == column; });
  return found == table.end() ? nullptr : &*found;
}

std::string columnOf(const Editor& editor, int listino) {
  if (editor.control == Control::Variant) return variantColumn(editor.number, listino);
  std::string column(editor.column);
  if (editor.per == Per::Listino) column += listinoSuffixes[static_cast<std::size_t>(std::clamp(listino, 0, 9))];
  return column;
}

}  // namespace kv
