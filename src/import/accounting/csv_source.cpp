#include "import/accounting/csv_source.h"

#include <algorithm>
#include <array>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

constexpr std::array<char, 4> csvSeparators{';', ',', '\t', '|'};
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::size_t groupDigits = 3;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isUtf8(std::string_view text) {
  for (std::size_t at = utf8::endOfAscii(text, 0); at < text.size();) {
    const utf8::Unit unit = utf8::unitAt(text, at);
    if (!unit.valid) return false;
    at += unit.length;
  }
  return true;
}

/// UTF-16 text after its byte order mark; what is no pair of surrogates becomes U+FFFD.
std::string fromUtf16(std::string_view bytes, bool bigEndian) {
  const auto unitAt = [&](std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes[at]), second = static_cast<unsigned char>(bytes[at + 1]);
    return static_cast<char32_t>(bigEndian ? (first << 8) | second : (second << 8) | first);
  };
  constexpr char32_t highest = 0xDC00, lowest = 0xD800, after = 0xE000, unknown = 0xFFFD;
  std::string text;
  for (std::size_t at = 2; at + 1 < bytes.size(); at += 2) {
    char32_t unit = unitAt(at);
    if (unit >= lowest && unit < after) {
      const char32_t next = at + 3 < bytes.size() ? unitAt(at + 2) : 0;
      const bool isPair = unit < highest && next >= highest && next < after;
      if (isPair) at += 2;
      unit = isPair ? 0x10000 + ((unit - lowest) << 10) + (next - highest) : unknown;
    }
    utf8::append(text, unit);
  }
  return text;
}

/// One walk over a text of separated values.
class CsvReader {
 public:
  CsvReader(std::string_view text, char separator) : text_(text), separator_(separator) {}

  std::vector<std::vector<std::string>> read() {
    while (at_ < text_.size()) step(text_[at_++]);
    endRecord();
    return std::move(records_);
  }

 private:
  void step(char c) {
    if (quoted_) {
      stepQuoted(c);
    } else if (c == '"' && field_.empty()) {
      quoted_ = seen_ = true;
    } else if (c == separator_) {
      record_.push_back(std::move(field_));
      field_.clear();
      seen_ = true;
    } else if (c == '\r' || c == '\n') {
      endRecord();
    } else {
      field_ += c;
    }
  }
  void stepQuoted(char c) {
    if (c != '"') {
      field_ += c;
    } else if (at_ < text_.size() && text_[at_] == '"') {
      field_ += text_[at_++];
    } else {
      quoted_ = false;
    }
  }
  void endRecord() {
    if (!field_.empty() || seen_) {
      record_.push_back(std::move(field_));
      records_.push_back(std::move(record_));
    }
    field_.clear();
    record_.clear();
    seen_ = false;
  }

  std::string_view text_;
  char separator_;
  std::size_t at_ = 0;
  bool quoted_ = false;
  bool seen_ = false;  // the record has something, even if it is an empty field
  std::string field_;
  std::vector<std::string> record_;
  std::vector<std::vector<std::string>> records_;
};

bool isNumberColumn(std::string_view column) {
  return equalsIgnoringCase(column, "iva") || startsWithIgnoringCase(column, "Vendita");
}

/// One file, read whole.
struct CsvTable {
  CsvForm form;
  std::vector<std::vector<std::string>> records;  ///< the first one names the columns

  int columnIndex(std::string_view name) const {
    if (records.empty()) return -1;
    for (std::size_t i = 0; i < records[0].size(); ++i) {
      if (equalsIgnoringCase(trim(records[0][i]), name)) return static_cast<int>(i);
    }
    return -1;
  }
  std::string_view field(std::size_t record, std::size_t column) const {
    return column < records[record].size() ? std::string_view(records[record][column]) : std::string_view();
  }
};

std::vector<std::string> numbersOf(const CsvTable& table) {
  std::vector<std::string> numbers;
  for (std::size_t column = 0; !table.records.empty() && column < table.records[0].size(); ++column) {
    if (!isNumberColumn(trim(table.records[0][column]))) continue;
    for (std::size_t i = 1; i < table.records.size(); ++i) numbers.emplace_back(table.field(i, column));
  }
  return numbers;
}

Result<CsvTable> readCsvTable(const std::string& path) {
  const auto bytes = readBytes(path);
  if (!bytes) return fail(bytes.error());
  CsvTable table;
  const std::string text = decodeCsv(*bytes, table.form);
  table.form.separator = separatorOf(text);
  table.records = splitCsv(text, table.form.separator);
  table.form.decimalSeparator = decimalSeparatorOf(numbersOf(table), table.form.separator);
  return table;
}

std::string csvName(char separator) { return separator == '\t' ? "tabulazione" : std::string(1, separator); }

/// A folder of such files.
class CsvSource final : public AccountingSource {
 public:
  explicit CsvSource(std::string folder) : folder_(std::move(folder)) {}

  Result<std::vector<AccountingRow>> rows(std::string_view table,
                                          const std::vector<std::string>& columns) const override {
    const auto path = findEntry(folder_, std::string(table) + ".csv");
    if (!path) return fail(ErrorKind::Missing, folder_, std::string(table));
    const auto read = readCsvTable(*path);
    if (!read) return fail(read.error());
    std::vector<std::size_t> indexes;
    for (const std::string& column : columns) {
      const int index = read->columnIndex(column);
      if (index < 0) return fail(ErrorKind::Missing, *path, column);
      indexes.push_back(static_cast<std::size_t>(index));
    }
    std::vector<AccountingRow> found;
    for (std::size_t record = 1; record < read->records.size(); ++record) {
      AccountingRow row;
      for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string_view text = read->field(record, indexes[i]);
        row.emplace_back(isNumberColumn(columns[i]) ? plainCsvNumber(text, read->form.decimalSeparator)
                                                    : std::string(text));
      }
      found.push_back(std::move(row));
    }
    return found;
  }

  std::string description() const override {
    std::string text;
    for (const char* name : {"Categoria.csv", "Articoli.csv", "Nomi.csv"}) {
      const auto path = findEntry(folder_, name);
      const auto table = path ? readCsvTable(*path) : fail(ErrorKind::Missing, folder_, name);
      if (!table) continue;
      text += std::string(name) + ": " + (table->form.utf8 ? "Unicode" : "Windows-1252") + ", separatore di campo \"" +
              csvName(table->form.separator) + "\", separatore decimale \"" + table->form.decimalSeparator + "\"\n";
    }
    return text;
  }

 private:
  std::string folder_;
};

}  // namespace

std::vector<std::vector<std::string>> splitCsv(std::string_view text, char separator) {
  return CsvReader(text, separator).read();
}

std::string decodeCsv(std::string_view bytes, CsvForm& form) {
  form.utf8 = true;
  if (bytes.starts_with("\xFF\xFE")) return fromUtf16(bytes, false);
  if (bytes.starts_with("\xFE\xFF")) return fromUtf16(bytes, true);
  if (bytes.starts_with(utf8Mark)) bytes.remove_prefix(utf8Mark.size());
  if (isUtf8(bytes)) return std::string(bytes);
  form.utf8 = false;
  return fromWindows1252(bytes);
}

char separatorOf(std::string_view text) {
  const std::string_view first = text.substr(0, text.find_first_of("\r\n"));
  char best = ';';
  std::ptrdiff_t most = 0;
  for (const char separator : csvSeparators) {
    const auto count = std::ranges::count(first, separator);
    if (count <= most) continue;
    most = count;
    best = separator;
  }
  return best;
}

char decimalSeparatorOf(const std::vector<std::string>& numbers, char separator) {
  std::ptrdiff_t commas = 0, points = 0;
  for (const std::string& number : numbers) {
    const auto last = number.find_last_of(",.");
    if (last == std::string::npos) continue;
    const char sign = number[last];
    const bool repeated = number.find(sign) != last;
    const bool both = number.find(sign == ',' ? '.' : ',') != std::string::npos;
    const auto after = std::count_if(number.begin() + static_cast<std::ptrdiff_t>(last), number.end(), isDigit);
    if (repeated || (!both && static_cast<std::size_t>(after) == groupDigits)) continue;
    ++(sign == ',' ? commas : points);
  }
  if (commas == points) return separator == ',' ? '.' : ',';
  return commas > points ? ',' : '.';
}

std::string plainCsvNumber(std::string_view text, char decimalSeparator) {
  const char groupSign = decimalSeparator == ',' ? '.' : ',';
  std::string plain;
  for (const char c : trim(text)) {
    if (c != groupSign) plain += c == decimalSeparator ? '.' : c;
  }
  return plain;
}

Result<std::unique_ptr<AccountingSource>> openCsvSource(const std::string& folder) {
  const auto has = [&](const char* name) { return findEntry(folder, name).has_value(); };
  if (!has("Nomi.csv") && !(has("Categoria.csv") && has("Articoli.csv"))) {
    return fail(ErrorKind::Missing, folder, "Categoria.csv, Articoli.csv");
  }
  return std::make_unique<CsvSource>(folder);
}

}  // namespace kv
