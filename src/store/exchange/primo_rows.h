#pragma once
// The rows of a shop of the earlier product line, version 200 to 299, taken over into the open catalogue. Columns go by
// their names: one that the catalogue lacks is left out, one that the source lacks stays null.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// The name under which the source is attached to the catalogue.
inline constexpr std::string_view primoSchema = "primo";

/// The tables that are taken over whole, in the order of the import.
std::vector<std::string_view> primoTables();

/// Whether a version is of the earlier product line: its hundreds are 2.
constexpr bool isPrimoVersion(int version) { return version / 100 == 2; }

/// The columns that the source's table and the catalogue's share, under the catalogue's names; and what the source has
/// besides them. Missing when one of them has no such table.
struct SharedColumns {
  std::vector<std::string> shared, leftOut;
  bool areAll = false;  ///< both tables have these columns alone, in the same order
};
Result<SharedColumns> sharedColumns(Database& catalogue, Database& source, std::string_view table);

/// Whether a column of `opzioni` is a text of one of the fifteen options that a variant had; case is ignored.
bool isOptionText(const std::string& column);
/// Whether the options of the row `m` of main.opzioni are those that an import makes of the row `s` of the source, as
/// an expression of SQL.
std::string sameOptions();

/// Replaces the rows of the catalogue by those of `source`, converts variants and settings and empties the clipboard,
/// in one transaction: after a failure the catalogue is as before. It marks the exchange of pictures as due (see
/// staged_pictures.h). Failures: InUse when another program has the
/// source, Missing when it lacks a table, others as execute.
Result<> takePrimoRows(Database& catalogue, const std::string& source);

/// Whether variant 1, which means no variant, is something else in the catalogue.
Result<bool> isFirstVariantTaken(Database& catalogue);

}  // namespace kv
