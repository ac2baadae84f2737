#pragma once
// Spreadsheets in and out: XLSX and ODS files and feeds of products read into tables of cells, XLSX files written. What
// a cell shows by its formula is read, never the formula. Sources: ECMA-376 part 1 (SpreadsheetML), OASIS
// OpenDocument 1.3 part 3.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"
#include "platform/sheet/cell_table.h"
#include "platform/sheet/packed_file.h"

namespace kv {

/// Which form a file has, told from its content whatever its name says.
enum class SheetForm {
  Text,
  Xlsx,
  Ods,
  Feed  ///< items of RSS 2.0 or Atom, a row for each; the columns are the names of their elements
};

/// The form of a file. Failures as readBytes; Malformed with ProtectedSheet or OldSheet for a binary sheet, with
/// NoFault for a packed file, a binary file or a web page that is no sheet.
Result<SheetForm> sheetFormOf(const std::string& path);

/// What of a file is read, and how far it may go.
struct SheetRequest {
  std::size_t sheet = 0;  ///< index among the sheets of the file
  SheetLimits limits;
  std::function<bool()> goOn = {};  ///< asked now and then; false ends the reading as Cancelled
};

/// A sheet and the names of all of its file.
struct SheetContent {
  std::vector<std::string> names;
  CellTable cells;
};

/// Reads one sheet. Dates are "2024-05-31", with " 13:45:00" where there is a time; booleans "1" and "0"; percents the
/// number that is shown; merged cells hold their text in the first one. Missing when there is no such sheet, else as
/// PackedFile::readXml; Malformed with TooLargeSheet beyond the limits.
Result<SheetContent> readSpreadsheet(const std::string& path, SheetForm form, const SheetRequest& request);

/// How a cell is written that is more than its text.
enum class CellLook : std::uint8_t {
  Text,
  Number,  ///< digits, "." for decimals
  Amount,  ///< the same, shown with two decimals
  Moment   ///< "2024-05-31 13:45:00" or "2024-05-31", kept as a date; any other text stays one
};
/// A cell to write.
struct DressedCell {
  std::string_view text;  ///< UTF-8
  CellLook look = CellLook::Text;
};

/// A sheet that is being written, row by row; rows are not kept in memory.
class SheetWriter {
 public:
  /// Starts a file with one sheet; it appears under its name with finish(). ReadOnly, Missing, Full as writeBytes.
  static Result<SheetWriter> create(const std::string& path, const std::string& sheetName);
  SheetWriter(SheetWriter&&) noexcept;
  SheetWriter& operator=(SheetWriter&&) = delete;
  /// Removes what was not finished.
  ~SheetWriter();

  /// Writes a row of cells; of a number the text has "." for decimals and at most 15 digits.
  Result<> row(const std::vector<SheetCell>& cells);
  /// Writes a row of cells with their looks; amounts and dates are shown as Italians write them.
  Result<> dressedRow(const std::vector<DressedCell>& cells);
  /// Sets how wide the first columns are, in characters; before the first row.
  void setWidths(const std::vector<int>& characters);
  /// Ends the file and renames it to its name.
  Result<> finish();

 private:
  struct State;
  explicit SheetWriter(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

}  // namespace kv
