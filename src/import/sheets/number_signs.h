#pragma once
// The signs that the numbers of a table have: which one is for decimals, and which between thousands. They are found
// out from all of its numbers together, for "1.234" alone tells nothing.

#include <string_view>
#include <vector>

#include "import/sheets/csv_text.h"

namespace kv {

/// What was learnt from texts of numbers, one after the other.
class NumberSigns {
 public:
  /// Learns from a text that is, or may be, a number.
  void see(std::string_view number);
  /// The decimal separator: the last one before one, two, four or more digits, or after digits that are no group of
  /// thousands, as in "0.250" or "36210,845"; what is in groups of three alone tells nothing, and ',' holds unless it
  /// separates the fields.
  char decimalSeparator(char separator) const;
  /// The sign between thousands beside a decimal separator: the first that was seen; 0 when there was none.
  char thousands(char decimalSeparator) const;
  /// Enters both into a reading, where they aren't given.
  void fill(CsvReading& reading, const CsvChoice& choice) const;

 private:
  /// Learns from a number with this sign alone, after these digits.
  void seeSign(std::string_view before, char sign, std::size_t digitsAfter);

  std::ptrdiff_t commas_ = 0, points_ = 0;                  // numbers whose last sign is for decimals
  char thousandsByComma_ = '\0', thousandsByPoint_ = '\0';  // by the decimal separator that there may be
};

/// Enters the signs that the texts of a table tell which look like numbers, digits and nothing but signs of numbers
/// beside; they aren't looked at where both signs are given.
void fillSigns(const CellTable& cells, const CsvChoice& choice, CsvReading& reading);
/// The decimal separator of the numbers among these texts.
char decimalSeparatorOf(const std::vector<std::string_view>& numbers, char separator);

}  // namespace kv
