#pragma once
// kvftp.mdb, table `file`: what was sent where, and how old it was. It replaces any listing of the server: the server
// is never asked what it holds.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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
  std::string digest{};   ///< `impronta`, SHA-256 of its bytes; empty when it isn't known
  std::int64_t size = 0;  ///< `peso`, bytes; never compared
};

/// Whether the server has a file's bytes already, by their digest. Never while the row has no time, which means doubt:
/// half of the file may be there.
bool hasSameContent(const SentFile& row, const std::string& digest);

/// The open table. Rows are kept in groups, each flushed once: a kill loses the last few, whose files are then sent
/// once more. Its key `nome` is host + "/" + remote folder + "/" + file name; case counts in it, as it does on
/// most servers.
class FileTable {
 public:
  /// The most rows of a group.
  static constexpr int groupSize = 32;
  /// Opens kvftp.mdb of a shop; one that is missing is created. withDigests: a table without the column `impronta`,
  /// which is a later addition, gets it. Failures as Database::open.
  static Result<FileTable> open(const std::string& shopFolder, bool withDigests = false);
  FileTable(FileTable&&) = default;
  FileTable& operator=(FileTable&&) = delete;
  /// Keeps the rows of the group that is open.
  ~FileTable();

  /// The row of a key; nothing when the file was never sent there.
  Result<std::optional<SentFile>> find(const std::string& key);
  /// Adds the row of a new file. digest: empty when it wasn't computed.
  Result<> add(const std::string& key, const FileStamp& stamp, const std::string& digest = {});
  /// Writes time, size and digest into the row of a known file.
  Result<> edit(const std::string& key, const FileStamp& stamp, const std::string& digest = {});
  /// Notes that what is on the server may soon be half a file, so that these will be sent whatever their time. Rows
  /// that aren't there are no failure. Kept at once.
  Result<> doubt(std::span<const std::string> keys);
  /// PulisciDB (clean the table): deletes the rows of all files below a folder of a host. Characters that a pattern
  /// would take for more mean themselves.
  Result<> PulisciDB(const std::string& host, const std::string& folder);
  /// The names of the files that were sent to a folder of a host, those of folders below it not included; by name.
  Result<std::vector<std::string>> names(const std::string& host, const std::string& folder);
  /// Deletes the row of a file that is no longer on the server. No failure when there is none.
  Result<> remove(const std::string& key);

 private:
  /// Takes over the open file of the table.
  explicit FileTable(Database database) : database_(std::move(database)) {}
  Result<> begin();  // a group, unless one is open
  Result<> keep();   // ends the group that is open
  Result<> write(const std::string& sql, const std::string& key, const FileStamp& stamp, const std::string& digest);
  Database database_;
  bool hasDigests_ = false;
  int group_ = 0;  // rows of the group that is open; 0: there is none
};

}  // namespace kv
