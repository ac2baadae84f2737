#include "platform/numbers/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace kv {
namespace {

constexpr int singleDigits = 7, doubleDigits = 15;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Normalises digits that may have zeros at either end, as Decimal requires.
void normalise(Decimal& number) {
  const std::size_t first = number.digits.find_first_not_of('0');
  if (first == std::string::npos) {
    number = {};
    return;
  }
  number.digits.erase(number.digits.find_last_not_of('0') + 1);
  number.digits.erase(0, first);
  number.point -= static_cast<int>(first);
}

template <class Number>
Decimal ofSignificantDigits(Number value, int significant) {
  if (!std::isfinite(value)) return {};
  std::array<char, 48> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific,
                                 significant - 1);
  return scanNumber(std::string_view(buffer.data(), end.ptr), ".").number;
}

// Whether dropping the digits from `index` on rounds up.
bool roundsUp(const Decimal& number, int index, Tie tie) {
  const char first = number.digitAt(index);
  if (first != '5') return first > '5';
  const bool isTie = index + 1 >= static_cast<int>(number.digits.size());
  if (!isTie || tie == Tie::AwayFromZero) return true;
  return (number.digitAt(index - 1) - '0') % 2 != 0;
}

// Adds one to the last digit.
void increment(Decimal& number) {
  auto digit = number.digits.rbegin();
  for (; digit != number.digits.rend() && *digit == '9'; ++digit) *digit = '0';
  if (digit != number.digits.rend()) {
    ++*digit;
  } else {
    number.digits.insert(0, 1, '1');
    ++number.point;
  }
}

// The exponent at the start of a text ("E-05") and its length; 0 when there is none.
struct Exponent {
  int value = 0;
  std::size_t length = 0;
};
Exponent scanExponent(std::string_view text) {
  constexpr int limit = 100000;  // far above the exponents of a double, far below the limits of an int
  if (!text.starts_with('E') && !text.starts_with('e')) return {};
  const char sign = text.size() > 1 ? text[1] : '0';
  const bool negative = sign == '-';
  std::size_t at = negative || sign == '+' ? 2 : 1;
  const std::size_t firstDigit = at;
  int value = 0;
  for (; at < text.size() && isDigit(text[at]); ++at) value = std::min(limit, value * 10 + (text[at] - '0'));
  if (at == firstDigit) return {};
  return {negative ? -value : value, at};
}

}  // namespace

Decimal decimalOf(std::int64_t count, int decimals) {
  const auto bits = static_cast<std::uint64_t>(count);
  Decimal number{count < 0, std::to_string(count < 0 ? 0 - bits : bits), 0};
  number.point = static_cast<int>(number.digits.size()) - decimals;
  normalise(number);
  return number;
}

Decimal decimalOf(float value) { return ofSignificantDigits(value, singleDigits); }
Decimal decimalOf(double value) { return ofSignificantDigits(value, doubleDigits); }

void roundTo(Decimal& number, int decimals, Tie tie) {
  const int keep = number.point + decimals;
  if (keep >= static_cast<int>(number.digits.size())) return;
  if (keep < 0) {
    number = {};
    return;
  }
  const bool up = roundsUp(number, keep, tie);
  number.digits.resize(static_cast<std::size_t>(keep));
  if (up) increment(number);
  normalise(number);
}

std::optional<double> toDouble(const Decimal& number) {
  if (number.isZero()) return 0.0;
  const std::string text = (number.negative ? "-0." : "0.") + number.digits + "e" + std::to_string(number.point);
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec == std::errc()) return value;
  if (number.point > 0) return std::nullopt;
  return 0.0;
}

std::optional<std::int64_t> toTenThousandths(Decimal number) {
  constexpr int decimals = 4, mostDigits = 19;
  roundTo(number, decimals, Tie::ToEven);
  const int digitCount = number.point + decimals;
  if (number.isZero()) return 0;
  if (digitCount > mostDigits) return std::nullopt;
  std::uint64_t count = 0;  // 19 digits fit
  for (int index = 0; index < digitCount; ++index) {
    count = count * 10 + static_cast<std::uint64_t>(number.digitAt(index) - '0');
  }
  const auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (count > most + (number.negative ? 1 : 0)) return std::nullopt;
  return static_cast<std::int64_t>(number.negative ? 0 - count : count);
}

ScannedNumber scanNumber(std::string_view text, std::string_view separators) {
  ScannedNumber result;
  Decimal& number = result.number;
  std::size_t at = 0;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) ++at;
  number.negative = text.starts_with('-');
  bool pointSeen = false;
  for (; at < text.size(); ++at) {
    if (isDigit(text[at])) {
      number.digits += text[at];
      number.point += pointSeen ? 0 : 1;
    } else if (!pointSeen && separators.find(text[at]) != std::string_view::npos) {
      pointSeen = true;
    } else {
      break;
    }
  }
  if (number.digits.empty()) return {};
  const Exponent exponent = scanExponent(text.substr(at));
  number.point += exponent.value;
  normalise(number);
  result.length = at + exponent.length;
  return result;
}

}  // namespace kv
