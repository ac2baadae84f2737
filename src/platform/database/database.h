#pragma once
// The relational store: one SQLite 3 file per database, opened shared or exclusive, with prepared statements,
// forward cursors, record sets that find and edit, and a schema view in the order of creation.
//
// Text columns carry COLLATE NOCASE, which on these connections ignores case beyond ASCII too.
//
// Every acknowledged write has been handed to the system: it survives a kill of the process at any moment. A handle
// opened exclusive keeps the file to itself until it closes; the lock is the kernel's and goes with the process. While
// a file is open here its bytes must not be read by other means in the same process (a copy, say): closing any
// descriptor of a file drops every lock the process has on it (POSIX, fcntl).
//
// Any SQLite program can open these files. An index over text beyond ASCII is ordered by this comparison, so a program
// with the engine's own NOCASE has to REINDEX before it changes such text, and this one after it.

#include <cstdint>
#include <functional>
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
class WrittenColumns;

/// How a file is opened; see Database::open.
enum class OpenMode { Shared, Exclusive, ReadOnly, Scratch };

/// An open file of tables, or none. Not shared between threads.
class Database {
 public:
  Database() = default;
  Database(Database&&) noexcept;
  Database& operator=(Database&&) noexcept;
  ~Database();

  /// Opens an existing file. Exclusive takes the lock at once and keeps it. Scratch is for a working file that
  /// the next run creates again: exclusive, without a journal file, nothing flushed until it closes.
  /// InUse when another holds it, ReadOnly when the file or its folder may not be written (also when the owner's
  /// write permission is missing and the user is root), Missing, Corrupt when it is no database.
  static Result<Database> open(const std::string& path, OpenMode mode);
  /// Creates an empty file and opens it shared. Exists when there is a file of this name already.
  static Result<Database> create(const std::string& path);
  /// Writes a copy of `from` without gaps to the new file `to`. Failures as open, Full.
  static Result<> compact(const std::string& from, const std::string& to);
  /// The same of this database, which stays open and keeps its lock.
  Result<> compactTo(const std::string& to);
  /// Puts the journal away for good, so that the file can be renamed while it is held: another program that then opens
  /// a new file of the old name has a journal of its own. Nothing may be written through this handle afterwards.
  Result<> prepareRename();

  /// Whether there is an open file.
  bool isOpen() const { return handle_ != nullptr; }
  /// Closes the file and gives its lock up. Statements and record sets of it can no longer be used.
  void close();
  /// The path that the file was opened with.
  const std::string& path() const { return path_; }

  /// Runs one or more statements without parameters; rows they return are ignored. Stops at the first failure.
  Result<> execute(std::string_view sql);
  /// Has `goOn` asked every few milliseconds while a statement of this database runs; false ends the statement as
  /// Cancelled. It must not use the database. An empty one ends the asking.
  void askWhileRunning(std::function<bool()> goOn);
  /// The number of rows changed by the last statement that changes rows.
  std::int64_t changes() const;
  /// Prepares one statement, whose parameters are "?1", "?2" and so on. It is used only while the
  /// database is open.
  Result<Statement> prepare(std::string_view sql);
  /// The first field of the first row; Null when there is no row.
  Result<Value> scalar(std::string_view sql);

  /// Begins a transaction. Inside another one it is a part of that: its commit is undone when the outer one is rolled
  /// back, and a rollback inside undoes the inner one alone. InUse when another connection is writing.
  Result<> begin();
  /// Ends the innermost transaction and keeps its changes. A commit that fails has rolled back.
  Result<> commit();
  /// Ends the innermost transaction and undoes its changes.
  void rollback();

  /// All tables in the order of creation, SQLite's own left out.
  Result<std::vector<TableInfo>> tables();
  /// One table, its name found without regard to case. Missing when there is none.
  Result<TableInfo> table(std::string_view name);
  /// Creates a table with its indexes; names as given, text columns ignoring case.
  Result<> createTable(const TableInfo& table);

  /// Makes the tables of another file available to statements under `name`, as in
  /// "INSERT INTO name.opcodici SELECT ...". Missing when there is no such file.
  Result<> attach(const std::string& path, std::string_view name);
  /// Closes a file that was attached under `name`.
  Result<> detach(std::string_view name);
  /// Copies a table whole, columns, indexes and rows, under a new name. Exists when the name is taken.
  Result<> copyTable(std::string_view from, std::string_view to);

  /// Opens a record set over a table name or a SELECT. It can be edited when the rows come from one table.
  Result<Recordset> openRecordset(std::string_view source);

  /// Whether prepared statements are kept for the next time, as they are at first. False throws away what is kept.
  void keepStatements(bool keeps);

 private:
  friend class ChangeRecorder;
  friend class WrittenColumns;
  sqlite3* handle_ = nullptr;
  std::string path_;
  int depth_ = 0;                            // of transactions
  const WrittenColumns* written_ = nullptr;  // the latest promise about statements, where there is one
};

/// For its lifetime a database keeps no prepared statement for the next time. A run that needs each of them once would
/// hold a megabyte for nothing: a statement over the wide tables of a catalogue takes up to 150 KB.
class NoKeptStatements {
 public:
  explicit NoKeptStatements(Database& database) : database_(database) { database_.keepStatements(false); }
  NoKeptStatements(const NoKeptStatements&) = delete;
  NoKeptStatements& operator=(const NoKeptStatements&) = delete;
  ~NoKeptStatements() { database_.keepStatements(true); }

 private:
  Database& database_;
};

}  // namespace kv
