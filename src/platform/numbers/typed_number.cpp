#include "platform/numbers/typed_number.h"

#include <algorithm>

#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

bool isFieldNumber(std::string_view text, char decimalSeparator) {
  return isNumeric(storedNumber(text, decimalSeparator));
}

std::string storedNumber(std::string_view text, char decimalSeparator) {
  std::string stored(trim(text));
  std::replace(stored.begin(), stored.end(), decimalSeparator, '.');
  return stored;
}

std::string shownNumber(std::string_view stored, char decimalSeparator) {
  std::string number(trim(stored));
  std::replace(number.begin(), number.end(), '.', decimalSeparator);
  if (number.starts_with(decimalSeparator)) number.insert(0, 1, '0');
  if (number.starts_with(std::string("-") + decimalSeparator)) number.insert(1, 1, '0');
  return number;
}

std::string typedNumber(std::string_view text, const NumberKeys& keys) {
  std::string kept;
  for (const char character : text) {
    const bool isDigit = character >= '0' && character <= '9';
    const bool isSign = keys.negative && character == '-' && kept.empty();
    const bool isSpace = keys.spaces && character == ' ';
    if (isDigit || isSign || isSpace || character == keys.decimalSeparator) kept += character;
  }
  return kept;
}

}  // namespace kv
