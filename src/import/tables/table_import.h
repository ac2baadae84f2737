#pragma once
// The import of a sheet as a whole: the file is read, its columns are found, the plan is made, and what is left of it
// is written in one transaction.

#include <string>

#include "import/tables/header_row.h"
#include "import/tables/table_writer.h"
#include "store/shop/session.h"

namespace kv {

/// A sheet that was read, with the columns that were found.
struct OpenSheet {
  std::string path;
  ReadSheet sheet;
  SheetTable table;
  ColumnMapping mapping;              ///< as it was kept for these headers, else by the shape, else by the headers
  std::string_view shape;             ///< caption of the export whose cells were turned into ours; empty: none
  std::vector<HeaderRow> headerRows;  ///< what may name the columns; the first row of `sheet` does
};

/// Reads a file for a table of the catalogue, and leaves out what is above its headers; articles in the shape of
/// another program's export are turned into ours. A CSV file in which no row names several columns is read with the
/// separator with which one does, as its first line may be a title. Failures as readSheetFile and applyExportShape; the
/// catalogue's as sheetTable, with "catalogo" as `where`.
Result<OpenSheet> openTableSheet(Session& session, const Settings& settings, const std::string& path,
                                 std::string_view table, const SheetChoice& choice = {});

/// Why openTableSheet failed, for the merchant: the sheet can't be read, or the catalogue can't.
std::string openingFailureText(const Error& error, const std::string& path);
/// Why planTable failed, for the merchant: the sheet of the path, what was kept, and where the catalogue failed.
std::string planFailureText(const Error& error, const std::string& path);

/// How an import ended.
enum class TableEnd {
  Done,
  Cancelled,  ///< the user ended it, and nothing was written
  Failed      ///< nothing was written, and the user knows why
};

/// Writes a plan: all of it in one transaction, with progress, or nothing. The caller makes one step of the history of
/// it and shows the catalogue again.
TableEnd importPlannedTable(Session& session, Environment& env, TablePlan& plan, const ReadSheet& sheet,
                            const TableRequest& request);

/// The counts of a plan in a line: "Articoli: 2 nuovi, 1 modificati, 7 invariati, 1 tralasciati".
std::string sumsText(const TablePlan& plan);
/// What becomes of the amounts of the chosen rows, a line for each column of money that changes: how many, and their
/// sum before and after; empty where none does.
std::string amountsText(const TablePlan& plan);
/// The whole preview as text: how the file was read, the columns, the counts, and each row that is new, changed or left
/// out, with its values, and each article that goes "fuori catalogo".
Result<std::string> tablePreviewText(Session& session, const OpenSheet& open, const TablePlan& plan);

}  // namespace kv
