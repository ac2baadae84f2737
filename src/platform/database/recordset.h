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
  /// Reads the current row now, so that get() takes it from memory until the next write. Without it a row that cannot
  /// be read reads as Null, which whoever writes what he read must not take for a value.
  Result<> load();

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
