// The parser of seed files: a state machine over lines, one open section at a time.
#include "seed_file.h"

#include <algorithm>
#include <map>

#include "platform/text/text.h"

namespace kv {
namespace {

std::string_view stripped(std::string_view text) {
  constexpr std::string_view spaces = " \t\r";
  const auto first = text.find_first_not_of(spaces);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(spaces) - first + 1);
}

std::vector<std::string> cellsOf(std::string_view line) {
  std::vector<std::string> cells;
  for (std::size_t from = 0;;) {
    const auto bar = line.find('|', from);
    cells.emplace_back(stripped(line.substr(from, bar == std::string_view::npos ? bar : bar - from)));
    if (bar == std::string_view::npos) return cells;
    from = bar + 1;
  }
}

class Parser {
 public:
  explicit Parser(std::string file) : file_(std::move(file)) {}

  Result<std::vector<SeedRow>> run(std::string_view text) {
    for (const std::string_view line : splitLines(text)) {
      ++line_;
      if (Result<> done = take(line); !done) return fail(done.error());
    }
    close();
    return std::move(rows_);
  }

 private:
  enum class Section { None, Row, Every, ListHead, List };

  tl::unexpected<Error> wrong(std::string what) const {
    return fail(ErrorKind::Malformed, file_ + ":" + std::to_string(line_), std::move(what));
  }

  Result<> take(std::string_view line) {
    if (fromWindows1252(toWindows1252(line)) != line) return wrong("a character that Windows-1252 lacks");
    if (line.starts_with("  ")) return takeIndented(stripped(line));
    const std::string_view bare = stripped(line);
    if (bare.empty()) {
      if (block_) ++pendingLines_;
      return {};
    }
    if (line.front() == '#') return {};
    if (line.front() == '[') return open(bare);
    if (section_ == Section::ListHead || section_ == Section::List) return takeCells(bare);
    return takeField(bare);
  }

  Result<> takeIndented(std::string_view text) {
    if (!block_) return text.empty() ? Result<>{} : wrong("an indented line without a column above it");
    if (text.empty()) {
      ++pendingLines_;
      return {};
    }
    std::string& value = row_.fields.back().text;
    if (!value.empty()) {
      const int breaks = keepLines_ ? pendingLines_ + 1 : pendingLines_ == 0 ? 0 : pendingLines_ + 1;
      for (int i = 0; i < breaks; ++i) value += "\r\n";
      if (breaks == 0) value += ' ';
    }
    value += text;
    pendingLines_ = 0;
    return {};
  }

  Result<> open(std::string_view line) {
    close();
    if (line.back() != ']') return wrong("a section line without its ]");
    const std::string_view inside = stripped(line.substr(1, line.size() - 2));
    const auto space = inside.find(' ');
    std::string first(inside.substr(0, space));
    std::string second(space == std::string_view::npos ? "" : stripped(inside.substr(space)));
    if (first.empty()) return wrong("a section without a table");
    section_ = first == "every" ? Section::Every : first == "list" ? Section::ListHead : Section::Row;
    const bool more = first == "more";
    row_ = SeedRow{more ? "" : first, second, more, file_, line_, {}};
    if (more && second.empty()) return wrong("[more] needs the name of a row");
    if (section_ == Section::Row) return {};
    if (second.empty()) return wrong("[" + first + "] needs a table");
    row_.table = second;
    row_.name.clear();
    return {};
  }

  Result<> takeField(std::string_view line) {
    if (section_ == Section::None) return wrong("a column outside of any section");
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) return wrong("expected \"column: text\"");
    std::string column(stripped(line.substr(0, colon)));
    if (row_.find(column) != nullptr) return wrong("the column " + column + " is given twice");
    std::string text(stripped(line.substr(colon + 1)));
    keepLines_ = text == "|";
    if (keepLines_) text.clear();
    block_ = text.empty();
    pendingLines_ = 0;
    row_.fields.push_back({std::move(column), std::move(text), file_, line_});
    return {};
  }

  Result<> takeCells(std::string_view line) {
    std::vector<std::string> cells = cellsOf(line);
    if (section_ == Section::ListHead) {
      columns_ = std::move(cells);
      section_ = Section::List;
      return {};
    }
    if (cells.size() > columns_.size()) return wrong("more cells than columns");
    SeedRow row{row_.table, "", false, file_, line_, {}};
    for (std::size_t i = 0; i < cells.size(); ++i)
      if (!cells[i].empty()) row.fields.push_back({columns_[i], std::move(cells[i]), file_, line_});
    add(std::move(row));
    return {};
  }

  void close() {
    block_ = false;
    if (section_ == Section::Every) every_[row_.table] = row_.fields;
    if (section_ == Section::Row) add(std::move(row_));
    section_ = Section::None;
    row_ = {};
  }

  void add(SeedRow row) {
    if (const auto defaults = every_.find(row.table); defaults != every_.end())
      for (const SeedField& field : defaults->second)
        if (row.find(field.column) == nullptr) row.fields.push_back(field);
    rows_.push_back(std::move(row));
  }

  std::string file_;
  int line_ = 0;
  Section section_ = Section::None;
  bool block_ = false;  // the last field began with no text: indented lines belong to it
  bool keepLines_ = false;
  int pendingLines_ = 0;  // empty lines of the block since its last text
  SeedRow row_;
  std::vector<std::string> columns_;
  std::map<std::string, std::vector<SeedField>> every_;
  std::vector<SeedRow> rows_;
};

}  // namespace

const SeedField* SeedRow::find(std::string_view column) const {
  for (const SeedField& field : fields)
    if (field.column == column) return &field;
  return nullptr;
}

std::string lineOf(const SeedRow& row) { return row.file + ":" + std::to_string(row.line); }

std::string lineOf(const SeedField& field) { return field.file + ":" + std::to_string(field.line); }

Result<std::vector<SeedRow>> parseSeed(const std::string& file, std::string_view text) {
  return Parser(file).run(text);
}

Result<std::vector<SeedRow>> joinRows(std::vector<SeedRow> rows) {
  std::vector<SeedRow> joined;
  for (SeedRow& row : rows) {
    if (!row.more) {
      joined.push_back(std::move(row));
      continue;
    }
    const auto named = std::find_if(joined.begin(), joined.end(), [&](const SeedRow& r) { return r.name == row.name; });
    if (named == joined.end()) return fail(ErrorKind::Missing, lineOf(row), "no row above is named @" + row.name);
    for (SeedField& field : row.fields) {
      if (named->find(field.column) != nullptr)
        return fail(ErrorKind::Malformed, lineOf(field), "the column " + field.column + " is given twice");
      named->fields.push_back(std::move(field));
    }
  }
  return joined;
}

}  // namespace kv
