#pragma once
// Bringing a picture from anywhere on the machine into the shop's own image folder.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// A name for a copy of `source` in the image folder that no picture there has had: the stem in lower case, characters
/// other than a-z, 0-9 and "_" as "_", and "_" with four hexadecimal digits, one above the highest in use.
std::string uniquePictureName(const std::string& folder, const std::string& source);

/// Copies a picture into the image folder under such a name, which is the result; a file that is there already
/// keeps its own. Malformed when it is no GIF, JPEG or PNG; other failures as copyFile.
Result<std::string> importPicture(const std::string& folder, const std::string& source);

}  // namespace kv
