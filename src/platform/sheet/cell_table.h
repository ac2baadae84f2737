#pragma once
// The cells of a sheet as texts in one piece of memory: a table of two million cells costs four bytes a cell and its
// texts. Rows without any text are left out; each row knows its number in the file.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// The most that a sheet may hold. What has more is refused while it is read, before it takes the memory.
struct SheetLimits {
  std::size_t rows = 1'048'576;                     ///< with text in them
  std::size_t columns = 1024;                       ///< that hold a text in some row
  std::size_t cells = 24'000'000;                   ///< four bytes each
  std::size_t textBytes = std::size_t{128} << 20;   ///< of all cells together, and of a file of text; half of it in
                                                    ///< another encoding than UTF-8
  std::size_t cellBytes = std::size_t{4} << 20;     ///< of one cell: programs hold 32,767 characters in one
  std::uint64_t unpacked = std::uint64_t{1} << 30;  ///< bytes of XML: what a packed file may unpack to, or of a feed
};

/// One cell.
struct SheetCell {
  std::string_view
      text;  ///< UTF-8; of a number its digits, "." for decimals, with zeros before those that its format shows
  bool isNumber = false;  ///< the file says that it is one
  bool operator==(const SheetCell&) const = default;
};

/// Rows of cells, filled from the first to the last.
class CellTable {
 public:
  explicit CellTable(const SheetLimits& limits = {}) : limits_(limits) {}

  /// Adds a cell to the row that is being filled; false when the table is full, and the cell is not added.
  bool add(std::string_view text, bool isNumber = false);
  /// Adds empty cells; nothing is stored for those at the end of a row.
  void skip(std::size_t cells) { skipped_ += cells; }
  /// Ends the row. `line`: its number in the file, from 1. A row without text is left out. False when there are too
  /// many rows.
  bool endRow(std::uint32_t line);
  /// Appends the last row once more, under another number. False when the table is full.
  bool repeatRow(std::uint32_t line);

  std::size_t rows() const { return lines_.size(); }
  /// Cells of the widest row.
  std::size_t width() const { return width_; }
  /// Cells of one row up to its last text.
  std::size_t width(std::size_t row) const { return starts_[row + 1] - starts_[row]; }
  /// A cell, both counted from 0; an empty one after the end of its row. The text lives as long as the table.
  SheetCell cell(std::size_t row, std::size_t column) const {
    if (column >= width(row)) return {};
    const std::size_t index = starts_[row] + column;
    const std::uint32_t begin = index == 0 ? 0 : ends_[index - 1] & ~numberMark;
    const std::uint32_t end = ends_[index] & ~numberMark;
    return {std::string_view(text_.data() + begin, end - begin), (ends_[index] & numberMark) != 0};
  }
  /// The number of a row in its file, from 1.
  std::uint32_t line(std::size_t row) const { return lines_[row]; }
  /// Leaves out the first rows.
  void dropRows(std::size_t count);

 private:
  bool append(std::string_view text, bool isNumber);

  static constexpr std::uint32_t numberMark = 0x80000000U;  // in an end: the cell is a number
  SheetLimits limits_;
  std::string text_;
  std::vector<std::uint32_t> ends_;       // of each cell in text_
  std::vector<std::uint32_t> starts_{0};  // index in ends_ of the first cell of each row, and after the last row
  std::vector<std::uint32_t> lines_;
  std::size_t skipped_ = 0;  // empty cells that are not stored yet
  std::size_t width_ = 0;
};

}  // namespace kv
