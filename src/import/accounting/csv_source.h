#pragma once
// Tables of the accounting package as text files, one a table, the columns named by the first line. Programs write such
// files in several ways, so code page, separator and decimal separator are found out from the bytes.

#include "import/accounting/accounting_source.h"

namespace kv {

/// How a file of separated values is written.
struct CsvForm {
  bool utf8 = true;             ///< else Windows-1252
  char separator = ';';         ///< between fields: ';', ',', tab or '|'
  char decimalSeparator = ',';  ///< in numbers: ',' or '.'
};

/// Splits a text into records of fields: a field in double quotes may hold separators, line ends and, doubled, quotes.
/// Records end at CR LF, LF or CR; lines without any character are passed over. A quote that is never closed reaches
/// to the end. Source: RFC 4180, with the line ends of any system.
std::vector<std::vector<std::string>> splitCsv(std::string_view text, char separator);
/// The text of a file as UTF-8: UTF-16 by its byte order mark, UTF-8 when all of it is, else Windows-1252.
std::string decodeCsv(std::string_view bytes, CsvForm& form);
/// The separator that the first record has most of; ';' when it has none.
char separatorOf(std::string_view text);
/// The decimal separator of the numbers among these texts: the last one before one, two, four or more digits; what is
/// in groups of three alone tells nothing, and ',' holds unless it separates the fields.
char decimalSeparatorOf(const std::vector<std::string>& numbers, char separator);
/// A number written with this decimal separator as a text with "." for decimals and no group signs.
/// "1.234,50" with ',' is "1234.50".
std::string plainCsvNumber(std::string_view text, char decimalSeparator);

/// Opens a folder with `Categoria.csv` and `Articoli.csv`, or with `Nomi.csv`, names in any case. Missing when they
/// aren't there.
Result<std::unique_ptr<AccountingSource>> openCsvSource(const std::string& folder);

}  // namespace kv
