#pragma once
// What must hold in every catalogue that is shipped, as a list of complaints. It reads the finished file and
// takes nothing from the way it was made.

#include <string>
#include <vector>

#include "platform/database/database.h"
#include "platform/ports/result.h"

namespace kv {

/// Checks one row tables, the department tree, variants and their defaults, the preselected country and method,
/// pictures (in the folder `pictures`) with their sizes, and that there are titles and descriptions in each language of
/// the shop. Empty when all is well; each complaint is one line.
Result<std::vector<std::string>> complaintsAbout(Database& catalogue, const std::string& pictures);

}  // namespace kv
