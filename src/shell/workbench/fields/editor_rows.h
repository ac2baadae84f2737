#pragma once
// The rows of the editor table, by their pages. Private to the table.

#include <vector>

#include "shell/workbench/fields/editor_table.h"

namespace kv {

/// A row with the page, column, group and label that each row has.
/// Everything else has the default of Editor: a line of plain text of the shop.
inline Editor editorRow(EditedSet set, Tab tab, std::string_view column, std::string_view group,
                        std::string_view label) {
  Editor row;
  row.set = set;
  row.tab = tab;
  row.column = column;
  row.group = group;
  row.label = label;
  return row;
}

// In the order in which a page shows them; editorTable() joins them once.
std::vector<Editor> catalogueEditors();  ///< departments and articles
std::vector<Editor> siteEditors();       ///< the settings of shop and site
std::vector<Editor> internetEditors();   ///< addresses and the connection

}  // namespace kv
