#pragma once
// The inside of a record set. Its rows are known by the numbers the engine gives to the rows of a table. A source that
// is not one table's rows (a join, a sum) is copied into a table in memory, and from there on it is read as a table
// that cannot be changed.

#include <map>
#include <optional>
#include <unordered_map>

#include "platform/database/engine.h"
#include "platform/database/recordset.h"

namespace kv {

struct ColumnNameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const;
};
struct ColumnNameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};

struct Recordset::State {
  enum class Draft { None, Edit, Add };

  // What the rows come from.
  sqlite3* handle = nullptr;  ///< of the database the source was given to
  engine::Connection memory;  ///< holds the copy; null when the rows come from one table
  std::string path;
  std::string source;                ///< a SELECT
  std::string schema;                ///< "main" or an attached file
  std::string table;                 ///< as the engine spells it
  std::vector<ColumnInfo> columns;   ///< under the names of the source
  std::vector<std::string> origins;  ///< the table's column behind each
  std::unordered_map<std::string, std::size_t, ColumnNameHash, ColumnNameEqual> places;
  std::string rowsSql;  ///< SELECT over all rows of the table under the source's names, with kv_row; no WHERE yet
  Statement fetch;

  // Where the cursor is. -1 is before the first row.
  std::vector<std::int64_t> keys;
  std::ptrdiff_t cursor = 0;

  // The current row as read, and the edit.
  std::vector<Value> rowFields;
  std::ptrdiff_t rowAt = -2;
  std::int64_t rowStamp = -1;
  Draft draft = Draft::None;
  std::vector<std::optional<Value>> drafted;
  Statement writing;
  std::string writingSql;

  // Places that conditions were found to hold at, good while no connection writes.
  std::map<std::string, std::vector<std::size_t>, std::less<>> foundPlaces;
  std::int64_t foundStamp = -1;
  std::int64_t foundVersion = -1;
  Statement version;
  std::unordered_map<std::int64_t, std::size_t> placeOfKey;

  sqlite3* rowsHandle() const { return memory ? memory.get() : handle; }
  bool onRow() const { return cursor >= 0 && cursor < static_cast<std::ptrdiff_t>(keys.size()); }
  std::int64_t key() const { return keys[static_cast<std::size_t>(cursor)]; }
  std::string qualifiedTable() const { return engine::quoted(schema) + "." + engine::quoted(table); }
  std::string where() const { return path + ": " + table; }
  Result<Statement> prepare(std::string_view sql) const;

  // Opening (recordset_open.cpp).
  Result<> open();
  Result<> readKeys();
  Result<> refill();
  Result<> openTable(Statement& sourceRows);
  Result<> openCopy(Statement& sourceRows);
  Result<> prepareReading();

  // Finding (recordset_find.cpp).
  void forgetFound();
  Result<const std::vector<std::size_t>*> placesOf(std::string_view condition);
  Result<std::vector<std::size_t>> search(std::string_view condition, const Value* bound);

  // Reading and editing.
  void moveTo(std::ptrdiff_t place);
  void endDraft();
  Result<> readRow();
  const Value& field(std::size_t column);
  Result<std::int64_t> reserveKey();
  Result<Value> evaluateDefault(const ColumnInfo& column) const;
  Result<> write();
};

}  // namespace kv
