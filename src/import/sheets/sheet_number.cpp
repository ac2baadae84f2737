#include "import/sheets/sheet_number.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t digitsOfGroup = 3;
constexpr std::array<std::string_view, 7> currencySigns{"€", "$", "£", "EUR", "USD", "GBP", "CHF"};

std::string withoutCurrency(std::string_view text) {
  std::string bare = replaceAll(replaceAll(std::string(text), "\xC2\xA0", " "), "\xE2\x80\xAF", " ");
  bare = std::string(trim(bare));
  if (bare.ends_with('%')) bare = std::string(trim(std::string_view(bare).substr(0, bare.size() - 1)));
  for (const std::string_view sign : currencySigns) {
    if (bare.starts_with(sign)) bare = std::string(trim(std::string_view(bare).substr(sign.size())));
    if (bare.ends_with(sign)) bare = std::string(trim(std::string_view(bare).substr(0, bare.size() - sign.size())));
  }
  return bare;
}

/// Whether so many digits are a group of a number's whole part: three, or at most three before the first sign.
bool isGroup(std::size_t digits, bool isFirst) {
  return isFirst ? digits > 0 && digits <= digitsOfGroup : digits == digitsOfGroup;
}

/// The whole part of a number without the signs between its groups of three; nothing where a group has another size.
std::optional<std::string> ungrouped(std::string_view whole, char thousands) {
  std::string digits;
  std::size_t inGroup = 0;
  bool hasGroups = false;
  for (const char c : whole) {
    if (isSheetDigit(c)) {
      digits += c;
      ++inGroup;
    } else if (thousands == '\0' || c != thousands || !isGroup(inGroup, !hasGroups)) {
      return std::nullopt;
    } else {
      hasGroups = true;
      inGroup = 0;
    }
  }
  // No group of thousands starts with a 0: "0.250" has another sign for decimals.
  if (hasGroups && (!isGroup(inGroup, false) || digits.front() == '0')) return std::nullopt;
  return digits;
}

/// The digits of a number with those after its decimal separator; nothing where these are none, or both are empty.
std::optional<std::string> withDecimals(const std::string& whole, std::string_view decimals) {
  if (!std::ranges::all_of(decimals, isSheetDigit) || (whole.empty() && decimals.empty())) return std::nullopt;
  return (whole.empty() ? "0" : whole) + (decimals.empty() ? "" : ".") + std::string(decimals);
}

/// The index of the one decimal separator between digits, npos where there is none; nothing for any other text.
std::optional<std::size_t> separatorBetweenDigits(std::string_view digits, char decimalSeparator) {
  std::size_t separator = std::string_view::npos;
  for (std::size_t at = 0; at < digits.size(); ++at) {
    if (isSheetDigit(digits[at])) continue;
    const bool isDecimal = digits[at] == decimalSeparator && separator == std::string_view::npos;
    if (!isDecimal || at == 0 || at + 1 == digits.size()) return std::nullopt;
    separator = at;
  }
  return separator;
}

}  // namespace

std::optional<std::string_view> simpleNumber(std::string_view text, char decimalSeparator, std::string& kept) {
  const std::size_t first = text.starts_with('-') ? 1 : 0;
  if (text.size() == first) return std::nullopt;
  const auto separator = separatorBetweenDigits(text.substr(first), decimalSeparator);
  if (!separator) return std::nullopt;
  if (*separator == std::string_view::npos || decimalSeparator == '.') return text;
  kept = text;
  kept[first + *separator] = '.';
  return kept;
}

std::optional<std::string> sheetNumber(std::string_view text, const CsvReading& signs) {
  const bool isBare = text.find_first_not_of("0123456789.,") == std::string_view::npos;
  std::string bare = isBare ? std::string(text) : withoutCurrency(text);
  std::string sign;
  if (bare.starts_with('-') || bare.starts_with('+')) {
    if (bare[0] == '-') sign = "-";
    bare.erase(0, 1);
  }
  const std::size_t decimal = bare.find(signs.decimalSeparator);
  auto digits = ungrouped(std::string_view(bare).substr(0, decimal), signs.thousands);
  if (digits && decimal != std::string::npos)
    digits = withDecimals(*digits, std::string_view(bare).substr(decimal + 1));
  if (!digits || digits->empty()) return std::nullopt;
  return sign + *digits;
}

}  // namespace kv
