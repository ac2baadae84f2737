#pragma once
// What the picture dialog lists of a folder of the disk.

#include <optional>
#include <string>
#include <vector>

namespace kv {

/// A folder as it is listed.
struct PictureFolder {
  std::string path;
  std::vector<std::string> folders;  ///< its subfolders, ".." first unless it is the root; hidden ones left out
  std::vector<std::string> files;    ///< its pictures, by their extensions
};
/// Lists a folder; nothing when it can't be read, and then the dialog stays where it was.
std::optional<PictureFolder> openPictureFolder(const std::string& path);

/// The first of the folders that can be read; the root when none can.
PictureFolder firstPictureFolder(const std::vector<std::string>& paths);

}  // namespace kv
