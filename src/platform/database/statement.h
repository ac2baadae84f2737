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

}  // namespace kv
