#pragma once
// A number as its decimal digits: what rounding, masks and the reading of numbers work on, so that a tie is a tie of
// the digits that are seen and not of a binary fraction. For the sources of this folder.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// The number 0.d1d2d3... times ten to the power `point`; d1 and the last digit are not "0". Zero has no digits and
/// no sign.
struct Decimal {
  bool negative = false;
  std::string digits;  ///< "0" to "9", most significant first
  int point = 0;       ///< the number of digits before the decimal point, when positive

  /// Whether the number is 0.
  bool isZero() const { return digits.empty(); }
  /// The digit at an index, counted from the first digit; '0' outside the digits.
  char digitAt(int index) const {
    return index >= 0 && index < static_cast<int>(digits.size()) ? digits[static_cast<std::size_t>(index)] : '0';
  }
};

/// Where a number exactly between two candidates goes: to the one with an even last digit, or away from zero.
enum class Tie { ToEven, AwayFromZero };

/// The exact decimal of `count` units, each ten to the power -`decimals`: 12345 with 4 decimals is 1.2345.
Decimal decimalOf(std::int64_t count, int decimals);
/// The number rounded to the 7 significant digits of a single. Zero for what is not finite.
Decimal decimalOf(float value);
/// The number rounded to the 15 significant digits of a double. Zero for what is not finite.
Decimal decimalOf(double value);

/// Rounds in place to `decimals` digits after the decimal point.
void roundTo(Decimal& number, int decimals, Tie tie);

/// The nearest double; empty when the number is out of range. What is too small for a double becomes 0.
std::optional<double> toDouble(const Decimal& number);
/// The number as a count of ten-thousandths, ties to even; empty when out of range.
std::optional<std::int64_t> toTenThousandths(Decimal number);

/// A number found at the start of a text.
struct ScannedNumber {
  Decimal number;          ///< 0 when there is none
  std::size_t length = 0;  ///< bytes of the text that make the number; 0 when there is none
};
/// Reads a sign, digits with at most one decimal separator out of `separators`, and an exponent ("E" or "e"). An
/// exponent without digits isn't part of the number.
ScannedNumber scanNumber(std::string_view text, std::string_view separators);

}  // namespace kv
