#pragma once
// Columns as CREATE TABLE names them. The exported dialect is MySQL's; the two of mSQL stand in the same tables and
// are reached when the constant is changed.

#include <string>

#include "platform/database/table_info.h"
#include "platform/ports/result.h"
#include "sqlexport/sql_text.h"

namespace kv {

/// "MY" MySQL, "M1" mSQL 1, "M2" mSQL 2.
enum class SqlTarget { MY = 1, M1 = 2, M2 = 4 };
inline constexpr SqlTarget TARGET = SqlTarget::MY;  // NOLINT(readability-identifier-naming): the given name

// Type codes of columns beyond those that ColumnType names. Files of other makers may bring them.
inline constexpr int guidCode = 15, bigIntCode = 16, varBinaryCode = 17, charCode = 18, numericCode = 19,
                     decimalCode = 20, floatCode = 21, timeCode = 22, timestampCode = 23;

/// The type of a column and its modifiers: "CHAR(50) NOT NULL DEFAULT 'x'". What can't be kept adds a warning. A
/// type without a counterpart adds one, too, and is a failure.
Result<std::string> columnDefinition(const ColumnInfo& column, SqlTarget target, ExportWarnings& warnings);

}  // namespace kv
