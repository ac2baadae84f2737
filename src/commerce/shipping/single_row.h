#pragma once
// Tables that have one row: `pagamento`, `zona1` to `zona8`, `generale`.

#include <string_view>

#include "platform/database/database.h"

namespace kv {

/// A field of the row, in the type of its column; Null when there is no row. Failures as Database::scalar.
Result<Value> readSingle(Database& catalogue, std::string_view table, std::string_view column);
/// Stores a field of the row. Missing when the table has no row or no such column, TextInNumber and Malformed as
/// Recordset::set.
Result<> storeSingle(Database& catalogue, std::string_view table, std::string_view column, const Value& value);

}  // namespace kv
