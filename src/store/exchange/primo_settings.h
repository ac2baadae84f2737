#pragma once
// The settings that a shop of the earlier product line brings along, and those that stay.

#include <string>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// Copies the settings of the source attached as primoSchema; `columns` are those that both have. Connection, paths and
/// version stay, the template is emptied, the one discount of the source becomes the first threshold discount.
/// Failures: as execute.
Result<> takePrimoSettings(Database& catalogue, const std::vector<std::string>& columns);

/// Whether a column of `generale` keeps its present value; case is ignored.
bool staysInImport(const std::string& column);

/// Whether a column of `generale` is copied; case is ignored. The template and the discounts are set in another way.
bool isTakenOver(const std::string& column);

}  // namespace kv
