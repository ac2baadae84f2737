// Sheets of anywhere: whatever the bytes, a text is read or refused, what was read and written as CSV is read again
// with the same cells, and no header or mapping finds a column twice.
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

#include "import/sheets/csv_text.h"
#include "import/tables/column_mapping.h"

namespace {

void requireSheet(bool holds) {
  if (!holds) std::abort();
}

/// A table with the columns that are hardest to tell apart.
kv::SheetTable fuzzedTable() {
  kv::SheetTable table{"articoli", "Articoli", "articoli", "articoli", "ID", "ID", {{"codice", "Codice", {"codice"}}},
                       {}};
  for (const char* name : {"ID", "codice", "titolo", "prezzo", "prezzo1", "immagine0", "immagine1"}) {
    table.columns.push_back({name, std::string("Colonna ") + name, name, kv::CellField::Text, name});
  }
  return table;
}

void requireOneSource(const kv::ColumnMapping& mapping) {
  std::set<std::size_t> seen;
  for (const auto& column : mapping) requireSheet(!column || seen.insert(*column).second);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  kv::CsvReading reading;
  const auto cells = kv::readCsv(bytes, {}, {}, reading);
  if (!cells || cells->rows() == 0) return 0;
  std::string text;
  std::vector<std::string> headers;
  for (std::size_t row = 0; row < cells->rows(); ++row) {
    for (std::size_t i = 0; i < cells->width(); ++i) {
      if (i > 0) text += ';';
      kv::appendCsvField(text, kv::guardedCsvText(cells->cell(row, i).text), ';');
      if (row == 0) headers.emplace_back(kv::SheetCell(cells->cell(row, i)).text);
    }
    text += "\r\n";
  }
  kv::CsvChoice choice;
  choice.encoding = kv::CsvEncoding::Utf8Mark;
  choice.separator = ';';
  kv::CsvReading again;
  const auto copy = kv::readCsv(std::string(kv::csvMark(kv::CsvEncoding::Utf8Mark)) + text, choice, {}, again);
  requireSheet(copy.has_value());
  for (std::size_t row = 0; row < copy->rows() && copy->rows() == cells->rows(); ++row) {
    for (std::size_t i = 0; i < cells->width(); ++i) requireSheet(copy->cell(row, i).text == cells->cell(row, i).text);
  }
  const kv::SheetTable table = fuzzedTable();
  kv::ColumnMapping mapping = kv::mappingByHeaders(table, headers);
  requireOneSource(mapping);
  const auto applied = kv::applyMapping(text, table, headers, mapping);
  requireSheet(applied.has_value() || applied.error().kind == kv::ErrorKind::Malformed);
  requireOneSource(mapping);
  return 0;
}
