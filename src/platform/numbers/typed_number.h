#pragma once
// Numbers as a person types them into a field, with the decimal separator of the user's locale, and as the store takes
// them, with "." for decimals.

#include <string>
#include <string_view>

namespace kv {

/// Whether the text is a number as the field shows it.
bool isFieldNumber(std::string_view text, char decimalSeparator);
/// The text of a number for the store ("." for decimals, nothing else); empty for an empty text.
std::string storedNumber(std::string_view text, char decimalSeparator);
/// A number of the store as the field shows it, with a digit before the decimal separator.
std::string shownNumber(std::string_view stored, char decimalSeparator);

/// Which characters a number's field takes.
struct NumberKeys {
  char decimalSeparator = ',';
  bool spaces = false;    ///< spaces as well
  bool negative = false;  ///< "-" at the start
};
/// What is left of a text when the characters that can't be typed are taken out of it.
std::string typedNumber(std::string_view text, const NumberKeys& keys);

}  // namespace kv
