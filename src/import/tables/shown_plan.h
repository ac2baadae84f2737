#pragma once
// A plan of an import as its preview shows it: what each row is called, and its values before and after.

#include <string>
#include <vector>

#include "import/tables/table_plan.h"

namespace kv {

/// A value as the preview shows it.
struct ShownChange {
  std::string column;         ///< its Italian header
  std::string before, after;  ///< as the merchant writes them, so that a number shows how it was read;
                              ///< at most 2,000 characters
};
/// The values of a row that would be written; of a new row all that the sheet gives, `before` empty.
Result<std::vector<ShownChange>> shownChanges(Database& catalogue, const TablePlan& plan, const ReadSheet& sheet,
                                              const PlannedRow& row);
/// How the preview calls a row: its code and title, or the first of its texts.
std::string rowLabel(const TablePlan& plan, const ReadSheet& sheet, const PlannedRow& row);
/// How the preview calls an article that goes "fuori catalogo": its code and title in the catalogue.
Result<std::string> unlistedLabel(Database& catalogue, const UnlistedArticle& article);

}  // namespace kv
