#pragma once
// The relational store: one SQLite 3 file per database, opened shared or exclusive, with prepared statements,
// forward cursors, record sets that find and edit, and a schema view in the order of creation.
//
// Text columns carry COLLATE NOCASE, which on these connections ignores the case of every letter, not ASCII alone.
//
// Every acknowledged write is on the disk's side of this process: it survives a kill at any moment. A handle opened
// exclusive keeps the file to itself until it closes; the lock is the kernel's and goes with the process. While a file
// is open here its bytes must not be read by other means in the same process (a copy, say): closing any descriptor of
// a file drops every lock the process has on it (POSIX, fcntl).
//
// Any SQLite program opens these files. An index over text beyond ASCII is ordered by this comparison, so a program
// with the engine's own NOCASE has to REINDEX before it changes such text, and this one after it.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/statement.h"
#include "platform/database/table_info.h"
#include "platform/database/value.h"
#include "platform/ports/result.h"

struct sqlite3;

namespace kv {

class Recordset;

enum class OpenMode { Shared, Exclusive, ReadOnly, Scratch };

class Database {
 public:
  Database() = default;
  Database(Database&&) noexcept;
  Database& operator=(Database&&) noexcept;
  ~Database();

  /// Opens an existing file. Exclusive takes the lock at once and keeps it. Scratch is for a working file that
  /// the next run makes anew: exclusive, without a journal, nothing flushed until it closes.
  /// InUse when another holds it, ReadOnly when the file or its folder may not be written (also when the owner's
  /// write permission is missing and the user is root), Missing, Corrupt when it is no database.
  static Result<Database> open(const std::string& path, OpenMode mode);
  /// Creates an empty file, replacing none. Exists when there is one.
  static Result<Database> create(const std::string& path);
  /// Writes a defragmented copy of `from` to the new file `to`. Failures as open, Full.
  static Result<> compact(const std::string& from, const std::string& to);
  /// The same of this database, which stays open and keeps its lock.
  Result<> compactTo(const std::string& to);
  /// Puts the journal away for good, so that the file can be renamed while it is held: another program that then opens
  /// a new file of the old name has a journal of its own. Nothing may be written through this handle afterwards.
  Result<> prepareRename();

  bool isOpen() const { return handle_ != nullptr; }
  void close();
  const std::string& path() const { return path_; }

  /// Runs one or more statements without parameters.
  Result<> execute(std::string_view sql);
  /// Rows changed by the last statement that changes rows.
  std::int64_t changes() const;
  Result<Statement> prepare(std::string_view sql);
  /// The first field of the first row; Null when there is no row.
  Result<Value> scalar(std::string_view sql);

  /// A transaction; begun twice, the inner one counts as part of the outer: its commit is undone with the outer one,
  /// and a rollback inside undoes the inner one alone. A commit that fails has rolled back. InUse at begin when
  /// another is writing.
  Result<> begin();
  Result<> commit();
  void rollback();

  /// All tables in the order of creation, SQLite's own left out.
  Result<std::vector<TableInfo>> tables();
  Result<TableInfo> table(std::string_view name);
  /// Creates a table with its indexes; names as given, text columns ignoring case.
  Result<> createTable(const TableInfo& table);

  /// Makes the tables of another file reachable under `name` for statements, as in
  /// "INSERT INTO name.opcodici SELECT ...". detach() ends it.
  Result<> attach(const std::string& path, std::string_view name);
  Result<> detach(std::string_view name);
  /// Copies a table whole, columns, indexes and rows, under a new name. Exists when the name is taken.
  Result<> copyTable(std::string_view from, std::string_view to);

  /// Opens a record set over a table name or a SELECT. It can be edited when the rows come from one table.
  Result<Recordset> openRecordset(std::string_view source);

 private:
  friend class ChangeRecorder;
  sqlite3* handle_ = nullptr;
  std::string path_;
  int depth_ = 0;
};

}  // namespace kv
