#pragma once
// Find and replace over texts of many articles: what would change is shown before anything does.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/text/text_search.h"
#include "shell/sheet/sheet_edits.h"

namespace kv {

/// What is looked for, and where.
struct ReplaceRequest {
  SearchWords words;
  std::string replacement;
  std::vector<std::size_t> columns;    ///< indexes of columns for which isSearchable() holds
  std::vector<std::int64_t> articles;  ///< those looked through, in the order in which hits are shown
};

/// The cells that hold what is looked for. Malformed, with the reason, for what is no regular expression; other
/// failures as the store's. `decimalSeparator`: of the fields.
Result<std::vector<CellChange>> findHits(Session& session, std::span<const SheetColumn> columns,
                                         const ReplaceRequest& request, char decimalSeparator);
}  // namespace kv
