#include <array>
#include <charconv>

#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

// Characters of the bytes 80 to 9F. Every other byte is the character of the same number.
constexpr std::array<char16_t, 32> upperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// Writes the bytes of one character and returns their end.
char* writeAsWindows1252(char* out, char32_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
    *out = static_cast<char>(static_cast<std::uint8_t>(character));
    return out + 1;
  }
  for (std::size_t i = 0; i < upperControls.size(); ++i) {
    if (upperControls[i] != character) continue;
    *out = static_cast<char>(static_cast<std::uint8_t>(0x80 + i));
    return out + 1;
  }
  *out++ = '&';
  *out++ = '#';
  constexpr std::ptrdiff_t mostDigits = 7;
  out = std::to_chars(out, out + mostDigits, static_cast<std::uint32_t>(character)).ptr;
  *out = ';';
  return out + 1;
}

}  // namespace

std::string fromWindows1252(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 16);
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t end = utf8::endOfAscii(bytes, at);
    text.append(bytes, at, end - at);
    if (end == bytes.size()) break;
    const auto byte = static_cast<std::uint8_t>(bytes[end]);
    utf8::append(text, byte < 0xA0 ? upperControls[byte - 0x80U] : byte);
    at = end + 1;
  }
  return text;
}

EncodedCharacter encodeWindows1252(std::string_view utf8Text, std::size_t at, char* out) {
  const utf8::Unit unit = utf8::unitAt(utf8Text, at);
  if (unit.valid) return {unit.length, static_cast<std::size_t>(writeAsWindows1252(out, unit.character) - out)};
  *out = '?';
  return {unit.length, 1};
}

std::string toWindows1252(std::string_view utf8Text) {
  std::string bytes;
  bytes.reserve(utf8Text.size());
  for (std::size_t at = 0; at < utf8Text.size();) {
    const std::size_t end = utf8::endOfAscii(utf8Text, at);
    bytes.append(utf8Text, at, end - at);
    if (end == utf8Text.size()) break;
    char encoded[widestWindows1252];
    const EncodedCharacter one = encodeWindows1252(utf8Text, end, encoded);
    bytes.append(encoded, one.written);
    at = end + one.read;
  }
  return bytes;
}

}  // namespace kv
