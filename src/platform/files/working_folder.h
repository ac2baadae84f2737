#pragma once
// A folder for files of the moment, in the system's folder for such files.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// A new folder that nobody but its owner may enter. It goes with this object, with everything below it.
class WorkingFolder {
 public:
  /// Makes one. ReadOnly, Full or Other when it can't be made.
  static Result<WorkingFolder> make();
  WorkingFolder(WorkingFolder&& other) noexcept : path_(std::move(other.path_)) { other.path_.clear(); }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  WorkingFolder& operator=(WorkingFolder&&) = delete;
  ~WorkingFolder();

  /// Full path without a separator at its end.
  const std::string& path() const { return path_; }

 private:
  explicit WorkingFolder(std::string path) : path_(std::move(path)) {}
  std::string path_;
};

}  // namespace kv
