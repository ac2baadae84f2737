#pragma once
// A text of a sheet as a number.

#include <optional>
#include <string>
#include <string_view>

#include "import/sheets/csv_text.h"

namespace kv {

constexpr bool isSheetDigit(char c) { return c >= '0' && c <= '9'; }

/// A number of a sheet with "." for decimals: spaces around it, a currency sign and a percent sign are passed over,
/// groups of three are put together. Nothing for what is no number in this notation.
std::optional<std::string> sheetNumber(std::string_view text, const CsvReading& signs);

/// A number of digits, a minus before them and a decimal separator between them, with "." for decimals; `kept` holds it
/// where the text doesn't. Nothing for any other text.
std::optional<std::string_view> simpleNumber(std::string_view text, char decimalSeparator, std::string& kept);

}  // namespace kv
