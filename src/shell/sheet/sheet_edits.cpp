#include "shell/sheet/sheet_edits.h"

#include <algorithm>
#include <optional>
#include <set>

#include "import/tables/cell_reading.h"
#include "platform/database/recordset.h"
#include "platform/ports/failure_text.h"
#include "platform/text/single_line.h"
#include "platform/text/text.h"
#include "shell/sheet/sheet_rows.h"
#include "shell/workbench/fields/field_forms.h"
#include "shell/workbench/fields/field_store.h"
#include "store/catalogue/article_move.h"

namespace kv {

/// What a cell would store, or why it keeps what it has.
struct CellReading {
  std::string why;
  std::string note;            ///< how an ambiguous number was read
  std::optional<Value> value;  ///< empty: it says what it said
};

namespace {

CellReading readFlag(const std::string& text, const std::string& before) {
  const auto on = yesOrNo(text);
  if (!on) {
    return {"\"" + text + "\" non è né sì né no: è rimasto il valore precedente.", {}, {}};
  }
  if (*on == (before == "1")) return {};
  return {{}, {}, Value(*on)};
}

/// The text as the field would have it after it was pasted there.
std::string asPasted(const Editor& editor, const std::string& text, char separator, CellReading& reading) {
  if (!isNumberKind(editor.kind)) {
    if (editor.control == Control::Memo) return text;
    return pasted(editor.kind, singleLine(text), separator);
  }
  const NumberReading number = pastedNumber(editor.kind, text, separator);
  if (!number.isNumber) reading.why = "\"" + text + "\" non è un numero: è rimasto il valore precedente.";
  reading.note = number.note;
  return changedText(editor.kind, number.text, {}, separator);
}

CellReading readVariant(const SheetNames& names, const std::string& text, const std::string& before) {
  if (text == before) return {};
  MeantRow meant = names.variantOf(text);
  // An empty cell and the variant that means none are alike.
  if (trim(text).empty() && names.variant(asInteger(meant.ID)) == before) return {};
  if (!meant.why.empty()) return {std::move(meant.why), {}, {}};
  return {{}, {}, std::move(meant.ID)};
}

CellReading readCell(const SheetColumn& column, const CellText& cell, const std::string& before, char separator) {
  const std::string& text = cell.text;
  if (column.editor == nullptr) return {"Questa colonna non si può modificare qui.", {}, {}};
  if (column.kind == SheetKind::Flag) return readFlag(text, before);
  CellReading reading;
  const std::string typed = cell.isTyped ? asPasted(*column.editor, text, separator, reading) : text;
  if (!reading.why.empty() || typed == before) return reading;
  const FieldText field = readField(*column.editor, column.stored, typed, before, separator);
  reading.why = field.refusal;
  if (reading.why.empty() && field.text != before) reading.value = field.value;
  return reading;
}

/// Whether a number column would hold what it holds: "14,50" is 14.5.
bool isSameNumber(const SheetColumn& column, const Value& stored, const Value& wanted) {
  if (!isNumberType(column.stored.type) || isNull(stored) || isNull(wanted)) return false;
  return column.stored.type == ColumnType::Money ? asMoney(stored) == asMoney(wanted)
                                                 : asNumber(stored) == asNumber(wanted);
}

/// Whether a failure is the value's own, which the column doesn't take, and not the store's.
bool isOfValue(ErrorKind kind) { return kind == ErrorKind::TextInNumber || kind == ErrorKind::Malformed; }

/// The IDs of all articles, ascending: the positions of a set that is sorted by ID.
Result<std::vector<std::int64_t>> allArticles(Database& catalogue) {
  auto row = catalogue.prepare("SELECT ID FROM articoli ORDER BY ID");
  if (!row) return fail(row.error());
  std::vector<std::int64_t> keys;
  for (;;) {
    const auto found = row->step();
    if (!found) return fail(found.error());
    if (!*found) return keys;
    keys.push_back(row->integer(0));
  }
}

/// The cells of a text from a spreadsheet: tabs between cells, line ends between rows, quotes around what holds either.
/// Spreadsheets write any other cell as it is, such as a title that begins with a quote.
class BlockReading {
 public:
  explicit BlockReading(std::string_view text) : text_(text) {}

  std::vector<std::vector<std::string>> rows() {
    if (!text_.empty()) rows_.push_back({""});
    for (; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      isQuoted_ ? readQuoted(c) : readPlain(c);
      startsCell_ = !isQuoted_ && endsCell(c);
    }
    return std::move(rows_);
  }

 private:
  bool isHere(std::string_view part) const { return text_.substr(at_).starts_with(part); }
  static bool endsCell(char c) { return c == '\t' || c == '\n' || c == '\r'; }
  /// Whether the quote here opens a cell in quotes: it has its end, which ends the cell, and a need for them.
  bool opensQuotes() const {
    bool hasNeed = false;
    for (std::size_t at = at_ + 1; at < text_.size(); ++at) {
      hasNeed = hasNeed || endsCell(text_[at]);
      if (text_[at] != '"') continue;
      const bool isLast = at + 1 == text_.size();
      if (isLast || endsCell(text_[at + 1])) return hasNeed || at == at_ + 1;
      if (text_[at + 1] != '"') return false;
      hasNeed = true;
      ++at;
    }
    return false;
  }
  void readQuoted(char c) {
    if (c != '"') {
      if (!isHere("\r\n")) rows_.back().back() += c;
    } else if (isHere("\"\"")) {
      rows_.back().back() += text_[at_++];
    } else {
      isQuoted_ = false;
    }
  }
  void readPlain(char c) {
    if (c == '"' && startsCell_ && opensQuotes()) {
      isQuoted_ = true;
    } else if (c == '\t') {
      rows_.back().emplace_back();
    } else if (c != '\n' && c != '\r') {
      rows_.back().back() += c;
    } else if (!isHere("\r\n") && at_ + 1 < text_.size()) {
      rows_.push_back({""});
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::vector<std::vector<std::string>> rows_;
  bool isQuoted_ = false, startsCell_ = true;
};

}  // namespace

Result<> SheetEdits::writeRow(Recordset& rows, std::span<const CellText> cells, SheetOutcome& outcome) {
  if (auto loaded = rows.load(); !loaded) return loaded;
  bool isEdited = false;
  for (const CellText& cell : cells) {
    if (columns_[cell.column].kind == SheetKind::Department) {
      if (auto noted = noteMove(cell, outcome); !noted) return noted;
      continue;
    }
    const auto written = writeCell(rows, cell, isEdited, outcome);
    if (!written) return fail(written.error());
    isEdited = *written;
  }
  return isEdited ? rows.update() : Result<>();
}

Result<bool> SheetEdits::writeCell(Recordset& rows, const CellText& cell, bool isEdited, SheetOutcome& outcome) {
  const SheetColumn& column = columns_[cell.column];
  const CellReading reading = readingOf(rows, cell);
  if (!reading.why.empty()) outcome.refused.push_back({cell.article, cell.column, reading.why});
  if (!reading.value || isSameNumber(column, rows.get(column.name), *reading.value)) return isEdited;
  if (!isEdited) {
    if (auto begun = rows.edit(); !begun) return fail(begun.error());
  }
  if (auto set = setCell(rows, cell, reading, outcome); !set) return fail(set.error());
  return true;
}

Result<> SheetEdits::setCell(Recordset& rows, const CellText& cell, const CellReading& reading, SheetOutcome& outcome) {
  const SheetColumn& column = columns_[cell.column];
  if (auto set = rows.set(column.name, *reading.value); !set) {
    if (!isOfValue(set.error().kind)) return set;
    const std::string label = column.editor == nullptr ? column.heading : plainLabel(column.editor->label);
    outcome.refused.push_back({cell.article, cell.column, failureText(set.error(), label)});
    return {};
  }
  if (!reading.note.empty()) outcome.noted.push_back({cell.article, cell.column, reading.note});
  ++outcome.changed;
  return {};
}

Result<> SheetEdits::readNames(std::span<const CellText> cells) {
  const auto isOfNames = [&](const CellText& cell) { return isChoice(columns_[cell.column]); };
  if (std::ranges::none_of(cells, isOfNames)) return {};
  auto read = SheetNames::read(session_.catalogue);
  if (!read) return fail(read.error());
  names_ = std::move(*read);
  return {};
}

Result<> SheetEdits::writeAll(std::vector<CellText>& cells, SheetOutcome& outcome) {
  std::ranges::stable_sort(cells, {}, &CellText::article);
  if (auto read = readNames(cells); !read) return read;
  const auto keys = allArticles(session_.catalogue);
  if (!keys) return fail(keys.error());
  auto rows = session_.catalogue.openRecordset("SELECT " + fieldsOf(cells) + " FROM articoli ORDER BY ID");
  if (!rows) return fail(rows.error());
  const std::span<const CellText> all(cells);
  for (std::size_t at = 0, end = 0; at < all.size(); at = end) {
    while (end < all.size() && all[end].article == all[at].article) ++end;
    const auto key = std::ranges::lower_bound(*keys, all[at].article);
    if (key == keys->end() || *key != all[at].article) continue;
    rows->moveTo(static_cast<std::size_t>(key - keys->begin()));
    if (auto done = writeRow(*rows, all.subspan(at, end - at), outcome); !done) return done;
  }
  return moveArticles();
}

std::string SheetEdits::fieldsOf(std::span<const CellText> cells) const {
  std::set<std::string> names;
  for (const CellText& cell : cells) {
    const SheetColumn& column = columns_[cell.column];
    if (isEditable(column) && column.kind != SheetKind::Department) names.insert(column.name);
  }
  std::string fields = "ID";
  for (const std::string& name : names) fields += ", " + name;
  return fields;
}

CellReading SheetEdits::readingOf(Recordset& rows, const CellText& cell) const {
  const SheetColumn& column = columns_[cell.column];
  if (column.kind == SheetKind::Variant) {
    return readVariant(names_, cell.text, names_.variant(asInteger(rows.get(column.name))));
  }
  const std::string before =
      column.editor == nullptr ? "" : shownValue(*column.editor, column.stored, rows.get(column.name), separator_);
  return readCell(column, cell, before, separator_);
}

Result<> SheetEdits::noteMove(const CellText& cell, SheetOutcome& outcome) {
  auto row = session_.catalogue.prepare("SELECT catID FROM articoli WHERE ID = ?1");
  if (!row) return fail(row.error());
  row->bind(1, cell.article);
  const auto found = row->step();
  if (!found) return fail(found.error());
  const std::string before = *found ? names_.department(row->text(0)) : std::string();
  if (cell.text == before) return {};
  const MeantRow meant = names_.departmentOf(cell.text);
  if (!meant.why.empty()) {
    outcome.refused.push_back({cell.article, cell.column, meant.why});
  } else if (asText(meant.ID) != row->text(0)) {
    moves_[cell.article] = asText(meant.ID);
    ++outcome.changed;
  }
  return {};
}

Result<> SheetEdits::moveArticles() {
  if (moves_.empty()) return {};
  SheetRows all(session_, columns_, separator_);
  if (auto read = all.refresh({}, {}); !read) return read;
  std::map<std::string, std::vector<std::int64_t>> toDepartments;
  for (std::size_t row = 0; row < all.size(); ++row) {
    const auto moved = moves_.find(all.article(row));
    if (moved != moves_.end()) toDepartments[moved->second].push_back(moved->first);
  }
  for (const auto& [department, articles] : toDepartments) {
    if (auto done = appendToDepartment(session_.catalogue, department, articles); !done) return done;
  }
  return {};
}

Result<SheetOutcome> SheetEdits::write(const std::string& step, std::vector<CellText> cells) {
  SheetOutcome outcome;
  moves_.clear();
  const auto done = history_.record(step, [&]() -> Result<> {
    if (auto begun = session_.catalogue.begin(); !begun) return begun;
    if (auto written = writeAll(cells, outcome); !written) {
      session_.catalogue.rollback();
      return written;
    }
    return session_.catalogue.commit();
  });
  if (!done) return fail(done.error());
  return outcome;
}

std::vector<CellText> cellsOf(std::span<const CellChange> changes) {
  std::vector<CellText> cells;
  for (const CellChange& change : changes) {
    if (change.why.empty()) cells.push_back({change.article, change.column, change.after, false});
  }
  return cells;
}

std::string copiedBlock(const std::vector<std::vector<std::string>>& rows) {
  std::string text;
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) text += '\t';
      const bool isPlain = row[i].find_first_of("\t\r\n\"") == std::string::npos;
      text += isPlain ? row[i] : "\"" + replaceAll(row[i], "\"", "\"\"") + "\"";
    }
    text += '\n';
  }
  return text;
}

std::vector<std::vector<std::string>> pastedBlock(std::string_view text) { return BlockReading(text).rows(); }

}  // namespace kv
