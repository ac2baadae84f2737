#pragma once
// Which row of a sheet names its columns: lists come with a title, a date or an address above their headers.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "import/sheets/sheet_file.h"
#include "import/tables/column_mapping.h"

namespace kv {

/// A row that may name the columns.
struct HeaderRow {
  std::uint32_t line = 0;  ///< its number in the file, from 1
  std::string text;        ///< its first texts: "Codice, Titolo, Prezzo"
};
/// The first rows with text, which may name the columns.
std::vector<HeaderRow> headerRowsOf(const ReadSheet& sheet);

/// How many columns a row names at least that isn't the first one: a word of a cell may happen to be a header.
inline constexpr std::size_t fewestNames = 2;

/// The row that names the columns.
struct HeaderFound {
  std::size_t row = 0;    ///< its index
  std::size_t named = 0;  ///< how many columns of the table it names; at least fewestNames where its mapping was kept
};
/// The first row whose headers have a mapping that was kept, else the first that names most columns. The first row of
/// all is it unless another one names fewestNames and more than it; of a feed it always is.
HeaderFound headerRowOf(const SheetTable& table, const ReadSheet& sheet, const Settings& settings);
/// Index of the row on a line of the file; nothing when no text is on it.
std::optional<std::size_t> rowOfLine(const ReadSheet& sheet, std::uint32_t line);

/// What says where the headers are: ", intestazioni alla riga 3"; empty where they are in the first row with text.
std::string headerRowText(const std::vector<HeaderRow>& rows, const ReadSheet& sheet);

}  // namespace kv
