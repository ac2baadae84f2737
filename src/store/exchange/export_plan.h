#pragma once
// What an export consists of, before anything is written: for each path in it the file that it comes from. A folder
// and an archive are made of the same plan.

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/zip_file.h"
#include "platform/ports/result.h"

namespace kv {

/// Paths below the export's root, as they come. What is added later lies above what is there: a file whose path differs
/// from an older one in case alone replaces it under the older name.
class ExportPlan {
 public:
  /// exceptFolder: path of a folder that no tree is taken from, the target of the export.
  explicit ExportPlan(std::string exceptFolder) : exceptFolder_(std::move(exceptFolder)) {}

  /// Adds a folder with all below it as `below`, empty for the root. Nothing for a folder that isn't there. Failures as
  /// listTree.
  Result<> addTree(const std::string& from, const std::string& below);
  /// Adds a folder without what is in it.
  void addFolder(const std::string& path);
  /// Adds a file; nothing for one that isn't there.
  void addFile(const std::string& from, const std::string& path);
  /// Adds a file by its bytes.
  void addContent(std::string bytes, const std::string& path);
  /// The file or the bytes at a path, read; empty when the plan has none.
  std::string contentOf(const std::string& path) const;

  /// The names of the files of a folder that match a pattern, sorted without regard to case.
  std::vector<std::string> filesIn(const std::string& folder, std::string_view pattern) const;
  /// Leaves a file out again.
  void remove(const std::string& path);

  /// All of it, each folder before what it holds; folders end in "/".
  std::vector<ZipEntry> entries() const;
  /// Makes folders and files below `to`. goOn: asked before each file with how far it has come, 0 to 1; false:
  /// Cancelled. Failures as createFolder, copyFile, writeBytes; what was made by then stays.
  Result<> writeTo(const std::string& to, const std::function<bool(double)>& goOn) const;

 private:
  /// The path under which the plan has an entry that differs in case alone, else the path itself.
  std::string known(const std::string& path) const;
  void put(const std::string& path, ZipEntry entry);

  std::string exceptFolder_;
  std::map<std::string, ZipEntry> entries_;     ///< by path
  std::map<std::string, std::string> spelled_;  ///< folded path -> path, of what was there before the tree at hand
};

}  // namespace kv
