#include "import/tables/header_row.h"

#include <algorithm>
#include <unordered_set>

#include "import/tables/cell_reading.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t mostHeaderRows = 10;  // a headline has fewer rows
constexpr std::size_t longestHeader = 60;   // bytes; a longer text is none
constexpr std::size_t mostOfRow = 40;       // characters of a row in a list

std::size_t candidates(const ReadSheet& sheet) {
  return sheet.reading.form == SheetForm::Feed ? std::min<std::size_t>(sheet.cells.rows(), 1)
                                               : std::min(sheet.cells.rows(), mostHeaderRows);
}

/// Every plain header that names a column.
std::unordered_set<std::string> knownHeaders(const SheetTable& table) {
  std::unordered_set<std::string> known;
  for (const TableColumn& column : table.columns) {
    for (const std::string* name : {&column.name, &column.italian, &column.english, &column.formerItalian}) {
      known.insert(plainHeader(*name));
    }
    for (const std::string_view other : exportHeaders(column.name)) known.insert(plainHeader(other));
  }
  known.erase("");
  return known;
}

std::size_t namedOf(const std::unordered_set<std::string>& known, const ReadSheet& sheet, std::size_t row) {
  std::unordered_set<std::string> found;
  for (std::size_t i = 0; i < sheet.cells.width(row); ++i) {
    const SheetCell cell = sheet.cells.cell(row, i);
    if (cell.isNumber || cell.text.empty() || cell.text.size() > longestHeader) continue;
    std::string plain = plainHeader(cell.text);
    if (known.contains(plain)) found.insert(std::move(plain));
  }
  return found.size();
}

/// The texts of a row as long as its headers are.
std::vector<std::string> textsOf(const ReadSheet& sheet, std::size_t row) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < sheet.cells.width(); ++i) texts.emplace_back(trim(sheet.cells.cell(row, i).text));
  return texts;
}

}  // namespace

std::vector<HeaderRow> headerRowsOf(const ReadSheet& sheet) {
  std::vector<HeaderRow> rows;
  for (std::size_t row = 0; row < candidates(sheet); ++row) {
    std::string text;
    for (std::size_t i = 0; i < sheet.cells.width(row) && text.size() <= mostOfRow; ++i) {
      const std::string_view cell = trim(sheet.cells.cell(row, i).text);
      if (!cell.empty()) text += (text.empty() ? "" : ", ") + std::string(cell);
    }
    rows.push_back({sheet.cells.line(row), beginningOf(text, mostOfRow)});
  }
  return rows;
}

HeaderFound headerRowOf(const SheetTable& table, const ReadSheet& sheet, const Settings& settings) {
  const std::size_t rows = candidates(sheet);
  const auto known = knownHeaders(table);
  for (std::size_t row = 0; row < rows; ++row) {
    if (!keptMapping(settings, table, textsOf(sheet, row))) continue;
    return {row, std::max(namedOf(known, sheet, row), fewestNames)};
  }
  HeaderFound best;
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t named = namedOf(known, sheet, row);
    if (named > best.named && (row == 0 || named >= fewestNames)) best = {row, named};
  }
  return best;
}

std::optional<std::size_t> rowOfLine(const ReadSheet& sheet, std::uint32_t line) {
  for (std::size_t row = 0; row < sheet.cells.rows() && sheet.cells.line(row) <= line; ++row) {
    if (sheet.cells.line(row) == line) return row;
  }
  return std::nullopt;
}

std::string headerRowText(const std::vector<HeaderRow>& rows, const ReadSheet& sheet) {
  const bool isFirst = rows.empty() || sheet.cells.rows() == 0 || rows.front().line == sheet.cells.line(0);
  return isFirst ? "" : ", intestazioni alla riga " + std::to_string(sheet.cells.line(0));
}

}  // namespace kv
