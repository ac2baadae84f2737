#pragma once
// The relational store: one SQLite 3 file per database, opened shared or exclusive, with prepared statements,
// forward cursors, record sets that find and edit, and a schema view in the order of creation.
//
// Column types are declared by name and recognised by it (see columnTypeName): TEXT(n), LONGTEXT, BOOLEAN, TINYINT,
// SMALLINT, INTEGER, MONEY_INTEGER (a count of ten-thousandths), FLOAT (rounded to single precision), DOUBLE,
// DATETIME (text "YYYY-MM-DD HH:MM:SS"), BLOB(n), LONGBLOB. An automatic key is "INTEGER PRIMARY KEY AUTOINCREMENT".
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
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/money.h"
#include "platform/result.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kv {

/// Column types with the codes that the SQL export's type map goes by.
enum class ColumnType {
  Bool = 1,
  Byte = 2,
  Int = 3,
  Long = 4,
  Money = 5,
  Single = 6,
  Double = 7,
  DateTime = 8,
  Binary = 9,
  Text = 10,
  LongBinary = 11,
  Memo = 12
};

constexpr unsigned autoIncrement = 16;        ///< column attribute: the automatic key
constexpr unsigned hiddenTable = 1;           ///< table attribute
constexpr unsigned systemTable = 0x80000002;  ///< table attribute mask

struct ColumnInfo {
  std::string name;
  ColumnType type = ColumnType::Text;
  int size = 0;  ///< characters of Text, bytes of Binary; 0 otherwise
  unsigned attributes = 0;
  bool required = false;     ///< NOT NULL
  std::string defaultValue;  ///< as declared; empty when none
};
struct IndexInfo {
  std::string name;
  bool primary = false;
  bool unique = false;
  std::vector<std::string> columns;
};
struct TableInfo {
  std::string name;
  unsigned attributes = 0;
  std::vector<ColumnInfo> columns;
  std::vector<IndexInfo> indexes;

  /// Position of a column, case ignored; -1 when there is none.
  int columnIndex(std::string_view column) const;
};

/// The declared type of a column: "TEXT(50)", "LONGTEXT", "MONEY_INTEGER" ...
std::string columnTypeName(ColumnType type, int size);

struct Null {
  bool operator==(const Null&) const = default;
};
using Bytes = std::vector<std::uint8_t>;
/// One field. Whole-number columns give int64, Single and Double give double, DateTime gives its text.
using Value = std::variant<Null, bool, std::int64_t, double, Money, std::string, Bytes>;

inline bool isNull(const Value& value) { return std::holds_alternative<Null>(value); }
/// Null reads as empty; numbers in the trimmed plain form, flags as "1"/"0".
std::string asText(const Value& value);
/// Null and text that is no number read as 0.
double asNumber(const Value& value);
std::int64_t asInteger(const Value& value);
Money asMoney(const Value& value);
bool asFlag(const Value& value);

/// How the engine holds a field, whatever its column is declared to be.
enum class StoredAs { Integer = 1, Real = 2, Text = 3, Blob = 4, Null = 5 };

/// A prepared statement: bind from 1, then step rows or execute. A text that was bound must live until the
/// execution is over.
class Statement {
 public:
  Statement() = default;
  Statement(Statement&& other) noexcept;
  Statement& operator=(Statement&& other) noexcept;
  ~Statement();

  void bindNull(int place);
  void bind(int place, bool value);
  void bind(int place, std::int64_t value);
  void bind(int place, double value);
  void bind(int place, Money value);
  void bind(int place, std::string_view text);
  void bind(int place, int value) { bind(place, std::int64_t{value}); }
  void bind(int place, const char* text) { bind(place, std::string_view(text)); }
  void bind(int place, const std::string& text) { bind(place, std::string_view(text)); }
  void bind(int place, const Value& value);

  /// Runs a statement that returns no rows, and makes it ready for the next run; bindings stay.
  Result<> execute();
  /// Moves to the next row: false at the end, after which the statement is ready to run again.
  Result<bool> step();
  /// Gives up the rows that are left.
  void reset();

  // The current row, columns from 0. A null reads as empty, 0 or false. Texts live until the next step().
  int columnCount() const;
  std::string_view columnName(int column) const;
  bool isNull(int column) const;
  std::string_view text(int column) const;
  std::int64_t integer(int column) const;
  double number(int column) const;
  float single(int column) const { return static_cast<float>(number(column)); }
  Money money(int column) const { return Money::ofTenThousandths(integer(column)); }
  bool flag(int column) const { return integer(column) != 0; }
  StoredAs storedAs(int column) const;
  /// The bytes of a text or a blob as they stand; like a text they live until the next step().
  std::string_view bytes(int column) const;
  /// By the declared type of the source column; an expression gives what the engine made of it.
  Value value(int column) const;

 private:
  friend class Database;
  friend class Recordset;
  Statement(sqlite3_stmt* handle, std::string where);
  sqlite3_stmt* handle_ = nullptr;
  std::string where_;
};

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

/// Rows of a table or query in a fixed order, with a cursor. Rows are those found at opening; a field is read from
/// the table when the cursor comes to its row, and a row added stands at the end. Before the first row and behind the
/// last the cursor is on no row: fields read as Null there.
class Recordset {
 public:
  Recordset(Recordset&&) noexcept;
  Recordset& operator=(Recordset&&) noexcept;
  ~Recordset();

  std::size_t size() const;
  bool bof() const;
  bool eof() const;
  /// Place of the current row from 0; size() when on none.
  std::size_t position() const;
  void moveFirst();
  void moveLast();
  void moveNext();
  void movePrevious();
  void moveTo(std::size_t position);

  /// Moves to the first, last, next or previous row for which an SQL condition holds ("genitore = 'cat007'");
  /// false, and the cursor stays, when there is none.
  Result<bool> findFirst(std::string_view condition);
  Result<bool> findLast(std::string_view condition);
  Result<bool> findNext(std::string_view condition);
  Result<bool> findPrevious(std::string_view condition);
  /// Moves to the row whose column equals a value; false when there is none.
  Result<bool> seek(std::string_view column, const Value& value);

  const std::vector<ColumnInfo>& columns() const;
  int columnIndex(std::string_view name) const;
  /// The field as it stands in the row, or in the edit that has begun. Null for an unknown column or on no row.
  Value get(std::string_view column) const;

  /// Starts an edit of the current row, or of a new row whose automatic key can be read at once.
  Result<> edit();
  Result<> addNew();
  /// Sets a field of the edit. TextInNumber when a text that is no number goes into a numeric column; an empty
  /// text there is such a text too. Missing when there is no such column. Text longer than the column is refused
  /// as Malformed.
  Result<> set(std::string_view column, const Value& value);
  /// Writes the edit; a row added becomes the current one.
  Result<> update();
  void cancelUpdate();
  /// Deletes the current row; the cursor comes to stand on the next one, behind the last on none.
  Result<> remove();
  /// Runs the query again; the cursor goes to the first row.
  Result<> requery();

 private:
  friend class Database;
  struct State;
  explicit Recordset(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace kv
