#pragma once
// Tables of the accounting package as text files, one a table, the columns named by the first line. Programs write such
// files in several ways, so code page, separator and decimal separator are found out from the bytes. What has more than
// SheetLimits allow is refused before it takes the memory.

#include "import/accounting/accounting_source.h"

namespace kv {

/// A number written with this decimal separator as a text with "." for decimals and no group signs.
/// "1.234,50" with ',' is "1234.50".
std::string plainCsvNumber(std::string_view text, char decimalSeparator);

/// Opens a folder with `Categoria.csv` and `Articoli.csv`, or with `Nomi.csv`, names in any case. Missing when they
/// aren't there.
Result<std::unique_ptr<AccountingSource>> openCsvSource(const std::string& folder);

}  // namespace kv
