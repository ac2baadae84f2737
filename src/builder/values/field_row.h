#pragma once
// One row of settings held in memory, its fields by name. A null reads as an empty text, 0 or false.

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/database/statement.h"
#include "platform/database/value.h"

namespace kv {

class FieldRow {
 public:
  /// The current row of a statement.
  explicit FieldRow(const Statement& row);
  FieldRow() = default;

  bool isNull(std::string_view column) const { return kv::isNull(value(column)); }
  std::string text(std::string_view column) const { return asText(value(column)); }
  double number(std::string_view column) const { return asNumber(value(column)); }
  float single(std::string_view column) const { return static_cast<float>(number(column)); }
  std::int64_t integer(std::string_view column) const { return asInteger(value(column)); }
  Money money(std::string_view column) const { return asMoney(value(column)); }
  bool flag(std::string_view column) const { return asFlag(value(column)); }
  /// Null for a column that isn't there.
  const Value& value(std::string_view column) const;

 private:
  std::unordered_map<std::string, Value> fields_;  // by folded name
};

}  // namespace kv
