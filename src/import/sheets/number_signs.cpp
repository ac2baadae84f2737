#include "import/sheets/number_signs.h"

#include <algorithm>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t groupDigits = 3;

bool isCsvDigit(char c) { return c >= '0' && c <= '9'; }

/// Whether a text has digits, and nothing else but signs of numbers; at least one of them between digits.
bool looksLikeNumber(std::string_view text) {
  constexpr std::size_t longest = 32;
  constexpr std::string_view signs = ".,' \xC2\xA0\xE2\x80\xAF";
  text = trim(text);
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  if (text.empty() || text.size() > longest || !isCsvDigit(text.back())) return false;
  bool hasSign = false;
  for (const char c : text) {
    if (isCsvDigit(c)) continue;
    if (signs.find(c) == std::string_view::npos) return false;
    hasSign = true;
  }
  return hasSign;
}

/// Whether a text is a sign for decimals with digits after it, the end of most numbers.
bool isPlainDecimal(std::string_view end) {
  return (end.front() == ',' || end.front() == '.') && std::ranges::all_of(end.substr(1), isCsvDigit);
}

/// Whether there is a space within a text; those that don't break start with one of the two bytes.
bool hasInnerSpace(std::string_view text) { return trim(text).find_first_of(" \xC2\xE2") != std::string_view::npos; }

}  // namespace

void NumberSigns::seeSign(char sign, std::size_t digitsAfter) {
  const bool isComma = sign == ',';
  if (isComma && thousandsByPoint_ == '\0') thousandsByPoint_ = ',';
  if (!isComma && thousandsByComma_ == '\0') thousandsByComma_ = '.';
  if (digitsAfter != groupDigits) ++(isComma ? commas_ : points_);
}

void NumberSigns::see(std::string_view number) {
  // Digits alone, which many numbers are, tell nothing.
  const std::size_t first = static_cast<std::size_t>(std::ranges::find_if_not(number, isCsvDigit) - number.begin());
  if (first == number.size()) return;
  if (isPlainDecimal(number.substr(first))) return seeSign(number[first], number.size() - first - 1);
  std::size_t commas = 0, points = 0, last = 0;
  bool hasOthers = false, hasQuote = false;
  for (std::size_t at = first; at < number.size(); ++at) {
    const char c = number[at];
    if (isCsvDigit(c)) continue;
    if (c == ',') ++commas;
    if (c == '.') ++points;
    if (c == ',' || c == '.') last = at;
    hasOthers = hasOthers || (c != ',' && c != '.');
    hasQuote = hasQuote || c == '\'';
  }
  const bool isSpaced = hasOthers && hasInnerSpace(number);
  const char other = hasQuote ? '\'' : isSpaced ? ' ' : '\0';
  if (thousandsByComma_ == '\0') thousandsByComma_ = points > 0 ? '.' : other;
  if (thousandsByPoint_ == '\0') thousandsByPoint_ = commas > 0 ? ',' : other;
  if (commas + points == 0) return;
  const bool isComma = number[last] == ',';
  const bool isRepeated = (isComma ? commas : points) > 1;
  const bool hasBoth = commas > 0 && points > 0;
  const auto after = std::ranges::count_if(number.substr(last), isCsvDigit);
  if (isRepeated || (!hasBoth && static_cast<std::size_t>(after) == groupDigits)) return;
  ++(isComma ? commas_ : points_);
}

char NumberSigns::decimalSeparator(char separator) const {
  if (commas_ == points_) return separator == ',' ? '.' : ',';
  return commas_ > points_ ? ',' : '.';
}

char NumberSigns::thousands(char decimalSeparator) const {
  return decimalSeparator == ',' ? thousandsByComma_ : thousandsByPoint_;
}

void NumberSigns::fill(CsvReading& reading, const CsvChoice& choice) const {
  reading.decimalSeparator = choice.decimalSeparator.value_or(decimalSeparator(reading.separator));
  reading.thousands = choice.thousands.value_or(thousands(reading.decimalSeparator));
}

void fillSigns(const CellTable& cells, const CsvChoice& choice, CsvReading& reading) {
  NumberSigns signs;
  if (choice.decimalSeparator && choice.thousands) return signs.fill(reading, choice);
  for (std::size_t row = 0; row < cells.rows(); ++row) {
    for (std::size_t column = 0; column < cells.width(row); ++column) {
      const SheetCell cell = cells.cell(row, column);
      if (!cell.isNumber && looksLikeNumber(cell.text)) signs.see(cell.text);
    }
  }
  signs.fill(reading, choice);
}

char decimalSeparatorOf(const std::vector<std::string_view>& numbers, char separator) {
  NumberSigns signs;
  for (const std::string_view number : numbers) signs.see(number);
  return signs.decimalSeparator(separator);
}

}  // namespace kv
