#pragma once
// Columns as CREATE TABLE names them. The exported dialect is MySQL's; the two of mSQL are in the same tables and are
// used when the constant is changed.

#include <string>

#include "platform/database/table_info.h"
#include "platform/ports/result.h"
#include "sqlexport/sql_text.h"

namespace kv {

/// The dialects: "MY" MySQL, "M1" mSQL 1, "M2" mSQL 2. Values are bits of a set.
enum class SqlTarget { MY = 1, M1 = 2, M2 = 4 };
/// The dialect of the export.
inline constexpr SqlTarget TARGET = SqlTarget::MY;  // NOLINT(readability-identifier-naming): the given name

// Type codes of columns beyond those that ColumnType names. Files of other programs may have them.
inline constexpr int guidCode = 15, bigIntCode = 16, varBinaryCode = 17, charCode = 18, numericCode = 19,
                     decimalCode = 20, floatCode = 21, timeCode = 22, timestampCode = 23;

/// The type of a column and its modifiers: "CHAR(50) NOT NULL DEFAULT 'x'". A property that the dialect lacks
/// adds a warning. A type that it lacks adds one too and is a failure.
Result<std::string> columnDefinition(const ColumnInfo& column, SqlTarget target, ExportWarnings& warnings);

}  // namespace kv
