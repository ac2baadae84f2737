#pragma once
// The rows of a table as INSERT statements. A row of more than three columns is spread over lines, one value each.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/database/table_info.h"
#include "platform/files/output_file.h"
#include "sqlexport/sql_style.h"

namespace kv {

/// A name as statements of the store quote it.
std::string storeName(std::string_view name);

/// Writes all rows of a table in the order in which they are stored, between LOCK TABLES and UNLOCK TABLES when the
/// style asks for them; nothing for a table without rows. Returns the number of rows.
Result<std::int64_t> writeRows(OutputFile& out, Database& database, const TableInfo& table, const SqlStyle& style,
                               ExportWarnings& warnings);

}  // namespace kv
