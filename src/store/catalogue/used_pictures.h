#pragma once
// The names of all pictures that the catalogue refers to.

#include <string>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// The pictures of the first row of `generale`, of all departments in every language, and of all articles, as stored;
/// names may come twice, empty ones don't. Variants, showcase, clipboard and templates name no pictures that count.
/// Failures: as prepare.
Result<std::vector<std::string>> usedPictures(Database& catalogue);

}  // namespace kv
