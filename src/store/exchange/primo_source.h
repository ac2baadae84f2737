#pragma once
// The catalogue that an import of the earlier product line reads. Its shops kept it as a Jet database; a shop that has
// been opened here before keeps it as this program does.

#include <optional>
#include <string>

#include "platform/files/working_folder.h"
#include "platform/ports/result.h"

namespace kv {

class PrimoSource {
 public:
  /// Makes a catalogue ready to be attached: a Jet database is copied, table by table, into a file of the moment.
  /// Failures: as JetFile::open, WorkingFolder::make and Database::createTable.
  static Result<PrimoSource> open(const std::string& path);
  /// The path of the file to read, for as long as this object.
  const std::string& path() const { return path_; }

 private:
  PrimoSource(std::string path, std::optional<WorkingFolder> folder)
      : path_(std::move(path)), folder_(std::move(folder)) {}
  std::string path_;
  std::optional<WorkingFolder> folder_;
};

}  // namespace kv
