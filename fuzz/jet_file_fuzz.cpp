// A Jet database of any bytes, read as the accounting import reads it: rows of the right form or a failure, whatever
// the library does in its own process. A run makes processes, so it takes some milliseconds.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/database/jet_file.h"
#include "platform/files/files.h"

namespace {

void requireJet(bool holds) {
  if (!holds) std::abort();
}

/// The file that each input becomes, in memory where the system has a folder for that.
const std::string& fuzzedJetPath() {
  static const std::string path =
      (kv::folderExists("/dev/shm") ? "/dev/shm" : "/tmp") + ("/korvane-jet-" + std::to_string(::getpid()) + ".mdb");
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  constexpr std::string_view mark("\0\1\0\0Standard Jet DB", kv::jetStartSize);
  bytes.replace(0, mark.size(), mark);
  requireJet(kv::writeBytes(fuzzedJetPath(), bytes).has_value());
  const auto file = kv::JetFile::open(fuzzedJetPath());
  if (file) {
    for (const kv::JetTableInfo& table : file->tables()) {
      const auto rows = file->rows(table.name, table.columns);
      if (!rows) continue;
      for (const auto& row : *rows) requireJet(row.size() == table.columns.size());
    }
  }
  kv::ignore(kv::deleteFile(fuzzedJetPath()), "the next input replaces it");
  return 0;
}
