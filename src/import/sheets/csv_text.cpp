#include "import/sheets/csv_text.h"

#include <algorithm>
#include <array>

#include "import/sheets/number_signs.h"
#include "platform/sheet/packed_file.h"
#include "platform/text/formula_sign.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view separatorLine = "sep=";  // of a first line that names the separator
constexpr std::size_t recordsPerLook = 1024;        // between two looks at the user

/// One walk over a text of separated values.
class CsvWalk {
 public:
  CsvWalk(std::string_view text, char separator, CsvSink& sink, std::optional<CsvLineEnd> lineEnd, std::size_t longest)
      : text_(text), separator_(separator), lineEnd_(lineEnd), longest_(longest), sink_(sink) {
    for (const char c : {separator, '\r', '\n'}) mayEnd_[static_cast<unsigned char>(c)] = true;
  }

  bool run() {
    while (at_ < text_.size()) {
      if (!step()) return false;
    }
    return !started_ || endRecord();
  }

 private:
  /// Takes a field and what ends it.
  bool step() {
    const std::uint32_t line = line_;
    if (!started_) begins_ = line;
    if (!started_ && isEndAt(at_)) {
      passLineEnd();
      return true;
    }
    const std::string_view taken = takeField();
    if (isEndless_) sink_.endless(line);
    if (isEndless_ || !sink_.field(taken)) return false;
    started_ = true;
    return passFieldEnd();
  }
  bool passFieldEnd() {
    if (at_ >= text_.size()) return true;
    if (text_[at_] != separator_) return endAtLineEnd();
    ++at_;
    // A separator at the very end is followed by an empty field.
    return at_ < text_.size() && !isEndAt(at_) ? true : sink_.field({}) && endAtLineEnd();
  }
  bool endAtLineEnd() {
    if (at_ < text_.size()) passLineEnd();
    return endRecord();
  }
  bool endRecord() {
    started_ = false;
    return sink_.endRecord(begins_);
  }
  static bool isLineEnd(char c) { return c == '\r' || c == '\n'; }
  /// Whether a record may end at a byte.
  bool isEndAt(std::size_t at) const {
    if (!isLineEnd(text_[at])) return false;
    if (!lineEnd_) return true;
    if (*lineEnd_ == CsvLineEnd::CrLf) return text_.substr(at).starts_with("\r\n");
    return text_[at] == (*lineEnd_ == CsvLineEnd::Lf ? '\n' : '\r');
  }
  void passLineEnd() {
    const bool isPair = text_[at_] == '\r' && at_ + 1 < text_.size() && text_[at_ + 1] == '\n';
    at_ += isPair && lineEnd_ != CsvLineEnd::Cr ? 2U : 1U;
    ++line_;
  }

  std::string_view takeField() {
    if (text_[at_] != '"') return takePlain();
    const std::size_t close = text_.find('"', at_ + 1);
    const std::size_t after = close == std::string_view::npos ? text_.size() : close + 1;
    const bool isSimple = close != std::string_view::npos && (after == text_.size() || endsField(after));
    if (!isSimple) return takeQuoted();
    const std::string_view field = text_.substr(at_ + 1, close - at_ - 1);
    isEndless_ = field.size() > longest_;
    countLines(field);
    at_ = after;
    return field;
  }
  bool endsField(std::size_t at) const { return text_[at] == separator_ || isEndAt(at); }
  std::string_view takePlain() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && (!mayEnd_[static_cast<unsigned char>(text_[at_])] || !endsField(at_))) ++at_;
    if (lineEnd_) countLines(text_.substr(begin, at_ - begin));
    return text_.substr(begin, at_ - begin);
  }
  /// A field with doubled quotes, or with text after its last quote.
  std::string_view takeQuoted() {
    scratch_.clear();
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == '"') {
        if (at_ + 1 >= text_.size() || text_[at_ + 1] != '"') break;
        ++at_;
      }
      isEndless_ = scratch_.size() >= longest_;
      if (isEndless_) return scratch_;
      scratch_ += text_[at_];
    }
    countLines(scratch_);
    if (at_ < text_.size()) {
      ++at_;
      scratch_ += takePlain();
    }
    return scratch_;
  }
  void countLines(std::string_view field) {
    if (field.find('\n') == std::string_view::npos && field.find('\r') == std::string_view::npos) return;
    for (std::size_t i = 0; i < field.size(); ++i) {
      const bool isPair = field[i] == '\r' && i + 1 < field.size() && field[i + 1] == '\n';
      if (isLineEnd(field[i]) && !isPair) ++line_;
    }
  }

  std::string_view text_;
  char separator_;
  std::optional<CsvLineEnd> lineEnd_;
  std::size_t longest_;
  CsvSink& sink_;
  std::array<bool, 256> mayEnd_{};  // by byte: what a field without quotes may end at
  std::size_t at_ = 0;
  std::uint32_t line_ = 1, begins_ = 1;
  bool started_ = false;    // the record has a field
  bool isEndless_ = false;  // the last field is longer than it may be
  std::string scratch_;
};

/// Fills a table of cells.
class CellSink final : public CsvSink {
 public:
  CellSink(CellTable& cells, const std::function<bool()>& goOn) : cells_(cells), goOn_(goOn) {}
  bool field(std::string_view text) override { return cells_.add(unguardedCsvText(text)); }
  bool endRecord(std::uint32_t line) override {
    isCancelled_ = goOn_ && ++records_ % recordsPerLook == 0 && !goOn_();
    return !isCancelled_ && cells_.endRow(line);
  }
  void endless(std::uint32_t line) override { endlessLine_ = line; }
  /// Why the walk ended before the text did.
  Error failure() const {
    if (isCancelled_) return {ErrorKind::Cancelled, "", "cancelled"};
    if (endlessLine_ == 0) return {ErrorKind::Malformed, "", "too large", TooLargeSheet};
    return {ErrorKind::Malformed, "", std::to_string(endlessLine_), EndlessCell};
  }

 private:
  CellTable& cells_;
  const std::function<bool()>& goOn_;
  std::size_t records_ = 0;
  bool isCancelled_ = false;
  std::uint32_t endlessLine_ = 0;  // 0: none
};

/// Whether a spreadsheet would run a text as a formula, the apostrophes before it left out.
bool isFormula(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of('\''), text.size()));
  if (!hasFormulaSign(text)) return false;
  const bool isSigned = text.front() == '+' || text.front() == '-';
  return !isSigned || text.find_first_not_of("0123456789., ", 1) != std::string_view::npos;
}

/// The separator that a first line names.
std::optional<char> namedSeparator(std::string_view text) {
  if (!startsWithIgnoringCase(text, separatorLine) || text.size() == separatorLine.size()) return std::nullopt;
  const char named = text[separatorLine.size()];
  if (std::ranges::find(csvSeparators, named) == csvSeparators.end()) return std::nullopt;
  return named;
}

}  // namespace

std::string guardedCsvText(std::string_view text) { return (isFormula(text) ? "'" : "") + std::string(text); }

std::string_view unguardedCsvText(std::string_view text) {
  return text.starts_with('\'') && isFormula(text) ? text.substr(1) : text;
}

bool walkCsv(std::string_view text, char separator, CsvSink& sink, std::optional<CsvLineEnd> lineEnd,
             std::size_t longest) {
  return CsvWalk(text, separator, sink, lineEnd, longest).run();
}

char separatorOf(std::string_view text) {
  if (const auto named = namedSeparator(text)) return *named;
  std::array<std::ptrdiff_t, csvSeparators.size()> counts{};
  bool quoted = false;
  for (const char c : text) {
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    if (c == '\r' || c == '\n') break;
    const auto found = std::ranges::find(csvSeparators, c);
    if (found != csvSeparators.end()) ++counts[static_cast<std::size_t>(found - csvSeparators.begin())];
  }
  const auto most = std::ranges::max_element(counts);
  return *most == 0 ? ';' : csvSeparators[static_cast<std::size_t>(most - counts.begin())];
}

CsvLineEnd csvLineEndOf(std::string_view text) {
  bool quoted = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '"') quoted = !quoted;
    if (quoted) continue;
    if (text[at] == '\n') return CsvLineEnd::Lf;
    if (text[at] == '\r') return at + 1 < text.size() && text[at + 1] == '\n' ? CsvLineEnd::CrLf : CsvLineEnd::Cr;
  }
  return CsvLineEnd::CrLf;
}

Result<CellTable> readCsv(std::string_view bytes, const CsvChoice& choice, const SheetLimits& limits,
                          CsvReading& reading, const std::function<bool()>& goOn) {
  reading.encoding = choice.encoding.value_or(csvEncodingOf(bytes));
  // What isn't UTF-8 is held a second time, as UTF-8.
  const bool isUtf8 = reading.encoding == CsvEncoding::Utf8 || reading.encoding == CsvEncoding::Utf8Mark;
  if (bytes.size() > (isUtf8 ? limits.textBytes : limits.textBytes / 2)) {
    return fail(ErrorKind::Malformed, "", "too large", TooLargeSheet);
  }
  std::string decoded;
  const std::string_view text = decodedCsv(bytes, reading.encoding, decoded);
  reading.separator = choice.separator.value_or(separatorOf(text));
  reading.lineEnd = choice.lineEnd.value_or(csvLineEndOf(text));
  CellTable cells(limits);
  CellSink sink(cells, goOn);
  if (!walkCsv(text, reading.separator, sink, choice.lineEnd, longestCsvField)) return fail(sink.failure());
  // The line that names the separator is no row.
  const bool isNamed = startsWithIgnoringCase(text, separatorLine) && cells.rows() > 0 && cells.width(0) <= 1;
  if (isNamed) cells.dropRows(1);
  fillSigns(cells, choice, reading);
  return cells;
}

void appendCsvField(std::string& line, std::string_view text, char separator) {
  const std::array<char, 4> special{'"', '\r', '\n', separator};
  if (text.find_first_of(std::string_view(special.data(), special.size())) == std::string_view::npos) {
    line += text;
    return;
  }
  line += '"';
  for (const char c : text) {
    if (c == '"') line += '"';
    line += c;
  }
  line += '"';
}

}  // namespace kv
