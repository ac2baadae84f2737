#pragma once
// The rows of the editor table, by the pages they stand on. Private to the table.

#include <vector>

#include "shell/editor_table.h"

namespace kv {

std::vector<Editor> catalogueEditors();  ///< departments and articles
std::vector<Editor> siteEditors();
std::vector<Editor> internetEditors();

}  // namespace kv
