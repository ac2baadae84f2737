#pragma once
// The tables of a catalogue as sheets show them: which columns there are, what they are called in a header, and how
// their cells are read. A reader of a sheet knows a column by its own name, its Italian or its English header.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/schema/schema.h"

namespace kv {

/// What a cell of a column holds.
enum class CellField {
  RowKey,  ///< the ID of the row, which is never written
  Text,    ///< one line
  Lines,   ///< text with line ends, CR LF in the catalogue
  Money,
  Percent,  ///< 0 to 100
  Number,   ///< of single precision
  Whole,
  Flag,        ///< "1" or "0"; words for yes and no are read, too
  Mark,        ///< a flag that is stored as "." or nothing
  Department,  ///< a department by its path, "Ceramiche > Tazze", or its ID
  OwnPath,     ///< the path of the department itself
  Variant,     ///< a variant by its name; empty for none
  OwnVariant,  ///< the variant that a value belongs to, by its name
  Picture      ///< a picture by its name in the shop, or the path of a file
};

/// A column of a sheet.
struct TableColumn {
  std::string name;              ///< its own name: that of the catalogue's column, or "reparto", "percorso", "variante"
  std::string italian, english;  ///< headers
  CellField field = CellField::Text;
  std::string stored;                  ///< column of the catalogue
  ColumnType type = ColumnType::Text;  ///< of the catalogue's column
  std::size_t size = 0;                ///< characters that fit; 0: any number
  int language = 0;                    ///< 1 to 4 of a column of a language; 0: all have it
  bool isSigned = false;               ///< may be below 0
  bool isUsual = true;                 ///< written by an export that names no columns
  std::string formerItalian = {};      ///< a header of files that name languages by number; empty: none
};

/// A way to know rows again: the columns that are equal then.
struct TableKey {
  std::string name, caption;
  std::vector<std::string> columns;
};

/// A table of the catalogue as a sheet.
struct SheetTable {
  std::string name;     ///< "articoli": what the command line calls it
  std::string caption;  ///< "Articoli"
  std::string rows;     ///< what its rows are called in messages: "articoli"
  std::string from;     ///< after FROM in a SELECT of its rows
  std::string rowKey;   ///< the whole-number column that rows are changed by
  std::string order;    ///< after ORDER BY
  std::vector<TableKey> keys;
  std::vector<TableColumn> columns;
  bool canAdd = true;  ///< a sheet may bring new rows

  /// Index of a column by its own name; nothing when there is none.
  std::optional<std::size_t> columnIndex(std::string_view column) const;
  /// The key of a name; nothing when there is none.
  const TableKey* key(std::string_view key) const;
};

/// The tables that sheets hold, articles first. Columns that this catalogue hasn't are left out; those of another
/// language than the first one are called by its name, "Titolo (inglese)", or by its number where it has no name of its
/// own. Failures as Database::table.
Result<std::vector<SheetTable>> sheetTables(Database& catalogue, int languageCount);
/// Their names: articoli, reparti, varianti, valori, paesi, spedizione.
std::vector<std::string> sheetTableNames();
/// One of them. Missing when there is none of the name.
Result<SheetTable> sheetTable(Database& catalogue, int languageCount, std::string_view name);

/// Other headers under which product exports of shop programs and merchants know a column, by its own name; none with
/// another unit than the column's.
std::vector<std::string_view> exportHeaders(std::string_view column);

}  // namespace kv
