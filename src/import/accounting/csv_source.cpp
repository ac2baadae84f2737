#include "import/accounting/csv_source.h"

#include "import/sheets/number_signs.h"
#include "platform/files/files.h"
#include "platform/text/text.h"

namespace kv {
namespace {

/// Gathers the records of a text.
struct RecordSink final : CsvSink {
  std::vector<std::string> record;
  std::vector<std::vector<std::string>> records;
  bool field(std::string_view text) override {
    record.emplace_back(text);
    return true;
  }
  bool endRecord(std::uint32_t) override {
    records.push_back(std::move(record));
    record.clear();
    return true;
  }
};

bool isNumberColumn(std::string_view column) {
  return equalsIgnoringCase(column, "iva") || startsWithIgnoringCase(column, "Vendita");
}

/// One file, read whole.
struct CsvTable {
  CsvForm form;
  std::vector<std::vector<std::string>> records;  ///< the first one names the columns

  int columnIndex(std::string_view name) const {
    if (records.empty()) return -1;
    for (std::size_t i = 0; i < records[0].size(); ++i) {
      if (equalsIgnoringCase(trim(records[0][i]), name)) return static_cast<int>(i);
    }
    return -1;
  }
  std::string_view field(std::size_t record, std::size_t column) const {
    return column < records[record].size() ? std::string_view(records[record][column]) : std::string_view();
  }
};

std::vector<std::string_view> numbersOf(const CsvTable& table) {
  std::vector<std::string_view> numbers;
  for (std::size_t column = 0; !table.records.empty() && column < table.records[0].size(); ++column) {
    if (!isNumberColumn(trim(table.records[0][column]))) continue;
    for (std::size_t i = 1; i < table.records.size(); ++i) numbers.emplace_back(table.field(i, column));
  }
  return numbers;
}

Result<CsvTable> readCsvTable(const std::string& path) {
  const auto bytes = readBytes(path);
  if (!bytes) return fail(bytes.error());
  CsvTable table;
  const std::string text = decodeCsv(*bytes, table.form);
  table.form.separator = separatorOf(text);
  table.records = splitCsv(text, table.form.separator);
  table.form.decimalSeparator = decimalSeparatorOf(numbersOf(table), table.form.separator);
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
    for (std::size_t record = 1; record < read->records.size(); ++record) {
      AccountingRow row;
      for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string_view text = read->field(record, indexes[i]);
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
      text += std::string(name) + ": " + (table->form.utf8 ? "Unicode" : "Windows-1252") + ", separatore di campo \"" +
              csvName(table->form.separator) + "\", separatore decimale \"" + table->form.decimalSeparator + "\"\n";
    }
    return text;
  }

 private:
  std::string folder_;
};

}  // namespace

std::vector<std::vector<std::string>> splitCsv(std::string_view text, char separator) {
  RecordSink sink;
  ignore(walkCsv(text, separator, sink), "this sink takes all");
  return std::move(sink.records);
}

std::string decodeCsv(std::string_view bytes, CsvForm& form) {
  const CsvEncoding encoding = csvEncodingOf(bytes);
  form.utf8 = encoding != CsvEncoding::Windows1252;
  return decodedCsv(bytes, encoding);
}

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
