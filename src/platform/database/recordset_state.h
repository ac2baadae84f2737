#pragma once
// The inside of a record set. Its rows are known by the numbers the engine gives to the rows of a table. A source that
// is not one table's rows (a join, a sum) is copied into a table in memory, and from there on it is read as a table
// that cannot be changed.

#include <map>
#include <optional>
#include <unordered_map>

#include "platform/database/engine.h"
#include "platform/database/recordset.h"
#include "platform/database/recordset_shape.h"
#include "platform/database/sql_reader.h"

namespace kv {

/// All that a record set holds, so that its header needs nothing of the engine.
struct Recordset::State {
  /// Whether an edit has begun, and of what: the current row or a new one.
  enum class Draft { None, Edit, Add };

  // What the rows come from.
  sqlite3* handle = nullptr;  ///< of the database the source was given to
  engine::Connection memory;  ///< holds the copy; null when the rows come from one table
  std::string path;
  std::string source;   ///< a SELECT
  std::string keysSql;  ///< reads the numbers of its rows in their order
  std::shared_ptr<const engine::RecordsetShape> shape = std::make_shared<engine::RecordsetShape>();
  Statement fetch;  ///< reads one row by its number

  // Where the cursor is. -1 is before the first row.
  std::vector<std::int64_t> keys;  ///< the engine's number of each row
  std::ptrdiff_t cursor = 0;       ///< index into keys; keys.size() is after the last row

  // The current row as read, and the edit.
  std::vector<Value> rowFields;  ///< by column
  std::ptrdiff_t rowAt = -2;     ///< the cursor at which they were read; -2 when not read
  std::int64_t rowCounter = -1;  ///< the change counter at that time
  Draft draft = Draft::None;
  std::vector<std::optional<Value>> drafted;  ///< by column; empty for a field that was not set
  Statement writing;                          ///< the last INSERT or UPDATE, kept for the next edit
  std::string writingSql;

  // Indexes of the rows that a condition was found to hold for, valid while no connection writes.
  std::map<std::string, std::vector<std::size_t>, std::less<>> foundIndexes;
  std::int64_t foundCounter = -1;  ///< the change counter of this connection at that time
  std::int64_t foundVersion = -1;  ///< the engine's counter of changes by other connections
  Statement version;               ///< reads that counter
  std::unordered_map<std::int64_t, std::size_t> indexOfKey;

  /// The connection that the rows are read from.
  sqlite3* rowsHandle() const { return memory ? memory.get() : handle; }
  /// Whether the cursor is on a row.
  bool onRow() const { return cursor >= 0 && cursor < static_cast<std::ptrdiff_t>(keys.size()); }
  /// The number of the current row; the cursor is on one.
  std::int64_t key() const { return keys[static_cast<std::size_t>(cursor)]; }
  std::string qualifiedTable() const { return engine::quoted(shape->schema) + "." + engine::quoted(shape->table); }
  std::string where() const { return path + ": " + shape->table; }
  Result<Statement> prepare(std::string_view sql) const;

  // Opening (recordset_open.cpp).
  Result<> open();
  Result<> readKeys();
  Result<> refill();
  Result<bool> openKnown(std::string_view head);
  Result<> openNew(const std::optional<engine::TableSelect>& parts);
  Result<engine::RecordsetShape> tableShape(Statement& sourceRows) const;
  Result<engine::RecordsetShape> copyShape(Statement& sourceRows);
  Result<> prepareReading();

  // Finding (recordset_find.cpp).
  void forgetFound();
  Result<const std::vector<std::size_t>*> indexesOf(std::string_view condition);
  Result<std::vector<std::size_t>> search(std::string_view condition, const Value* bound);

  // Reading and editing.
  void moveTo(std::ptrdiff_t index);
  void endDraft();
  Result<> readRow();
  const Value& field(std::size_t column);
  Result<std::int64_t> reserveKey();
  Result<Value> evaluateDefault(const ColumnInfo& column) const;
  /// The statement that stores the draft: INSERT for a row being added, else UPDATE.
  std::string writeSql() const;
  Result<> write();
};

}  // namespace kv
