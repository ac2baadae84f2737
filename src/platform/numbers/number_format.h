#pragma once
// Every format in which a number becomes text, with the matching tests and rounding rules. The decimal separator is
// "." and the thousands separator ",", whatever the locale of the machine.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/numbers/money.h"

namespace kv {

/// The plain number format: "." for decimals, no thousands separator, no zero before the point of a fraction, one
/// space in front of a number that isn't negative (" 20", " .2", "-1.5"). A single shows at most 7 significant
/// digits, a double at most 15. The text has an exponent of at least two digits when the rounded number reaches
/// 1E+07 (1E+15), is below .0001, or would need more than 7 (15) decimals (" 1.234568E+08", " 1E-05",
/// " 1.234567E-03"). Money and whole numbers are exact and never have one. What is not a number, or is infinite,
/// reads as " 0".
std::string plainNumber(std::int64_t value);
inline std::string plainNumber(int value) { return plainNumber(std::int64_t{value}); }
std::string plainNumber(float value);
std::string plainNumber(double value);
std::string plainNumber(Money value);

/// The plain number format without its leading space: "20", ".2", "-1.5".
template <class Number>
std::string trimmedNumber(Number value) {
  std::string text = plainNumber(value);
  if (text.front() == ' ') text.erase(0, 1);
  return text;
}

/// A number formatted by a mask of "0" (always a digit), "#" (a digit when there is one), "." and "," (thousands
/// separators when one is between digits of the mask). Any other character of the mask is copied. Rounded half away
/// from zero to the decimals of the mask; a double counts by its 15 significant digits, so that 2.675 gives "2.68". A
/// zero by "#####" is an empty text; "###,###,###,##0.00" of 1234.5 is "1,234.50"; a number with more whole digits than
/// the mask has is written in full. The sign comes first; what rounds to zero has none.
std::string formatNumber(std::int64_t value, std::string_view mask);
inline std::string formatNumber(int value, std::string_view mask) { return formatNumber(std::int64_t{value}, mask); }
std::string formatNumber(Money value, std::string_view mask);
std::string formatNumber(double value, std::string_view mask);

/// Whether a text is a number as a whole: spaces around it allowed, a sign, digits with at most one decimal
/// separator ("." or ","), an exponent ("E" or "e"). An empty text is no number; neither is one
/// that a double can't hold.
bool isNumeric(std::string_view text);
/// The number that isNumeric accepts; empty for any other text.
std::optional<double> toNumber(std::string_view text);
/// The number at the start of a text, "." for decimals; spaces, tabs and line ends are skipped wherever they occur
/// ("1 250 kg" is 1250); 0 when there is none ("12abc" is 12, "x" is 0).
double leadingNumber(std::string_view text);

/// Rounds to `decimals` decimals (0 to 15), a tie to the even digit. Both roundings go by the 15 significant digits of
/// the number, so that 2.675 is a tie although the nearest double lies below it.
double roundHalfEven(double value, int decimals);
/// Rounds to `decimals` decimals (0 to 15), a tie away from zero.
double roundHalfAway(double value, int decimals);

}  // namespace kv
