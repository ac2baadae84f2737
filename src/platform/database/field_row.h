#pragma once
// One row of settings held in memory, its fields by name. A null reads as an empty text, 0 or false.

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/statement.h"
#include "platform/database/value.h"
#include "platform/ports/result.h"

namespace kv {

/// The fields of one row. Column names ignore case; a column that isn't there reads as a null.
class FieldRow {
 public:
  /// The current row of a statement.
  explicit FieldRow(const Statement& row);
  /// A row without columns.
  FieldRow() = default;

  /// Whether the field is a null, or not there.
  bool isNull(std::string_view column) const { return kv::isNull(value(column)); }
  /// The field as text: a number without zeros it does not need, a flag as "1" or "0".
  std::string text(std::string_view column) const { return asText(value(column)); }
  /// The field as a number; 0 for a text that is none.
  double number(std::string_view column) const { return asNumber(value(column)); }
  /// The number in single precision, as prices and weights are computed.
  float single(std::string_view column) const { return static_cast<float>(number(column)); }
  /// The field as a whole number.
  std::int64_t integer(std::string_view column) const { return asInteger(value(column)); }
  /// The field as an amount.
  Money money(std::string_view column) const { return asMoney(value(column)); }
  /// Whether the field is set.
  bool flag(std::string_view column) const { return asFlag(value(column)); }
  /// The field as it is stored.
  const Value& value(std::string_view column) const;

 private:
  std::unordered_map<std::string, Value> fields_;  // by folded name
};

/// The first row of a query; a row without columns when the query has none. Failures as Database::prepare and
/// Statement::step.
Result<FieldRow> firstRow(Database& database, std::string_view query);

}  // namespace kv
