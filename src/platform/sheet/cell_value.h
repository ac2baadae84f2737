#pragma once
// How the values of cells read as texts. For the sources of this folder.

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

/// What the number format of a cell makes of its number.
enum class CellFormat : std::uint8_t { Plain, Date, Percent };

/// The meaning of a number format by its code, as "dd/mm/yyyy" or "0.0%"; what is quoted or in brackets is passed over,
/// except for hours, minutes and seconds that count on, as "[h]".
CellFormat cellFormatOf(std::string_view code);
/// The digits that a format shows at least, of one that is zeros alone: 6 for "000000" or "[$-410]000000", as
/// codes of articles have it; else 0.
std::size_t leastDigitsOf(std::string_view code);
/// The meaning of a format by its number among those that are given (ECMA-376 part 1, 18.8.30).
CellFormat givenCellFormat(unsigned number);

/// A number as digits, "." for decimals; what a program wrote with more than 15 digits is rounded to 15. Any other text
/// stays as it is.
std::string cellNumber(std::string_view digits);
/// A whole number with zeros before it, so that it has so many digits. Any other text stays as it is.
std::string withLeastDigits(std::string number, std::size_t digits);
/// The same as cellNumber of a percent: a hundred times the number.
std::string cellPercent(std::string_view digits);
/// A day counted from 1899-12-30, or from 1904-01-01, as "2024-05-31", with " 13:45:00" where there is a time, or the
/// time alone where there is no day. Any other text stays as it is.
std::string cellDate(std::string_view serial, bool since1904);

/// Text in which "_x000D_" means a character (ECMA-376 part 1, 22.9.2.19).
std::string withoutEscapes(std::string_view text);
/// A text such that withoutEscapes gives it back: what looks like an escape is one of its "_".
std::string withEscapes(std::string_view text);

}  // namespace kv
