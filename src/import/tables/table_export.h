#pragma once
// A table of the catalogue written as a sheet that the import reads again without a change.

#include <functional>
#include <string>
#include <vector>

#include "import/sheets/sheet_file.h"
#include "import/tables/table_columns.h"

namespace kv {

/// What is written.
struct TableExport {
  std::vector<std::string> columns;  ///< own names, in this order; empty: the usual ones of the shop's languages
  bool ownNames = false;             ///< headers are the columns' own names instead of Italian ones
  std::vector<std::int64_t> only;    ///< row keys, where `isFiltered`
  bool isFiltered = false;           ///< only these rows, in the table's order
  CsvReading form;                   ///< of a CSV file
  std::function<bool(std::size_t done, std::size_t all)> goOn = {};  ///< asked now and then; false ends it as
                                                                     ///< Cancelled
};

/// Writes a table to a file, XLSX or CSV by its name; an older one is replaced when the new one is whole, and stays as
/// it is otherwise. The number of
/// rows. Missing, with its name, for a column that isn't there; failures as openSheetOutput.
Result<std::size_t> exportTable(Database& catalogue, const SheetTable& table, const std::string& path,
                                const TableExport& what);

}  // namespace kv
