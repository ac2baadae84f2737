#include "platform/sheet/cell_table.h"

#include <algorithm>

namespace kv {

bool CellTable::append(std::string_view text, bool isNumber) {
  const std::size_t most = std::min(limits_.cellBytes, limits_.textBytes - text_.size());
  if (ends_.size() >= limits_.cells || text.size() > most) return false;
  text_.append(text);
  ends_.push_back(static_cast<std::uint32_t>(text_.size()) | (isNumber ? numberMark : 0U));
  return true;
}

bool CellTable::add(std::string_view text, bool isNumber) {
  if (text.empty()) {
    ++skipped_;
    return true;
  }
  const std::size_t inRow = ends_.size() - starts_.back();
  if (skipped_ >= limits_.columns || inRow + skipped_ >= limits_.columns) return false;
  for (; skipped_ > 0; --skipped_) {
    if (!append({}, false)) return false;
  }
  return append(text, isNumber);
}

bool CellTable::endRow(std::uint32_t line) {
  skipped_ = 0;
  if (ends_.size() == starts_.back()) return true;
  if (lines_.size() >= limits_.rows) return false;
  width_ = std::max(width_, ends_.size() - starts_.back());
  starts_.push_back(static_cast<std::uint32_t>(ends_.size()));
  lines_.push_back(line);
  return true;
}

bool CellTable::repeatRow(std::uint32_t line) {
  if (lines_.empty()) return true;
  const std::size_t row = lines_.size() - 1, cells = width(row);
  for (std::size_t column = 0; column < cells; ++column) {
    const SheetCell from = cell(row, column);
    // The text may move while it grows.
    if (!add(std::string(from.text), from.isNumber)) return false;
  }
  return endRow(line);
}

void CellTable::dropRows(std::size_t count) {
  count = std::min(count, rows());
  // The cells before the first row stay where they are: the start of a row says where it begins.
  starts_.erase(starts_.begin(), starts_.begin() + static_cast<std::ptrdiff_t>(count));
  lines_.erase(lines_.begin(), lines_.begin() + static_cast<std::ptrdiff_t>(count));
}

}  // namespace kv
