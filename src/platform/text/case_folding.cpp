#include <utf8proc.h>

#include <algorithm>

#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

bool isAscii(char c) { return static_cast<std::uint8_t>(c) < 0x80; }

char32_t folded(char32_t character) {
  constexpr char32_t microSign = 0xB5, dottedCapitalI = 0x130, dotlessSmallI = 0x131;
  if (character < 0x80) return static_cast<char32_t>(utf8::lowerAscii(static_cast<char>(character)));
  if (character >= 0xC0 && character <= 0xDE) return character == 0xD7 ? character : character + 0x20;
  if (character <= 0xFF && character != microSign) return character;
  if (character == microSign || character == dottedCapitalI || character == dotlessSmallI) return character;
  // Through upper case, so that all lower-case variants of a character (the two sigmas) become one.
  return static_cast<char32_t>(utf8proc_tolower(utf8proc_toupper(static_cast<utf8proc_int32_t>(character))));
}

}  // namespace

std::string foldCase(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = utf8::endOfAscii(text, at);
    const std::size_t before = result.size();
    result.append(text, at, end - at);
    std::transform(result.begin() + static_cast<std::ptrdiff_t>(before), result.end(),
                   result.begin() + static_cast<std::ptrdiff_t>(before), utf8::lowerAscii);
    at = end;
    if (at == text.size()) break;
    const utf8::Unit unit = utf8::unitAt(text, at);
    if (unit.valid) {
      utf8::append(result, folded(unit.character));
    } else {
      result += text[at];
    }
    at += unit.length;
  }
  return result;
}

int compareIgnoringCase(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    // Both are at the start of a character here, because all before it was ASCII.
    if (!isAscii(a[i]) || !isAscii(b[i])) return foldCase(a.substr(i)).compare(foldCase(b.substr(i)));
    const int difference = utf8::lowerAscii(a[i]) - utf8::lowerAscii(b[i]);
    if (difference != 0) return difference;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) { return compareIgnoringCase(a, b) == 0; }

}  // namespace kv
