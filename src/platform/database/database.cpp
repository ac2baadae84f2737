// The database handle: opening, creating, closing, statements, transactions and attached files. The schema view and
// copies of tables are in files of their own.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/database/engine.h"
#include "platform/files/file_access.h"
#include "platform/text/text.h"

namespace kv {
namespace {

Result<> createEmptyFile(const std::string& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (file < 0) return systemFailure(errno, path);
  ::close(file);
  if (auto writable = engine::checkWritable(path); !writable) {
    unlink(path.c_str());
    return writable;
  }
  return {};
}

bool isEmptyStatement(std::string_view sql) { return sql.find_first_not_of(" \t\r\n;") == std::string_view::npos; }

std::string savepoint(int depth) { return "kv_" + std::to_string(depth); }

}  // namespace

Database::Database(Database&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)),
      path_(std::move(other.path_)),
      depth_(std::exchange(other.depth_, 0)) {}

Database& Database::operator=(Database&& other) noexcept {
  if (this == &other) return *this;
  close();
  handle_ = std::exchange(other.handle_, nullptr);
  path_ = std::move(other.path_);
  depth_ = std::exchange(other.depth_, 0);
  return *this;
}

Database::~Database() { close(); }

Result<Database> Database::open(const std::string& path, OpenMode mode) {
  auto connection = engine::openFile(path, mode);
  if (!connection) return fail(connection.error());
  Database database;
  database.handle_ = connection->release();
  database.path_ = path;
  return database;
}

Result<Database> Database::create(const std::string& path) {
  if (auto made = createEmptyFile(path); !made) return fail(made.error());
  sqlite3* handle = nullptr;
  int code = sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE, nullptr);
  // Articles are wide: pages of 8 KiB hold two or three of them, where the usual 4 KiB hold one and waste the rest.
  // Setting the number (the bytes of "Korv") makes the engine write the first page, and shows others whose file it is.
  if (code == SQLITE_OK) {
    code = engine::run(handle, "PRAGMA page_size=8192; PRAGMA auto_vacuum=NONE; PRAGMA application_id=1265594998");
  }
  if (code != SQLITE_OK) {
    Error error = engine::errorOf(handle, code, path);
    sqlite3_close_v2(handle);
    unlink(path.c_str());
    return fail(std::move(error));
  }
  sqlite3_close_v2(handle);
  return open(path, OpenMode::Shared);
}

Result<> Database::compact(const std::string& from, const std::string& to) {
  struct stat status {};
  if (stat(to.c_str(), &status) == 0) return fail(ErrorKind::Exists, to, std::strerror(EEXIST), EEXIST);
  auto source = open(from, OpenMode::ReadOnly);
  return source ? source->compactTo(to) : fail(source.error());
}

Result<> Database::compactTo(const std::string& to) {
  struct stat status {};
  if (stat(to.c_str(), &status) == 0) return fail(ErrorKind::Exists, to, std::strerror(EEXIST), EEXIST);
  const int code = engine::run(handle_, "VACUUM INTO " + engine::literal(to));
  if (code != SQLITE_OK) {
    Error error = engine::errorOf(handle_, code, to);
    unlink(to.c_str());
    return fail(std::move(error));
  }
  if (stat(path_.c_str(), &status) == 0) chmod(to.c_str(), status.st_mode & 07777);
  return {};
}

// Leaving a journal mode that keeps its file deletes the file; a journal in memory has none to delete at closing.
Result<> Database::prepareRename() { return execute("PRAGMA main.journal_mode=MEMORY"); }

void Database::close() {
  if (handle_ == nullptr) return;
  engine::askWhileRunning(handle_, {});
  // A statement that outlives the handle keeps the connection alive, so the lock and the journal file are given up
  // first.
  for (sqlite3_stmt* each = nullptr; (each = sqlite3_next_stmt(handle_, each)) != nullptr;) sqlite3_reset(each);
  if (sqlite3_get_autocommit(handle_) == 0) engine::run(handle_, "ROLLBACK");
  engine::run(handle_, "PRAGMA main.locking_mode=NORMAL; PRAGMA main.journal_mode=DELETE");
  engine::run(handle_, "SELECT 1 FROM main.sqlite_schema LIMIT 1");
  engine::closeConnection(handle_);
  handle_ = nullptr;
  path_.clear();
  depth_ = 0;
}

Result<> Database::execute(std::string_view sql) {
  const int code = engine::run(handle_, sql);
  if (code != SQLITE_OK) return fail(engine::errorOf(handle_, code, path_));
  return {};
}

void Database::askWhileRunning(std::function<bool()> goOn) { engine::askWhileRunning(handle_, std::move(goOn)); }

void Database::keepStatements(bool keeps) {
  engine::StatementCache* cache = handle_ == nullptr ? nullptr : engine::cacheOf(handle_);
  if (cache == nullptr) return;
  if (keeps) {
    cache->resume();
  } else {
    cache->pause();
  }
}

std::int64_t Database::changes() const { return sqlite3_changes64(handle_); }

Result<Statement> Database::prepare(std::string_view sql) {
  sqlite3_stmt* handle = nullptr;
  const char* tail = nullptr;
  const int code = engine::borrow(handle_, sql, &handle, &tail);
  if (code != SQLITE_OK) return fail(engine::errorOf(handle_, code, path_));
  Statement statement(handle, path_);
  if (handle == nullptr) return fail(ErrorKind::Malformed, path_, "no statement");
  if (!isEmptyStatement(sql.substr(static_cast<std::size_t>(tail - sql.data())))) {
    return fail(ErrorKind::Malformed, path_, "more than one statement");
  }
  return statement;
}

Result<Value> Database::scalar(std::string_view sql) {
  auto statement = prepare(sql);
  if (!statement) return fail(statement.error());
  auto row = statement->step();
  if (!row) return fail(row.error());
  if (!*row) return Value(Null{});
  return statement->value(0);
}

// An inner transaction is a savepoint of the outer one: its commit leaves its changes to the outer one, its
// rollback undoes its own alone. A failure such as a full disk makes the engine undo the whole; begin and commit then
// fail.

Result<> Database::begin() {
  std::string sql = "SAVEPOINT " + savepoint(depth_);
  if (depth_ == 0) sql = sqlite3_db_readonly(handle_, "main") == 1 ? "BEGIN" : "BEGIN IMMEDIATE";
  if (depth_ > 0 && sqlite3_get_autocommit(handle_) != 0) {
    return fail(ErrorKind::Other, path_, "the transaction was undone");
  }
  if (auto begun = execute(sql); !begun) return begun;
  ++depth_;
  return {};
}

Result<> Database::commit() {
  if (depth_ == 0) return fail(ErrorKind::Other, path_, "no transaction");
  if (sqlite3_get_autocommit(handle_) != 0) {
    --depth_;
    return fail(ErrorKind::Other, path_, "the transaction was undone");
  }
  auto done = execute(depth_ == 1 ? "COMMIT" : "RELEASE " + savepoint(depth_ - 1));
  if (done) {
    --depth_;
  } else {
    rollback();  // a commit that fails leaves nothing open
  }
  return done;
}

void Database::rollback() {
  if (depth_ == 0) return;
  --depth_;
  if (sqlite3_get_autocommit(handle_) != 0) return;
  const std::string name = savepoint(depth_);
  engine::run(handle_, depth_ == 0 ? "ROLLBACK" : "ROLLBACK TO " + name + "; RELEASE " + name);
  engine::noteUndone(handle_);
}

Result<> Database::attach(const std::string& path, std::string_view name) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return fail(ErrorKind::Missing, path, std::strerror(errno), errno);
  const std::string schema = engine::quoted(name);
  const std::string file = path.starts_with('/') ? path : "./" + path;
  int code = engine::run(handle_, "ATTACH " + engine::literal(file) + " AS " + schema);
  if (code != SQLITE_OK) return fail(engine::errorOf(handle_, code, path));
  code = engine::run(handle_, "SELECT count(*) FROM " + schema + ".sqlite_schema");
  if (code != SQLITE_OK) {
    Error error = engine::errorOf(handle_, code, path);
    engine::run(handle_, "DETACH " + schema);
    return fail(std::move(error));
  }
  return {};
}

Result<> Database::detach(std::string_view name) { return execute("DETACH " + engine::quoted(name)); }

}  // namespace kv
