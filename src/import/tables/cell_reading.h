#pragma once
// A cell of a sheet as the value of its column, and the value of a column as the text of a cell.

#include <optional>
#include <string>
#include <string_view>

#include "import/sheets/csv_text.h"
#include "import/tables/catalogue_names.h"
#include "import/tables/table_columns.h"
#include "platform/database/database.h"

namespace kv {

/// A cell that was read: its value, or why it can't be one.
struct CellValue {
  Value value;
  std::string refusal;  ///< in Italian; empty where the value holds
};

/// Reads cells by what a sheet's texts mean. What it is made from outlives it.
class CellReader {
 public:
  /// signs: decimal separator and sign between groups of the sheet; names: of departments and variants.
  CellReader(const CsvReading& signs, const CatalogueNames& names) : signs_(signs), names_(names) {}

  /// The value that a column would take. An empty cell is Null, of a flag false. Pictures give their text.
  CellValue read(const TableColumn& column, const SheetCell& cell) const;
  /// Why read() would refuse a cell; empty where it wouldn't.
  std::string refusal(const TableColumn& column, const SheetCell& cell) const;
  /// What a sheet shows of field `index` of a row; a number with "." for decimals.
  std::string shown(const TableColumn& column, const Statement& row, int index) const;
  /// Whether the field has the value of a cell already.
  bool isSame(const TableColumn& column, const Statement& row, int index, const SheetCell& cell) const;
  /// A text of shown(), or of a cell that read() takes, as the merchant reads it: "," for decimals, amounts with two of
  /// them at least, "sì" and "no", departments and variants as the shop names them; what is no such value stays as it
  /// is.
  std::string plain(const TableColumn& column, const SheetCell& cell) const;
  /// The text by which a cell is found again among the keys: numbers, paths and names in one form.
  std::string keyText(const TableColumn& column, const SheetCell& cell) const;
  /// The same of a row of the catalogue.
  std::string keyText(const TableColumn& column, const Statement& row, int index) const;

 private:
  /// The digits of a cell's number with "." for decimals, in `kept` where the cell's own text doesn't have it so.
  std::optional<std::string_view> digitsOf(const SheetCell& cell, std::string& kept) const;
  /// Whether a text column, or a flag, has what a cell says; nothing for a column whose values are to be compared.
  std::optional<bool> isSameShown(const TableColumn& column, const Statement& row, int index,
                                  const SheetCell& cell) const;
  /// A value that read() gave, as the merchant reads it.
  std::string plainValue(const TableColumn& column, const Value& value) const;
  /// An amount, percentage or count; refused when it is none, negative or too great for the column.
  CellValue readNumber(const TableColumn& column, const SheetCell& cell) const;
  /// A text; refused when it is longer than the column.
  CellValue readText(const TableColumn& column, std::string_view text) const;
  /// The ID of a department or variant; refused when none, or several, have the name.
  CellValue readNamed(const TableColumn& column, std::string_view text) const;

  const CsvReading& signs_;
  const CatalogueNames& names_;
};

/// The first characters of a text for a list or a message, with "..." where it has more.
std::string beginningOf(std::string_view text, std::size_t most);
/// What a word says in a column of yes and no, in Italian, English, French or German; an empty one says no. Nothing for
/// any other text.
std::optional<bool> yesOrNo(std::string_view text);
/// An amount as the merchant writes it: "1234,50".
std::string shownAmount(Money amount);
/// Whether a column's cells are numbers, which a sheet may write with any sign.
bool isNumberField(CellField field);

}  // namespace kv
