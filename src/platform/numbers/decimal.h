#pragma once
// A number as its decimal digits: what rounding, masks and the reading of numbers work on, so that a tie is a tie of
// the digits that are seen and not of a binary fraction. For the sources of this folder.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// 0.d1d2d3... times ten to the power `point`; d1 and the last digit are not "0". Zero has no digits and no sign.
struct Decimal {
  bool negative = false;
  std::string digits;
  int point = 0;  ///< how many digits stand before the decimal point, when positive

  bool isZero() const { return digits.empty(); }
  /// The digit at a place, counted from the first digit; '0' outside the digits.
  char digitAt(int place) const {
    return place >= 0 && place < static_cast<int>(digits.size()) ? digits[static_cast<std::size_t>(place)] : '0';
  }
};

enum class Tie { ToEven, AwayFromZero };

/// `count` of units of ten to the power -`decimals`.
Decimal decimalOf(std::int64_t count, int decimals);
/// The number rounded to so many significant digits: 7 for a single, 15 for a double. Zero for what is not finite.
Decimal decimalOf(float value);
Decimal decimalOf(double value);

/// Rounds to so many places behind the point.
void roundTo(Decimal& number, int decimals, Tie tie);

/// The nearest double; empty when it is out of range. What is too small becomes 0.
std::optional<double> toDouble(const Decimal& number);
/// The number as a count of ten-thousandths, ties to even; empty when out of range.
std::optional<std::int64_t> toTenThousandths(Decimal number);

/// A number found at the start of a text, and how many bytes of it make the number; 0 when there is none.
struct ScannedNumber {
  Decimal number;
  std::size_t length = 0;
};
/// A sign, digits with at most one of `separators`, an exponent. An exponent without digits isn't taken along.
ScannedNumber scanNumber(std::string_view text, std::string_view separators);

}  // namespace kv
