#pragma once
// Rows as text: the part "rows" of a golden case put into a catalogue, and tables written down for comparison.
//
// Rows in: see golden_blocks.h.
// Rows out: by ID, one "column=value" line for each column that holds something; columns of a family in a row
// (prezzo1, prezzo2 ...) with equal values share a line; a text of several lines follows below its name. The brief form
// has "[table]" and the columns on one line, separated by " | ", or on as many lines as they need.

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/database/table_info.h"

namespace kv::test {

/// Inserts the rows of a part. Failures name the row's table and column.
Result<> insertRows(Database& database, std::string_view text);
/// Sets a column of one row, or of every row when `key` is "*".
Result<> setField(Database& database, const std::string& table, const std::string& key, const std::string& column,
                  std::string_view value);

struct DumpOptions {
  std::string only;        ///< columns to show, separated by ","; empty: all
  std::string ids;         ///< the rows to show, by their IDs separated by ","; empty: all, as in a table without IDs
  bool hideEmpty = false;  ///< leave out empty texts as well as nulls
  bool brief = false;      ///< several columns a line, and no row that has nothing to show but its ID
};

/// The rows of one table; `count`, when there is one, is increased by their number.
Result<std::string> dumpTable(Database& database, const TableInfo& table, const DumpOptions& options,
                              std::size_t* count = nullptr);

}  // namespace kv::test
