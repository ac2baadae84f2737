#pragma once
// A record set of the store: rows of a table or query with a cursor that moves, finds and edits.

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/database/table_info.h"
#include "platform/database/value.h"
#include "platform/ports/result.h"

namespace kv {

/// Rows of a table or query in a fixed order, with a cursor. Rows are those found at opening; a field is read from
/// the table when the cursor comes to its row, and a row that is added becomes the last one. Before the first row and
/// after the last one the cursor is on no row: fields read as Null there.
class Recordset {
 public:
  Recordset(Recordset&&) noexcept;
  Recordset& operator=(Recordset&&) noexcept;
  ~Recordset();

  /// The number of rows.
  std::size_t size() const;
  /// Whether the cursor is before the first row, or there is no row.
  bool bof() const;
  /// Whether the cursor is after the last row, or there is no row.
  bool eof() const;
  /// Index of the current row from 0; size() when the cursor is on none.
  std::size_t position() const;
  // Moving the cursor ends an edit that has begun, without writing it.
  void moveFirst();
  void moveLast();
  /// To the next row; from the last one to after it.
  void moveNext();
  /// To the previous row; from the first one to before it.
  void movePrevious();
  /// To the row at an index; one beyond the end is after the last row.
  void moveTo(std::size_t position);

  // Each moves to a row for which an SQL condition holds ("genitore = 'cat007'"): the first one, the last one, or the
  // nearest after or before the cursor. False, and the cursor stays, when there is none.
  Result<bool> findFirst(std::string_view condition);
  Result<bool> findLast(std::string_view condition);
  Result<bool> findNext(std::string_view condition);
  Result<bool> findPrevious(std::string_view condition);
  /// Moves to the first row whose column equals a value; false, and the cursor stays, when there is none.
  Result<bool> seek(std::string_view column, const Value& value);

  /// The columns in the order of the source.
  const std::vector<ColumnInfo>& columns() const;
  /// Index of a column, case ignored; -1 when there is none.
  int columnIndex(std::string_view name) const;
  /// The field of the current row, or of the edit that has begun. Null for an unknown column or on no row.
  Value get(std::string_view column) const;
  /// Reads the current row now, so that get() takes it from memory until the next write. Without it a row that cannot
  /// be read reads as Null, which whoever writes what he read must not take for a value.
  Result<> load();

  /// Starts an edit of the current row. Missing when the cursor is on none, ReadOnly when the rows can't be edited.
  Result<> edit();
  /// Starts a new row; its automatic key can be read at once.
  Result<> addNew();
  /// Sets a field of the edit. TextInNumber when a text that is no number goes into a numeric column; an empty
  /// text there is such a text too. Missing when there is no such column. Text longer than the column is refused
  /// as Malformed.
  Result<> set(std::string_view column, const Value& value);
  /// Writes the edit; an added row becomes the current one. After a failure the edit goes on.
  Result<> update();
  /// Ends the edit without writing it.
  void cancelUpdate();
  /// Deletes the current row. The cursor moves to the next one; after the last one it is on none.
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
