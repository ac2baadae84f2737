#pragma once
// Tables of the accounting package as text files, one a table, the columns named by the first line. Programs write such
// files in several ways, so code page, separator and decimal separator are found out from the bytes.

#include "import/accounting/accounting_source.h"
#include "import/sheets/csv_text.h"

namespace kv {

/// How a file of separated values is written.
struct CsvForm {
  bool utf8 = true;             ///< else Windows-1252
  char separator = ';';         ///< between fields: ';', ',', tab or '|'
  char decimalSeparator = ',';  ///< in numbers: ',' or '.'
};

/// The records of a text: see walkCsv.
std::vector<std::vector<std::string>> splitCsv(std::string_view text, char separator);
/// The text of a file as UTF-8: UTF-16 by its byte order mark, UTF-8 when all of it is, else Windows-1252.
std::string decodeCsv(std::string_view bytes, CsvForm& form);
/// A number written with this decimal separator as a text with "." for decimals and no group signs.
/// "1.234,50" with ',' is "1234.50".
std::string plainCsvNumber(std::string_view text, char decimalSeparator);

/// Opens a folder with `Categoria.csv` and `Articoli.csv`, or with `Nomi.csv`, names in any case. Missing when they
/// aren't there.
Result<std::unique_ptr<AccountingSource>> openCsvSource(const std::string& folder);

}  // namespace kv
