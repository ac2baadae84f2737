#pragma once
// Files packed into one .zip.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

/// An entry of an archive.
struct ZipEntry {
  std::string name;      ///< its path in the archive, "/" between folders; one that ends in "/" is a folder
  std::string source{};  ///< path of the file; empty for a folder, and where the content is given
  std::optional<std::string> content;  ///< what the entry holds instead of a file
};

/// Packs entries, in their order, into a new file `path`, not compressed: the weight of a shop is in its pictures,
/// which are compressed already. Names are UTF-8, or the bytes they are when they are no text; times are those of the
/// files. goOn: asked now and then with how far it has come, 0 to 1; false ends it. The file appears whole or not at
/// all, even after a kill; an older one is replaced. Cancelled when goOn said so. Missing, Denied, Full and so on as
/// the system says; Malformed for what it doesn't tell.
Result<> writeZip(const std::string& path, const std::vector<ZipEntry>& entries,
                  const std::function<bool(double)>& goOn);

}  // namespace kv
