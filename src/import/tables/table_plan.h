#pragma once
// What an import of a sheet would do, row by row, computed before anything is written. The preview shows it and the
// import writes it, so that both say the same.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "import/sheets/row_fate.h"
#include "import/sheets/sheet_file.h"
#include "import/tables/catalogue_names.h"
#include "import/tables/column_mapping.h"

namespace kv {

/// Which rows of a sheet are written.
enum class TableMode {
  AddAndChange,
  OnlyChange,  ///< what the catalogue hasn't is left out
  OnlyAdd      ///< what the catalogue has is left out
};

/// How a sheet is imported.
struct TableRequest {
  ColumnMapping mapping;  ///< a column for each of the sheet's
  std::string key;        ///< name of a TableKey; empty: keyFor()
  TableMode mode = TableMode::AddAndChange;
  CsvChoice signs;            ///< of numbers that are texts: those that are given instead of found out
  bool unlistedOut = false;   ///< articles that the sheet doesn't list get "fuoricatalogo"
  std::string department;     ///< ID; of new articles where no column says it
  std::string model;          ///< page model of new departments
  std::string shopFolder;     ///< of the shop, whose pictures are in its folder "work"
  std::string sheetFolder;    ///< where pictures of relative paths are
  bool fitsPictures = false;  ///< files that are taken over are reduced to the box of the picture dialog
};

/// A column of the table and the column of the sheet that fills it.
struct MappedColumn {
  std::size_t column = 0, source = 0;
};

/// A row of the sheet.
struct PlannedRow {
  RowFate fate = RowFate::New;
  std::size_t row = 0;                 ///< index in the cells of the sheet
  std::int64_t key = 0;                ///< row key in the catalogue; 0 for a new one
  std::vector<std::uint16_t> changed;  ///< indexes of mapped columns with another value
  std::string reason;                  ///< in Italian; empty unless left out
  bool isChosen = true;                ///< false: the merchant leaves it out
};

/// An article that the sheet doesn't list, and that goes "fuori catalogo".
struct UnlistedArticle {
  std::int64_t key = 0;  ///< row key in the catalogue
  bool isChosen = true;  ///< false: the merchant leaves it as it is
};

/// How many rows there are of each fate.
struct TableSums {
  std::size_t added = 0, changed = 0, same = 0, refused = 0, unlisted = 0;
};

/// An amount that a row would get. What is empty counts as 0.
struct PlannedAmount {
  std::uint32_t row = 0;     ///< index in the rows of the plan
  std::uint16_t mapped = 0;  ///< index of the mapped column
  Money before, after;
};
/// The amounts of one column, of all chosen rows.
struct AmountSums {
  std::uint16_t mapped = 0;  ///< index of the mapped column
  std::size_t count = 0;
  std::optional<Money> before = Money(), after = Money();  ///< nothing: beyond what Money holds
};

/// What an import would do, row by row.
struct TablePlan {
  SheetTable table;
  std::vector<MappedColumn> columns;
  std::vector<PlannedRow> rows;  ///< in the order of the sheet
  std::vector<UnlistedArticle> unlisted;
  CatalogueNames names;
  CsvReading signs;                    ///< of numbers that are texts
  std::vector<PlannedAmount> amounts;  ///< of rows that are new or changed

  /// Counts of all rows; those that aren't chosen count neither as added or changed nor as unlisted.
  TableSums sums() const;
  /// The amounts that chosen rows would change, by column; none for a column where none does.
  std::vector<AmountSums> amountSums() const;
  /// Ticks a row that would be written, or unticks it. A new department needs the new ones above it: these are ticked
  /// with it, and those below it unticked with it.
  void choose(const ReadSheet& sheet, std::size_t row, bool isChosen);
};

/// Asked now and then with how far a work has come; false ends it as Cancelled.
using TableStep = std::function<bool(std::size_t done, std::size_t all)>;

/// The signs of numbers that the texts of the mapped columns have, where none are given.
CsvReading signsOf(const ReadSheet& sheet, const SheetTable& table, const ColumnMapping& mapping,
                   const CsvChoice& choice = {});

/// The `number` of an error whose text is for the merchant: no mapped column says which rows are meant.
inline constexpr int noKeyMapped = -1;

/// Plans an import of the rows after the header. Malformed with noKeyMapped when no key is mapped; failures of the
/// catalogue as Database::prepare, with the table and its last row that was read as its position.
Result<TablePlan> planTable(Database& catalogue, SheetTable table, const ReadSheet& sheet, const TableRequest& request,
                            const TableStep& step = {});

}  // namespace kv
