#include "import/sheets/number_signs.h"

#include <algorithm>

#include "import/sheets/sheet_number.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t groupDigits = 3;

/// Whether a text has digits, and nothing else but signs of numbers; at least one of them between digits.
bool looksLikeNumber(std::string_view text) {
  constexpr std::size_t longest = 32;
  constexpr std::string_view signs = ".,' \xC2\xA0\xE2\x80\xAF";
  text = trim(text);
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  if (text.empty() || text.size() > longest || !isSheetDigit(text.back())) return false;
  bool hasSign = false;
  for (const char c : text) {
    if (isSheetDigit(c)) continue;
    if (signs.find(c) == std::string_view::npos) return false;
    hasSign = true;
  }
  return hasSign;
}

/// Whether the digits before a single sign are none that thousands have there: more than a group, none, or a 0.
bool isBeforeDecimals(std::string_view digits) {
  return digits.empty() || digits.size() > groupDigits || digits.front() == '0';
}

/// Whether a text is a sign for decimals with digits after it, the end of most numbers.
bool isPlainDecimal(std::string_view end) {
  return (end.front() == ',' || end.front() == '.') && std::ranges::all_of(end.substr(1), isSheetDigit);
}

/// The signs of a number after its first digits.
struct SignCount {
  std::size_t commas = 0, points = 0;
  std::size_t last = 0;  ///< the index of the last comma or point
  bool hasOthers = false, hasQuote = false;

  bool isComma(std::string_view number) const { return number[last] == ','; }
  void add(char c, std::size_t at) {
    hasQuote = hasQuote || c == '\'';
    if (c != ',' && c != '.') {
      hasOthers = true;
      return;
    }
    ++(c == ',' ? commas : points);
    last = at;
  }
};

SignCount countSigns(std::string_view number, std::size_t first) {
  SignCount signs;
  for (std::size_t at = first; at < number.size(); ++at) {
    if (!isSheetDigit(number[at])) signs.add(number[at], at);
  }
  return signs;
}

/// Whether the last comma or point of a number can only be the one of its decimals.
bool endsInDecimals(std::string_view number, const SignCount& signs) {
  if (signs.commas + signs.points == 0) return false;
  if ((signs.isComma(number) ? signs.commas : signs.points) > 1) return false;
  if (signs.commas > 0 && signs.points > 0) return true;
  std::string_view before = number.substr(0, signs.last);
  before.remove_prefix(std::min(before.find_first_of("0123456789"), before.size()));
  if (isBeforeDecimals(before)) return true;
  return static_cast<std::size_t>(std::ranges::count_if(number.substr(signs.last), isSheetDigit)) != groupDigits;
}

/// Whether a text begins with one group of digits.
bool startsWithGroup(std::string_view text) {
  const auto end = std::ranges::find_if_not(text, isSheetDigit);
  return static_cast<std::size_t>(end - text.begin()) == groupDigits;
}

/// Whether there is a space between a digit and a group of digits, one that breaks or not. That of "12,50 €" is none
/// between thousands, nor that of a date with its time.
bool hasInnerSpace(std::string_view text) {
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (!isSheetDigit(text[at - 1])) continue;
    for (const std::string_view space : {" ", "\xC2\xA0", "\xE2\x80\xAF"}) {
      const std::string_view rest = text.substr(at);
      if (rest.starts_with(space) && startsWithGroup(rest.substr(space.size()))) return true;
    }
  }
  return false;
}

/// The sign of thousands of a number that is neither comma nor point; 0: it has none.
char otherThousands(std::string_view number, const SignCount& signs) {
  if (signs.hasQuote) return '\'';
  return signs.hasOthers && hasInnerSpace(number) ? ' ' : '\0';
}

}  // namespace

void NumberSigns::seeSign(std::string_view before, char sign, std::size_t digitsAfter) {
  const bool isComma = sign == ',';
  const bool isDecimal = digitsAfter != groupDigits || isBeforeDecimals(before);
  if (isComma && thousandsByPoint_ == '\0') thousandsByPoint_ = ',';
  if (!isComma && thousandsByComma_ == '\0') thousandsByComma_ = '.';
  if (isDecimal) ++(isComma ? commas_ : points_);
}

void NumberSigns::see(std::string_view number) {
  // Digits alone, which many numbers are, tell nothing.
  const std::size_t first = static_cast<std::size_t>(std::ranges::find_if_not(number, isSheetDigit) - number.begin());
  if (first == number.size()) return;
  if (isPlainDecimal(number.substr(first))) {
    return seeSign(number.substr(0, first), number[first], number.size() - first - 1);
  }
  const SignCount signs = countSigns(number, first);
  const char other = otherThousands(number, signs);
  if (thousandsByComma_ == '\0') thousandsByComma_ = signs.points > 0 ? '.' : other;
  if (thousandsByPoint_ == '\0') thousandsByPoint_ = signs.commas > 0 ? ',' : other;
  if (endsInDecimals(number, signs)) ++(signs.isComma(number) ? commas_ : points_);
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
