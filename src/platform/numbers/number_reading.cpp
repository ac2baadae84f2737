#include "platform/numbers/number_reading.h"

#include <algorithm>
#include <array>
#include <optional>

#include "platform/text/single_line.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t groupDigits = 3;
constexpr std::array<std::string_view, 7> currencies{"€", "$", "£", "EUR", "USD", "GBP", "CHF"};

bool isDigitCharacter(char c) { return c >= '0' && c <= '9'; }

/// The text without spaces around it and without its currency; spaces of no width to break become plain ones.
std::string bareNumber(std::string_view text) {
  std::string bare = replaceAll(replaceAll(std::string(text), "\xC2\xA0", " "), "\xE2\x80\xAF", " ");
  bare = std::string(trim(singleLine(bare)));
  for (const std::string_view currency : currencies) {
    if (bare.starts_with(currency)) bare = std::string(trim(bare.substr(currency.size())));
    if (bare.ends_with(currency)) bare = std::string(trim(bare.substr(0, bare.size() - currency.size())));
  }
  return bare;
}

/// Whether the digits are in groups of three, the first one shorter or not.
bool hasGroups(std::string_view digits, char separator) {
  std::size_t end = digits.find(separator);
  if (end == 0 || end > groupDigits) return false;
  while (end != std::string_view::npos) {
    digits.remove_prefix(end + 1);
    end = digits.find(separator);
    if (std::min(end, digits.size()) != groupDigits) return false;
  }
  return true;
}

std::string withoutCharacter(std::string_view text, char character) {
  std::string kept(text);
  std::erase(kept, character);
  return kept;
}

NumberReading noNumber(std::string_view text) {
  return {{}, false, "\"" + std::string(text) + "\" non è un numero: è rimasto il valore precedente."};
}

/// Digits with one kind of separator, "." or ",", and no other character.
NumberReading readOneSeparator(const std::string& digits, char separator, char decimalSeparator) {
  const bool isRepeated = std::ranges::count(digits, separator) > 1;
  const bool isGrouped = hasGroups(digits, separator);
  if (isRepeated && !isGrouped) return noNumber(digits);
  const bool isPlain = separator == decimalSeparator || !isGrouped || digits.starts_with('0');
  if (!isRepeated && isPlain) {
    std::string number = digits;
    std::ranges::replace(number, separator, decimalSeparator);
    return {std::move(number), true, {}};
  }
  NumberReading reading{withoutCharacter(digits, separator), true, {}};
  if (isRepeated) return reading;
  std::string other = digits;
  std::ranges::replace(other, separator, decimalSeparator);
  reading.note = "\"" + digits + "\" è stato letto come " + reading.text + ". Se era " + other + ", correggerlo.";
  return reading;
}

/// Digits with "." and ",": the last of them is the decimal one.
NumberReading readBothSeparators(const std::string& digits, char decimalSeparator) {
  const std::size_t last = digits.find_last_of(".,");
  const char decimal = digits[last];
  const char group = decimal == '.' ? ',' : '.';
  const std::string_view whole = std::string_view(digits).substr(0, last);
  const bool isRepeated = std::ranges::count(digits, decimal) > 1;
  if (isRepeated || !hasGroups(whole, group)) return noNumber(digits);
  return {withoutCharacter(whole, group) + decimalSeparator + digits.substr(last + 1), true, {}};
}

/// The text without the spaces or apostrophes that group its whole digits; nothing when they group them wrongly.
std::optional<std::string> withoutGroups(std::string digits) {
  for (const char group : {' ', '\''}) {
    if (digits.find(group) == std::string::npos) continue;
    const std::string_view whole = std::string_view(digits).substr(0, digits.find_first_of(".,"));
    if (!hasGroups(whole, group)) return std::nullopt;
    digits = withoutCharacter(whole, group) + digits.substr(whole.size());
  }
  return digits;
}

}  // namespace

NumberReading readNumber(std::string_view text, char decimalSeparator) {
  const std::string bare = bareNumber(text);
  auto plain = withoutGroups(bare);
  if (!plain) return noNumber(bare);
  const std::string& digits = *plain;
  const bool hasDigit = std::ranges::any_of(digits, isDigitCharacter);
  const bool hasOther = digits.find_first_not_of("0123456789.,") != std::string::npos;
  if (!hasDigit || hasOther) return noNumber(bare);
  const bool point = digits.find('.') != std::string::npos;
  const bool comma = digits.find(',') != std::string::npos;
  if (point && comma) return readBothSeparators(digits, decimalSeparator);
  if (point || comma) return readOneSeparator(digits, point ? '.' : ',', decimalSeparator);
  return {std::move(*plain), true, {}};
}

NumberReading readSignedNumber(std::string_view text, char decimalSeparator) {
  const std::string_view bare = trim(text);
  if (!bare.starts_with('-')) return readNumber(text, decimalSeparator);
  NumberReading reading = readNumber(bare.substr(1), decimalSeparator);
  if (reading.isNumber) reading.text.insert(0, 1, '-');
  return reading;
}

}  // namespace kv
