#pragma once
// The list of files that a build has produced, `kvftp.dat`: the publish run goes by it, and its presence tells that the
// shop has been built. It is gathered in memory and written when the run ends.

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// The text of the list as it grows.
class FileList {
 public:
  /// Enters one path: a line of "#" and the path. A path that is entered twice is listed twice.
  void add(std::string_view path);
  /// Enters the line that closes the list; without it the list is that of a run that ended early.
  void close();
  /// The number of paths entered.
  std::size_t size() const { return count_; }
  /// Replaces the file at `path` with what was entered so far: paths are the bytes that the file system knows them by,
  /// so that whatever can be built can be found again. Failures as writeBytes.
  Result<> write(const std::string& path) const;

 private:
  std::string text_;       // lines of "#" and a path, CR LF
  std::size_t count_ = 0;  // of paths
};

}  // namespace kv
