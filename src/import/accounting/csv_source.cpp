#include "import/accounting/csv_source.h"

#include "import/sheets/csv_text.h"
#include "import/sheets/number_signs.h"
#include "import/sheets/sheet_file.h"
#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

bool isNumberColumn(std::string_view column) {
  return equalsIgnoringCase(column, "iva") || startsWithIgnoringCase(column, "Vendita");
}

/// One file, read whole.
struct CsvTable {
  CsvReading form;
  CellTable cells;  ///< the first row names the columns

  int columnIndex(std::string_view name) const {
    if (cells.rows() == 0) return -1;
    for (std::size_t i = 0; i < cells.width(0); ++i) {
      if (equalsIgnoringCase(trim(cells.cell(0, i).text), name)) return static_cast<int>(i);
    }
    return -1;
  }
};

std::vector<std::string_view> numbersOf(const CellTable& cells) {
  std::vector<std::string_view> numbers;
  for (std::size_t column = 0; cells.rows() > 0 && column < cells.width(0); ++column) {
    if (!isNumberColumn(trim(cells.cell(0, column).text))) continue;
    for (std::size_t row = 1; row < cells.rows(); ++row) numbers.push_back(cells.cell(row, column).text);
  }
  return numbers;
}

/// Why a file can't be read, in Italian.
tl::unexpected<Error> csvFailure(Error error, const std::string& path) {
  error.what = sheetFailureText(error, path);
  error.where = path;
  return fail(std::move(error));
}

Result<CsvTable> readCsvTable(const std::string& path) {
  const SheetLimits limits;
  const auto stamp = fileStamp(path);
  if (!stamp) return csvFailure(stamp.error(), path);
  if (stamp->size > limits.textBytes) return csvFailure({ErrorKind::Malformed, path, "", TooLargeSheet}, path);
  const auto bytes = readBytes(path);
  if (!bytes) return csvFailure(bytes.error(), path);
  CsvTable table;
  CsvChoice choice;
  choice.decimalSeparator = ',';  // found below, among the columns of numbers alone
  choice.thousands = '\0';
  auto cells = readCsv(*bytes, choice, limits, table.form);
  if (!cells) return csvFailure(cells.error(), path);
  table.cells = std::move(*cells);
  table.form.decimalSeparator = decimalSeparatorOf(numbersOf(table.cells), table.form.separator);
  return table;
}

std::string csvName(char separator) { return separator == '\t' ? "tabulazione" : std::string(1, separator); }

/// A folder of such files.
class CsvSource final : public AccountingSource {
 public:
  explicit CsvSource(std::string folder) : folder_(std::move(folder)) {}

  Result<std::vector<AccountingRow>> rows(std::string_view table,
                                          const std::vector<std::string>& columns) const override {
    const auto path = findEntry(folder_, std::string(table) + ".csv");
    if (!path) return fail(ErrorKind::Missing, folder_, std::string(table));
    const auto read = readCsvTable(*path);
    if (!read) return fail(read.error());
    std::vector<std::size_t> indexes;
    for (const std::string& column : columns) {
      const int index = read->columnIndex(column);
      if (index < 0) return fail(ErrorKind::Missing, *path, column);
      indexes.push_back(static_cast<std::size_t>(index));
    }
    std::vector<AccountingRow> found;
    found.reserve(read->cells.rows());
    for (std::size_t record = 1; record < read->cells.rows(); ++record) {
      AccountingRow row;
      row.reserve(columns.size());
      for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string_view text = read->cells.cell(record, indexes[i]).text;
        row.emplace_back(isNumberColumn(columns[i]) ? plainCsvNumber(text, read->form.decimalSeparator)
                                                    : std::string(text));
      }
      found.push_back(std::move(row));
    }
    return found;
  }

  std::string description() const override {
    std::string text;
    for (const char* name : {"Categoria.csv", "Articoli.csv", "Nomi.csv"}) {
      const auto path = findEntry(folder_, name);
      const auto table = path ? readCsvTable(*path) : fail(ErrorKind::Missing, folder_, name);
      if (!table) continue;
      text += std::string(name) + ": " +
              (table->form.encoding == CsvEncoding::Windows1252 ? "Windows-1252" : "Unicode") +
              ", separatore di campo \"" + csvName(table->form.separator) + "\", separatore decimale \"" +
              table->form.decimalSeparator + "\"\n";
    }
    return text;
  }

 private:
  std::string folder_;
};

}  // namespace

std::string plainCsvNumber(std::string_view text, char decimalSeparator) {
  const char groupSign = decimalSeparator == ',' ? '.' : ',';
  std::string plain;
  for (const char c : trim(text)) {
    if (c != groupSign) plain += c == decimalSeparator ? '.' : c;
  }
  return plain;
}

Result<std::unique_ptr<AccountingSource>> openCsvSource(const std::string& folder) {
  const auto has = [&](const char* name) { return findEntry(folder, name).has_value(); };
  if (!has("Nomi.csv") && !(has("Categoria.csv") && has("Articoli.csv"))) {
    return fail(ErrorKind::Missing, folder, "Categoria.csv, Articoli.csv");
  }
  return std::make_unique<CsvSource>(folder);
}

}  // namespace kv
