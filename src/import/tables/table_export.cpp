#include "import/tables/table_export.h"

#include <algorithm>
#include <unordered_set>

#include "import/tables/cell_reading.h"
#include "platform/database/rows.h"

namespace kv {
namespace {

constexpr std::size_t rowsPerCheck = 256;  // between two looks at the user

Result<std::vector<const TableColumn*>> columnsOf(const SheetTable& table, const std::vector<std::string>& names) {
  std::vector<const TableColumn*> columns;
  for (const TableColumn& column : table.columns) {
    if (names.empty() && column.isUsual) columns.push_back(&column);
  }
  for (const std::string& name : names) {
    const auto index = table.columnIndex(name);
    if (!index) return fail(ErrorKind::Missing, table.name, name);
    columns.push_back(&table.columns[*index]);
  }
  return columns;
}

/// The rows of a table, cell by cell.
class TableRows {
 public:
  TableRows(const std::vector<const TableColumn*>& columns, const CatalogueNames& names)
      : columns_(columns), reader_(signs_, names) {}

  const std::vector<SheetCell>& headers(bool ownNames) {
    cells_.clear();
    for (const TableColumn* column : columns_) cells_.push_back({ownNames ? column->name : column->italian});
    return cells_;
  }
  const std::vector<SheetCell>& row(const Statement& row) {
    texts_.clear();
    cells_.clear();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      texts_.push_back(reader_.shown(*columns_[i], row, static_cast<int>(i) + 1));
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      cells_.push_back({texts_[i], isNumberField(columns_[i]->field) && !texts_[i].empty()});
    }
    return cells_;
  }

 private:
  const std::vector<const TableColumn*>& columns_;
  CsvReading signs_;
  CellReader reader_;
  std::vector<std::string> texts_;
  std::vector<SheetCell> cells_;
};

std::string selectionOf(const SheetTable& table, const std::vector<const TableColumn*>& columns) {
  std::string sql = "SELECT " + table.rowKey;
  for (const TableColumn* column : columns) sql += ", " + column->stored;
  return sql + " FROM " + table.from + " ORDER BY " + table.order;
}

/// Writes the headers and the wanted rows; how many of these.
Result<std::size_t> writeTableRows(Statement& rows, std::size_t all, TableRows& cells, SheetOutput& output,
                                   const TableExport& what) {
  if (auto done = output.row(cells.headers(what.ownNames)); !done) return fail(done.error());
  const std::unordered_set<std::int64_t> only(what.only.begin(), what.only.end());
  std::size_t written = 0;
  const auto done = forEachRow(rows, [&](const Statement& row) -> Result<> {
    if (what.isFiltered && !only.contains(row.integer(0))) return {};
    if (what.goOn && written % rowsPerCheck == 0 && !what.goOn(written, all)) {
      return fail(ErrorKind::Cancelled, "", "cancelled");
    }
    ++written;
    return output.row(cells.row(row));
  });
  if (!done) return fail(done.error());
  return written;
}

/// How many rows an export would write, for whoever watches it.
Result<std::size_t> rowsToWrite(Database& catalogue, const SheetTable& table, const TableExport& what) {
  if (what.isFiltered || !what.goOn) return what.only.size();
  const auto count = catalogue.scalar("SELECT COUNT(*) FROM " + table.from);
  if (!count) return fail(count.error());
  return static_cast<std::size_t>(asInteger(*count));
}

}  // namespace

Result<std::size_t> exportTable(Database& catalogue, const SheetTable& table, const std::string& path,
                                const TableExport& what) {
  const auto columns = columnsOf(table, what.columns);
  if (!columns) return fail(columns.error());
  const auto names = CatalogueNames::read(catalogue);
  if (!names) return fail(names.error());
  const auto all = rowsToWrite(catalogue, table, what);
  if (!all) return fail(all.error());
  auto rows = catalogue.prepare(selectionOf(table, *columns));
  if (!rows) return fail(rows.error());
  auto output = openSheetOutput(path, table.caption, what.form);
  if (!output) return fail(output.error());
  TableRows cells(*columns, *names);
  auto written = writeTableRows(*rows, *all, cells, **output, what);
  if (!written) return fail(written.error());
  if (auto done = (*output)->finish(); !done) return fail(done.error());
  return *written;
}

}  // namespace kv
