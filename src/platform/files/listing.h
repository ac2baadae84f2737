#pragma once
// Listings for whoever deletes, overwrites, leaves out or claims something by them: other than for listFiles and
// listFolders, a folder that is there and can't be read is a failure, not an empty one. A missing one has no entries.

#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// The names that listFiles gives.
Result<std::vector<std::string>> readFileNames(const std::string& folder, std::string_view pattern);
/// The names that listFolders gives.
Result<std::vector<std::string>> readFolderNames(const std::string& folder);

}  // namespace kv
