#include "platform/sheet/cell_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>

#include "platform/numbers/number_format.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

constexpr std::size_t exactDigits = 15;  // that every decimal number of so many keeps in a double
constexpr int secondsOfDay = 24 * 60 * 60;
constexpr double percents = 100;

std::optional<double> cellDouble(std::string_view digits) {
  double value = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (digits.empty() || read.ec != std::errc() || read.ptr != digits.data() + digits.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

std::string shownDouble(double value) {
  std::string text = trimmedNumber(value);
  const std::size_t sign = text.starts_with('-') ? 1 : 0;
  if (text.size() > sign && text[sign] == '.') text.insert(sign, "0");
  return text;
}

bool isDateSign(char c) { return std::string_view("ymdhsYMDHS").find(c) != std::string_view::npos; }

/// Whether a format begins with hours, minutes or seconds that count on, as "[h]" or "[mm]"; other brackets hold a
/// color, a currency or a language.
bool isElapsedTime(std::string_view code) {
  const std::size_t end = code.find(']');
  if (!code.starts_with('[') || end == std::string_view::npos || end < 2) return false;
  const char unit = code[1];
  return std::string_view("hmsHMS").find(unit) != std::string_view::npos &&
         code.substr(1, end - 1).find_first_not_of(unit) == std::string_view::npos;
}

/// How many characters after the first belong to it and say nothing: a quoted or bracketed part, a literal.
std::size_t passedOver(std::string_view code) {
  const char c = code.front();
  if (c == '"' || c == '[') return std::min(code.find(c == '[' ? ']' : '"', 1), code.size());
  return c == '\\' || c == '_' || c == '*' ? 1 : 0;
}

std::optional<char32_t> escapedCharacter(std::string_view text) {
  constexpr std::size_t length = 7, digits = 4;
  constexpr int hexadecimal = 16;
  if (text.size() < length || !text.starts_with("_x") || text[length - 1] != '_') return std::nullopt;
  unsigned number = 0;
  const char* const first = text.data() + 2;
  const auto read = std::from_chars(first, first + digits, number, hexadecimal);
  if (read.ec != std::errc() || read.ptr != first + digits) return std::nullopt;
  constexpr unsigned lowSurrogate = 0xD800, afterSurrogates = 0xE000;
  if (number >= lowSurrogate && number < afterSurrogates) return std::nullopt;
  return static_cast<char32_t>(number);
}

}  // namespace

CellFormat cellFormatOf(std::string_view code) {
  for (std::size_t at = 0; at < code.size(); ++at) {
    const char c = code[at];
    if (c == '%') return CellFormat::Percent;
    if (isDateSign(c) || isElapsedTime(code.substr(at))) return CellFormat::Date;
    at += passedOver(code.substr(at));
  }
  return CellFormat::Plain;
}

std::size_t leastDigitsOf(std::string_view code) {
  constexpr std::size_t fewest = 2, most = 32;
  // The language of a format, or a color, comes first.
  while (code.starts_with('[') && code.find(']') != std::string_view::npos) code.remove_prefix(code.find(']') + 1);
  const bool isZeros = code.find_first_not_of('0') == std::string_view::npos;
  return isZeros && code.size() >= fewest && code.size() <= most ? code.size() : 0;
}

CellFormat givenCellFormat(unsigned number) {
  constexpr std::array<std::array<unsigned, 2>, 4> dates{{{14, 22}, {27, 36}, {45, 47}, {50, 58}}};
  constexpr unsigned percent = 9, percentWithDecimals = 10;
  if (number == percent || number == percentWithDecimals) return CellFormat::Percent;
  for (const auto& [first, last] : dates) {
    if (number >= first && number <= last) return CellFormat::Date;
  }
  return CellFormat::Plain;
}

std::string cellNumber(std::string_view digits) {
  if (digits.size() <= exactDigits && digits.find_first_of("eE") == std::string_view::npos) return std::string(digits);
  const auto value = cellDouble(digits);
  return value ? shownDouble(*value) : std::string(digits);
}

std::string withLeastDigits(std::string number, std::size_t digits) {
  const bool isWhole = !number.empty() && number.find_first_not_of("0123456789") == std::string::npos;
  if (isWhole && number.size() < digits) number.insert(0, digits - number.size(), '0');
  return number;
}

std::string cellPercent(std::string_view digits) {
  const auto value = cellDouble(digits);
  return value && std::isfinite(*value * percents) ? shownDouble(*value * percents) : std::string(digits);
}

std::string cellDate(std::string_view serial, bool since1904) {
  constexpr double mostDays = 2958465;  // 9999-12-31
  const auto value = cellDouble(serial);
  if (!value || !(*value >= 0 && *value <= mostDays)) return std::string(serial);
  auto days = static_cast<int>(*value);
  auto seconds = static_cast<int>(std::lround((*value - days) * secondsOfDay));
  if (seconds == secondsOfDay) {
    ++days;
    seconds = 0;
  }
  constexpr int minute = 60, hour = 3600;
  std::array<char, 48> text{};
  std::string date;
  if (days > 0 || since1904) {
    // Day 60 is a 29 February 1900 that never was: the days before it count from one later.
    constexpr int wrongLeapDay = 60;
    const std::chrono::sys_days start = since1904 ? std::chrono::sys_days(std::chrono::year(1904) / 1 / 1)
                                        : days < wrongLeapDay
                                            ? std::chrono::sys_days(std::chrono::year(1899) / 12 / 31)
                                            : std::chrono::sys_days(std::chrono::year(1899) / 12 / 30);
    const std::chrono::year_month_day day(start + std::chrono::days(days));
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(day.year()),
                  static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
    date = text.data();
    if (seconds == 0) return date;
    date += ' ';
  }
  std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", seconds / hour, seconds / minute % minute,
                seconds % minute);
  return date + text.data();
}

std::string withoutEscapes(std::string_view text) {
  constexpr std::size_t length = 7;
  std::string plain;
  for (std::size_t at = 0; at < text.size();) {
    const auto character = text[at] == '_' ? escapedCharacter(text.substr(at)) : std::nullopt;
    if (character) {
      utf8::append(plain, *character);
      at += length;
    } else {
      plain += text[at++];
    }
  }
  return plain;
}

std::string withEscapes(std::string_view text) {
  std::string escaped;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '_' && escapedCharacter(text.substr(at))) escaped += "_x005F";
    escaped += text[at];
  }
  return escaped;
}

}  // namespace kv
