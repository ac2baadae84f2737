#include "support/golden_blocks.h"

#include <algorithm>
#include <cstdlib>

#include "platform/text/text.h"

namespace kv::test {
namespace {

constexpr std::string_view copiesColumn = "x";

// Tables with one row.
bool isSingle(std::string_view table) {
  return table == "generale" || table == "lingue" || table == "pagamento" || table.starts_with("zona");
}

// The index after the closing quote of a cell that begins at `start`; npos when it has none.
std::size_t quotedEnd(std::string_view line, std::size_t start) {
  for (std::size_t at = line.find('"', start + 1); at != std::string_view::npos; at = line.find('"', at + 1)) {
    const std::size_t next = line.find_first_not_of(' ', at + 1);
    if (next == std::string_view::npos || line[next] == '|') return at + 1;
  }
  return std::string_view::npos;
}

// The index of the "|" that ends the cell beginning at `start`; npos for the last one. The quote that keeps a "|" in a
// cell begins the cell, or the value after "column = ".
std::size_t cellEnd(std::string_view line, std::size_t start) {
  const std::size_t bar = line.find('|', start);
  std::size_t quote = line.find_first_not_of(' ', start);
  if (const std::size_t equals = line.find(" = ", start); quote < bar && line[quote] != '"' && equals < bar)
    quote = line.find_first_not_of(' ', equals + 3);
  if (quote == std::string_view::npos || line[quote] != '"') return bar;
  const std::size_t end = quotedEnd(line, quote);
  return end == std::string_view::npos ? bar : line.find('|', end);
}

// What a head says: the block, with what each row of a table has, and the columns of such a table.
struct BlockHead {
  RowBlock block;
  std::vector<std::string> columns;
};

int numberOf(const std::string& digits) { return std::atoi(digits.c_str()); }

std::pair<std::string, std::string> readField(const std::string& cell, std::size_t equals) {
  return {cell.substr(0, equals), std::string(trim(std::string_view(cell).substr(equals + 3)))};
}

BlockHead readTableHead(std::string_view table, std::string_view cells) {
  BlockHead head{{std::string(table), 1, {}}, {}};
  for (const std::string& cell : splitCells(cells)) {
    const std::size_t equals = cell.find(" = ");
    if (equals == std::string::npos) {
      head.columns.push_back(cell);
    } else {
      head.block.fields.push_back(readField(cell, equals));
    }
  }
  return head;
}

BlockHead readHead(std::string_view line) {
  const std::string_view inside = line.substr(1, line.size() - 2);
  if (const std::size_t colon = inside.find(": "); colon != std::string_view::npos)
    return readTableHead(inside.substr(0, colon), inside.substr(colon + 2));
  const std::size_t times = inside.find(" x ");
  if (times == std::string_view::npos) return {{std::string(inside), 1, {}}, {}};
  return {{std::string(inside.substr(0, times)), numberOf(std::string(inside.substr(times + 3))), {}}, {}};
}

Result<RowBlock> readTableRow(const BlockHead& head, std::string_view line) {
  const std::vector<std::string> cells = splitCells(line);
  if (cells.size() != head.columns.size()) return fail(ErrorKind::Malformed, head.block.table, std::string(line));
  RowBlock row = head.block;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (head.columns[i] == copiesColumn) {
      row.count = numberOf(cells[i]);
    } else if (!cells[i].empty()) {
      row.fields.emplace_back(head.columns[i], cells[i]);
    }
  }
  return row;
}

Result<> readColumns(RowBlock& block, std::string_view line) {
  for (const std::string& cell : splitCells(line)) {
    const std::size_t equals = cell.find(" = ");
    if (equals == std::string::npos) return fail(ErrorKind::Malformed, block.table, std::string(line));
    block.fields.push_back(readField(cell, equals));
  }
  return {};
}

// The lines up to ">>>", as the text of a column; `i` is left on that line.
std::string textField(const std::vector<std::string_view>& lines, std::size_t& i) {
  std::string text;
  for (const std::size_t first = ++i; i < lines.size() && lines[i] != ">>>"; ++i)
    text += (i > first ? "\r\n" : "") + std::string(lines[i]);
  return text;
}

void setColumns(RowBlock& into, const RowBlock& from) {
  for (const auto& field : from.fields) {
    const auto given = std::ranges::find(into.fields, field.first, &std::pair<std::string, std::string>::first);
    if (given == into.fields.end()) {
      into.fields.push_back(field);
    } else {
      given->second = field.second;
    }
  }
}

// Each table of one row once, with the columns of all its blocks.
std::vector<RowBlock> joinSingles(const std::vector<RowBlock>& blocks) {
  std::vector<RowBlock> joined;
  for (const RowBlock& block : blocks) {
    const auto first = std::ranges::find(joined, block.table, &RowBlock::table);
    if (isSingle(block.table) && first != joined.end()) {
      setColumns(*first, block);
    } else {
      joined.push_back(block);
    }
  }
  return joined;
}

}  // namespace

std::vector<std::string> splitCells(std::string_view line) {
  std::vector<std::string> cells;
  for (std::size_t start = 0;;) {
    const std::size_t end = cellEnd(line, start);
    cells.emplace_back(trim(line.substr(start, end == std::string_view::npos ? end : end - start)));
    if (end == std::string_view::npos) return cells;
    start = end + 1;
  }
}

Result<std::vector<RowBlock>> readBlocks(std::string_view text) {
  std::vector<RowBlock> blocks;
  BlockHead head;
  const std::vector<std::string_view> lines = splitLines(text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string_view line = lines[i];
    if (trim(line).empty() || line.front() == '#') continue;
    if (line.front() == '[') {
      head = readHead(line);
      if (head.columns.empty()) blocks.push_back(head.block);
    } else if (!head.columns.empty()) {
      auto row = readTableRow(head, line);
      if (!row) return fail(row.error());
      blocks.push_back(std::move(*row));
    } else if (blocks.empty()) {
      return fail(ErrorKind::Malformed, "rows", std::string(line));
    } else if (line.ends_with(" <<<")) {
      std::string column(line.substr(0, line.size() - 4));
      blocks.back().fields.emplace_back(std::move(column), textField(lines, i));
    } else if (auto read = readColumns(blocks.back(), line); !read) {
      return fail(read.error());
    }
  }
  return joinSingles(blocks);
}

}  // namespace kv::test
