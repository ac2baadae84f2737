#pragma once
// A prepared statement of the store: values are bound to its parameters, rows are stepped through.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/database/value.h"
#include "platform/numbers/money.h"
#include "platform/ports/result.h"

struct sqlite3_stmt;

namespace kv {

/// How the engine holds a field, whatever its column is declared to be.
enum class StoredAs { Integer = 1, Real = 2, Text = 3, Blob = 4, Null = 5 };

/// A prepared statement: bind its parameters, then step through the rows or execute. It must not outlive its database.
class Statement {
 public:
  Statement() = default;
  Statement(Statement&& other) noexcept;
  Statement& operator=(Statement&& other) noexcept;
  ~Statement();

  // Each sets the parameter ?index, counted from 1. A text that is bound must live until the execution is over.
  /// The parameter is null.
  void bindNull(int index);
  /// A flag, stored as 1 or 0.
  void bind(int index, bool value);
  void bind(int index, std::int64_t value);
  void bind(int index, double value);
  /// An amount, stored as its count of ten-thousandths.
  void bind(int index, Money value);
  /// A UTF-8 text; the engine reads it where it is.
  void bind(int index, std::string_view text);
  void bind(int index, int value) { bind(index, std::int64_t{value}); }
  void bind(int index, const char* text) { bind(index, std::string_view(text)); }
  void bind(int index, const std::string& text) { bind(index, std::string_view(text)); }
  /// A value of any kind; Bytes must live as long as a text.
  void bind(int index, const Value& value);

  /// Runs a statement that returns no rows and makes it ready for the next run; bindings stay.
  Result<> execute();
  /// Moves to the next row: false at the end, after which the statement is ready to run again.
  Result<bool> step();
  /// Abandons the rows that are left; the statement is ready to run again.
  void reset();

  // The current row, columns from 0. A null reads as empty, 0 or false. Texts live until the next step().

  /// The number of columns.
  int columnCount() const;
  /// The name that the statement gives to a column.
  std::string_view columnName(int column) const;
  /// Whether the field is null.
  bool isNull(int column) const;
  std::string_view text(int column) const;
  std::int64_t integer(int column) const;
  /// A number of any column; a text gives the number at its start.
  double number(int column) const;
  /// A number rounded to single precision.
  float single(int column) const { return static_cast<float>(number(column)); }
  /// A money column, which is stored as a count of ten-thousandths.
  Money money(int column) const { return Money::ofTenThousandths(integer(column)); }
  /// Whether the number is other than 0.
  bool flag(int column) const { return integer(column) != 0; }
  /// How the engine holds the field.
  StoredAs storedAs(int column) const;
  /// The bytes of a text or a blob, unchanged; they live until the next step().
  std::string_view bytes(int column) const;
  /// The field as the declared type of its source column; the field of an expression as the engine holds it.
  Value value(int column) const;

 private:
  friend class Database;
  friend class Recordset;
  Statement(sqlite3_stmt* handle, std::string where);
  sqlite3_stmt* handle_ = nullptr;
  std::string where_;  // the path of the database, for errors
};

}  // namespace kv
