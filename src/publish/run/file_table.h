#pragma once
// kvftp.mdb, table `file`: what was sent where, and how old it was. It replaces any listing of the server: the server
// is never asked what it holds.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "platform/ports/result.h"

namespace kv {

/// The time of a file as the table holds it: "2026-11-22 04:36:18.123456789", UTC, so that the order of the texts is
/// that of the times. changedAt: nanoseconds since 1970-01-01 00:00 UTC.
std::string stampText(std::int64_t changedAt);

/// What the table says of one file on one server.
struct SentFile {
  std::string stamp;      ///< `data`, as stampText writes it; empty when it isn't known
  std::int64_t size = 0;  ///< `peso`, bytes; never compared
};

/// The open table. Its key `nome` is host + "/" + remote folder + "/" + file name; case counts in it, as it does on
/// most servers.
class FileTable {
 public:
  /// Opens kvftp.mdb of a shop; one that is missing is created. Failures as Database::open.
  static Result<FileTable> open(const std::string& shopFolder);

  /// The row of a key; nothing when the file was never sent there.
  Result<std::optional<SentFile>> find(const std::string& key);
  /// Adds the row of a new file.
  Result<> add(const std::string& key, const FileStamp& stamp);
  /// Writes time and size into the row of a known file.
  Result<> edit(const std::string& key, const FileStamp& stamp);
  /// Notes that what is on the server may be half a file, so that it will be sent whatever its time. A row that isn't
  /// there is no failure.
  Result<> doubt(const std::string& key);
  /// PulisciDB (clean the table): deletes the rows of all files below a folder of a host. Characters that a pattern
  /// would take for more mean themselves.
  Result<> PulisciDB(const std::string& host, const std::string& folder);

 private:
  explicit FileTable(Database database) : database_(std::move(database)) {}
  Result<> write(const char* sql, const std::string& key, const FileStamp& stamp);
  Database database_;
};

}  // namespace kv
