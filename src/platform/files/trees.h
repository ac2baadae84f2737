#pragma once
// Whole trees of folders: a copy that can leave something out and be cancelled, and the removal of one.

#include <functional>
#include <string>
#include <vector>

#include "platform/files/files.h"

namespace kv {

/// A tree to copy, and what of it stays.
struct TreeCopy {
  std::string from, to;
  std::string exceptFolder{};    ///< path of a folder that is left out wherever the tree meets it; empty: none
  std::string exceptFile{};      ///< path below `from`, case ignored, of a file that is left out; empty: none
  std::function<bool()> goOn{};  ///< asked before each file; false ends the copy
};

/// Copies a tree as copyTree(from, to) does. Cancelled when `goOn` said so; files copied by then stay.
Result<> copyTree(const TreeCopy& copy);

/// An entry of a tree, by its path below the root.
struct TreeEntry {
  std::string path;
  bool isFolder = false;
};
/// The entries of a tree as copyTree takes them: sorted, each folder before what it holds, links followed, unfinished
/// files left out; and without the folder at the path `exceptFolder`, wherever the tree meets it.
Result<std::vector<TreeEntry>> listTree(const std::string& from, const std::string& exceptFolder = {});

/// Whether a folder has no entry at all, hidden ones included. Missing when it isn't there.
Result<bool> isEmptyFolder(const std::string& path);

/// Deletes everything below a folder, which stays; of a link, the link. Stops at the first failure.
Result<> removeBelow(const std::string& path);

}  // namespace kv
