#pragma once
// Which column of a sheet is which column of the catalogue: found by the headers, given by a text, and remembered for
// the next sheet with the same headers.

#include <optional>
#include <string>
#include <vector>

#include "import/tables/table_columns.h"
#include "platform/files/settings.h"

namespace kv {

/// For each column of a sheet the index of a column of the table; nothing where it is left out.
using ColumnMapping = std::vector<std::optional<std::size_t>>;

/// A header without what programs write differently: case, spaces, signs, and the prefix of a feed.
std::string plainHeader(std::string_view header);

/// The mapping that the headers say: by a column's own name, its Italian or English header, or one that exports of shop
/// programs have; case, spaces and signs don't count. The first of several columns wins.
ColumnMapping mappingByHeaders(const SheetTable& table, const std::vector<std::string>& headers);

/// Reads lines of the form "header=column", an empty column leaving the header out, over a mapping; lines that start
/// with "#" are passed over. Malformed, with the line, for a header or column that isn't there.
Result<> applyMapping(std::string_view lines, const SheetTable& table, const std::vector<std::string>& headers,
                      ColumnMapping& mapping);

/// The mapping that was kept for the same headers; nothing when there is none.
std::optional<ColumnMapping> keptMapping(const Settings& settings, const SheetTable& table,
                                         const std::vector<std::string>& headers);
/// Keeps a mapping for sheets with the same headers.
Result<> keepMapping(Settings& settings, const SheetTable& table, const std::vector<std::string>& headers,
                     const ColumnMapping& mapping);

/// The column of the sheet that a column of the table comes from; nothing when none does.
std::optional<std::size_t> sourceOf(const ColumnMapping& mapping, std::size_t column);

/// The key that the mapped columns allow: the ID where it is there, else the first whose columns all are; nothing when
/// there is none.
const TableKey* keyFor(const SheetTable& table, const ColumnMapping& mapping);

}  // namespace kv
