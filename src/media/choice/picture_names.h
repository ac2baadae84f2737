#pragma once
// Names of the pictures in the shop's image folder. A picture that comes in gets a name of its own, so that none is
// ever replaced by another of the same name.

#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// A name in `folder` for a picture called `source`, of which a path is ignored: the stem in lower case with "_" for
/// each character but a-z, 0-9 and "_", less a tail of this system, then "_" and four hexadecimal digits, one above the
/// highest in use, and the extension in lower case; with `forceJpg` it is ".jpg". Above "ffff" the digits are five, and
/// count on to a name that is free.
std::string uniquePictureName(const std::string& folder, std::string_view source, bool forceJpg);

/// Whether catalogue and pages can name a file so: Windows-1252 without line ends, other control characters and quotes.
bool canBeNamed(std::string_view name);

/// Names of the files of a folder that can be chosen: GIF, JPEG, PNG and WebP by their extensions; sorted.
std::vector<std::string> pictureFiles(const std::string& folder);

}  // namespace kv
