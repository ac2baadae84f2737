#pragma once
// Writing cells of the sheet, by the rules of the fields of the main window: one step of the history for all of them.

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "shell/sheet/sheet_columns.h"
#include "shell/sheet/sheet_names.h"
#include "store/catalogue/undo_history.h"

namespace kv {

/// A text for a cell.
struct CellText {
  std::int64_t article = 0;
  std::size_t column = 0;  ///< index of the column
  std::string text;        ///< as it is typed or pasted: numbers in either notation, lines end with "\n"
  bool isTyped = true;     ///< false: characters that can't be typed there are kept
};

/// What is to be said of a cell, in Italian: why it keeps its former value, or how an ambiguous number was read.
struct CellNote {
  std::int64_t article = 0;
  std::size_t column = 0;
  std::string why;
};

/// What became of the cells.
struct SheetOutcome {
  std::size_t changed = 0;        ///< cells with another value than before
  std::vector<CellNote> refused;  ///< cells that keep their former value
  std::vector<CellNote> noted;    ///< cells whose text could be read in two ways
  std::size_t outside = 0;        ///< pasted cells for which the sheet has no row or column
};

/// What a change of many cells would make of one of them, for its preview.
struct CellChange {
  std::int64_t article = 0;
  std::size_t column = 0;
  std::string before, after;  ///< as the cell shows them
  std::string why;            ///< why it can't be changed, in Italian; empty: it can
};
/// The cells that put changes into effect; what can't be changed is left out.
std::vector<CellText> cellsOf(std::span<const CellChange> changes);

struct CellReading;

class SheetEdits {
 public:
  /// All outlive it.
  SheetEdits(Session& session, UndoHistory& history, std::span<const SheetColumn> columns, char decimalSeparator)
      : session_(session), history_(history), columns_(columns), separator_(decimalSeparator) {}

  /// Writes cells as one transaction and one step of this name. A refused cell doesn't stop the others; articles that
  /// are gone are passed over. Articles that get another department go to its end, in the order of the shop. A failure
  /// of the store leaves every row as it was.
  Result<SheetOutcome> write(const std::string& step, std::vector<CellText> cells);

 private:
  Result<> writeAll(std::vector<CellText>& cells, SheetOutcome& outcome);
  /// Reads the names of departments and variants, when a cell is one of them.
  Result<> readNames(std::span<const CellText> cells);
  Result<> writeRow(Recordset& rows, std::span<const CellText> cells, SheetOutcome& outcome);
  /// Writes a cell into its row, which is edited from the first that changes; whether it is edited then.
  Result<bool> writeCell(Recordset& rows, const CellText& cell, bool isEdited, SheetOutcome& outcome);
  /// Sets a value in the row that is edited; a value that the column doesn't take is refused.
  Result<> setCell(Recordset& rows, const CellText& cell, const CellReading& reading, SheetOutcome& outcome);
  /// The columns that the cells change, and the ID before them.
  std::string fieldsOf(std::span<const CellText> cells) const;
  CellReading readingOf(Recordset& rows, const CellText& cell) const;
  /// Notes that an article goes to another department, or refuses it.
  Result<> noteMove(const CellText& cell, SheetOutcome& outcome);
  Result<> moveArticles();

  Session& session_;
  UndoHistory& history_;
  std::span<const SheetColumn> columns_;
  char separator_;
  SheetNames names_;                           ///< read when the first cell needs them
  std::map<std::int64_t, std::string> moves_;  ///< article -> its new department
};

/// A block of cells as text, as a spreadsheet puts it on the clipboard: cells parted by tabs, rows by "\n". A cell with
/// a tab, a line end or a quote is in quotes, its own ones doubled.
std::string copiedBlock(const std::vector<std::vector<std::string>>& rows);
/// The rows of such a text; a line end at its end opens no further row. Reads CR LF as well. Quotes that a cell doesn't
/// need, or that have no end, belong to its text.
std::vector<std::vector<std::string>> pastedBlock(std::string_view text);

}  // namespace kv
