// Opening a file: who may write it, which lock is taken, how the engine journals, and whether it is a whole database.
//
// The file is examined by its name only, never opened beside the engine: POSIX drops all locks of a process on a
// file when that process closes any descriptor of it.

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/database/engine.h"

namespace kv::engine {
namespace {

std::string folderOfFile(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

Result<> checkOneWritable(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return fail(ErrorKind::Missing, path, std::strerror(errno), errno);
  // Root passes every permission check, but a shop copied from a read-only medium must be noticed for root too.
  if ((status.st_mode & S_IWUSR) == 0) return fail(ErrorKind::ReadOnly, path, std::strerror(EACCES), EACCES);
  if (access(path.c_str(), W_OK) != 0) return fail(ErrorKind::ReadOnly, path, std::strerror(errno), errno);
  return {};
}

/// Whether there is a file to open. An empty one is a damaged database, because a new one has at least one page.
Result<> checkFile(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    const bool missing = errno == ENOENT || errno == ENOTDIR;
    return fail(missing ? ErrorKind::Missing : ErrorKind::Other, path, std::strerror(errno), errno);
  }
  if (!S_ISREG(status.st_mode) || status.st_size == 0) {
    return fail(ErrorKind::Corrupt, path, sqlite3_errstr(SQLITE_NOTADB), SQLITE_NOTADB);
  }
  if (access(path.c_str(), R_OK) != 0) return fail(ErrorKind::Other, path, std::strerror(errno), errno);
  return {};
}

Result<Connection> connect(const std::string& path, int flags) {
  sqlite3* raw = nullptr;
  // "./" keeps a relative name such as "file:x" from being read as an address.
  const std::string name = path.starts_with('/') || path == ":memory:" ? path : "./" + path;
  int code = sqlite3_open_v2(name.c_str(), &raw, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  Connection connection(raw);
  if (code == SQLITE_OK) code = addFunctions(raw);
  if (code != SQLITE_OK) return fail(errorOf(raw, code, path));
  // A shop may come from anybody: its schema may not call functions that could do harm.
  sqlite3_db_config(raw, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(raw, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_busy_timeout(raw, 0);
  return connection;
}

const char* setUpOf(OpenMode mode) {
  switch (mode) {
    case OpenMode::Exclusive:
      // Leaving another journal mode can give the lock up, so the lock is taken before and after it.
      return "PRAGMA main.locking_mode=EXCLUSIVE; PRAGMA synchronous=FULL; PRAGMA cache_size=-2000;"
             "BEGIN EXCLUSIVE; COMMIT; PRAGMA main.journal_mode=TRUNCATE; BEGIN EXCLUSIVE; COMMIT";
    case OpenMode::Scratch:
      // The journal in memory keeps rollback possible. It holds the old content of changed pages, which in a new file
      // is next to nothing.
      return "PRAGMA main.locking_mode=EXCLUSIVE; PRAGMA main.synchronous=OFF; PRAGMA cache_size=-2000;"
             "PRAGMA secure_delete=OFF; BEGIN EXCLUSIVE; COMMIT; PRAGMA main.journal_mode=MEMORY;"
             "BEGIN EXCLUSIVE; COMMIT";
    case OpenMode::Shared:
    case OpenMode::ReadOnly:
      break;
  }
  return "PRAGMA synchronous=FULL; PRAGMA cache_size=-8000";
}

Result<std::int64_t> pragmaNumber(sqlite3* handle, const char* sql, const std::string& path) {
  sqlite3_stmt* statement = nullptr;
  int code = prepare(handle, sql, 0, &statement);
  if (code == SQLITE_OK) code = step(statement);
  const std::int64_t number = code == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : 0;
  sqlite3_finalize(statement);
  if (code != SQLITE_ROW) return fail(errorOf(handle, code, path));
  return number;
}

/// Reads the header and the schema, which detects garbage, and compares the size with the number of pages, which
/// detects a file that was cut off. Other pages are not read: that would cost seconds in a large shop.
Result<> verify(sqlite3* handle, const std::string& path) {
  const int code = run(handle, "SELECT count(*) FROM sqlite_schema; PRAGMA schema_version");
  if (code != SQLITE_OK) return fail(errorOf(handle, code, path));
  const auto pages = pragmaNumber(handle, "PRAGMA page_count", path);
  if (!pages) return fail(pages.error());
  const auto size = pragmaNumber(handle, "PRAGMA page_size", path);
  if (!size) return fail(size.error());
  const std::int64_t needed = *pages * *size;
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || status.st_size < needed) {
    return fail(ErrorKind::Corrupt, path, sqlite3_errstr(SQLITE_CORRUPT), SQLITE_CORRUPT);
  }
  return {};
}

Result<Connection> openOnce(const std::string& path, OpenMode mode) {
  auto connection = connect(path, mode == OpenMode::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
  if (!connection) return connection;
  sqlite3* handle = connection->get();
  const int code = run(handle, setUpOf(mode));
  if (code != SQLITE_OK) return fail(errorOf(handle, code, path));
  if (auto whole = verify(handle, path); !whole) return fail(whole.error());
  return connection;
}

}  // namespace

int run(sqlite3* handle, std::string_view sql) {
  const char* at = sql.data();
  const char* const end = at + sql.size();
  while (at < end) {
    sqlite3_stmt* statement = nullptr;
    int code = prepare(handle, {at, static_cast<std::size_t>(end - at)}, 0, &statement, &at);
    if (code != SQLITE_OK) return code;
    if (statement == nullptr) continue;
    while ((code = step(statement)) == SQLITE_ROW) {
    }
    sqlite3_finalize(statement);
    if (code != SQLITE_DONE) return code;
  }
  return SQLITE_OK;
}

Result<> checkWritable(const std::string& path) {
  if (auto folder = checkOneWritable(folderOfFile(path)); !folder) return folder;
  return checkOneWritable(path);
}

Result<Connection> openMemory() { return connect(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_MEMORY); }

Result<Connection> openFile(const std::string& path, OpenMode mode) {
  if (auto found = checkFile(path); !found) return fail(found.error());
  const Result<> writable = checkWritable(path);
  if (mode != OpenMode::ReadOnly) {
    if (!writable) return fail(writable.error());
    return openOnce(path, mode);
  }
  auto connection = openOnce(path, mode);
  if (connection || connection.error().kind != ErrorKind::ReadOnly || !writable) return connection;
  // A writer died in the middle of a change: undoing it needs a connection that may write.
  if (auto recovered = openOnce(path, OpenMode::Shared); !recovered) return recovered;
  return openOnce(path, mode);
}

}  // namespace kv::engine
