#pragma once
// serverpath.net of the application folder: one line that names the current shop folder. The line is Windows-1252
// with CR LF; a name that this code page cannot hold is written as UTF-8 after a byte order mark instead, so that
// every folder of the machine can be a shop. A full path never begins with the characters of that mark.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// The folder the file names, trimmed, without trailing separator; empty when there is no such file, or its first
/// line is empty.
std::string readServerPath(const std::string& applicationFolder);

/// Makes the folder the only line of the file. Malformed when its name holds a line end. Failures: as writeBytes.
Result<> writeServerPath(const std::string& applicationFolder, const std::string& shopFolder);

/// Deletes the file: the application folder is the shop. One that is not there is no failure.
Result<> clearServerPath(const std::string& applicationFolder);

/// The file as it is now, to be restored when a change of shop fails halfway.
class ServerPathBackup {
 public:
  /// Reads the file; one that is missing is remembered as missing.
  explicit ServerPathBackup(const std::string& applicationFolder);
  /// Writes the old bytes again, or deletes the file when there was none. Failures: as writeBytes.
  Result<> restore() const;

 private:
  std::string path_;
  bool existed_ = false;
  std::string bytes_;
};

}  // namespace kv
