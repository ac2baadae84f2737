#pragma once
// Numbers that come from elsewhere, pasted or dropped: a price list, a spreadsheet or a web page may use either
// notation, so the decimal separator is found out instead of being dropped as a character that can't be typed.

#include <string>
#include <string_view>

namespace kv {

/// What a text that was pasted into a number field means.
struct NumberReading {
  std::string text;      ///< the number as the field shows it: digits and at most one decimal separator
  bool isNumber = true;  ///< false: it is no number that the field takes, and `text` is empty
  std::string note;      ///< what to say beside the field, in Italian; empty when there is only one way to read it
};

/// Reads digits with "," or "." for decimals and the other of them, a space or an apostrophe for groups of three;
/// spaces around it, a currency sign or one of the codes EUR, USD, GBP, CHF are passed over. "1.250" could be either
/// notation: it is read as `decimalSeparator`, "," or ".", says, with a note. Signs, exponents and any other character
/// make no number.
NumberReading readNumber(std::string_view text, char decimalSeparator);

/// The same with a "-" before it, which the text keeps.
NumberReading readSignedNumber(std::string_view text, char decimalSeparator);

}  // namespace kv
