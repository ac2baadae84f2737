#pragma once
// serverpath.net of the application folder: one line that names the current shop folder. The line is Windows-1252
// with CR LF; a name that this code page cannot hold is written as UTF-8 behind a byte order mark instead, so that
// every folder of the machine can be a shop. A full path never begins with the letters of that mark.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// The folder the file names, trimmed, without trailing separator; empty when there is no such file, or its first
/// line is blank.
std::string readServerPath(const std::string& applicationFolder);

/// Makes the folder the only line of the file. Malformed when its name holds a line end. Failures: as writeBytes.
Result<> writeServerPath(const std::string& applicationFolder, const std::string& shopFolder);

/// Deletes the file: the application folder is the shop. One that is not there is no failure.
Result<> clearServerPath(const std::string& applicationFolder);

/// What stands in the file now, to be put back when a change of shop fails half-way.
class ServerPathBackup {
 public:
  explicit ServerPathBackup(const std::string& applicationFolder);
  Result<> restore() const;

 private:
  std::string path_;
  bool existed_ = false;
  std::string bytes_;
};

}  // namespace kv
