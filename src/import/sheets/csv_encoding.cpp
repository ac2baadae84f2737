// The encodings of texts of separated values.
#include "import/sheets/csv_text.h"
#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF", littleMark = "\xFF\xFE", bigMark = "\xFE\xFF";
constexpr char32_t lowestSurrogate = 0xD800, secondSurrogate = 0xDC00, afterSurrogates = 0xE000, noCharacter = 0xFFFD;
constexpr char32_t beyondUnit = 0x10000;

bool isUtf8Throughout(std::string_view text) {
  for (std::size_t at = utf8::endOfAscii(text, 0); at < text.size();) {
    const utf8::Unit unit = utf8::unitAt(text, at);
    if (!unit.valid) return false;
    at = utf8::endOfAscii(text, at + unit.length);
  }
  return true;
}

/// UTF-16 units as UTF-8; what is no pair of surrogates becomes U+FFFD.
std::string fromUtf16(std::string_view bytes, bool bigEndian) {
  const auto unitAt = [&](std::size_t at) {
    const auto first = static_cast<unsigned char>(bytes[at]), second = static_cast<unsigned char>(bytes[at + 1]);
    return static_cast<char32_t>(bigEndian ? (first << 8) | second : (second << 8) | first);
  };
  std::string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    char32_t unit = unitAt(at);
    if (unit >= lowestSurrogate && unit < afterSurrogates) {
      const char32_t next = at + 3 < bytes.size() ? unitAt(at + 2) : 0;
      const bool isPair = unit < secondSurrogate && next >= secondSurrogate && next < afterSurrogates;
      if (isPair) at += 2;
      unit = isPair ? beyondUnit + ((unit - lowestSurrogate) << 10) + (next - secondSurrogate) : noCharacter;
    }
    utf8::append(text, unit);
  }
  return text;
}

std::string toUtf16(std::string_view text, bool bigEndian) {
  std::string bytes;
  const auto put = [&](char32_t unit) {
    const auto high = static_cast<char>(static_cast<std::uint8_t>(unit >> 8));
    const auto low = static_cast<char>(static_cast<std::uint8_t>(unit));
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  };
  for (std::size_t at = 0; at < text.size();) {
    const utf8::Unit unit = utf8::unitAt(text, at);
    at += unit.length;
    const char32_t character = unit.valid ? unit.character : noCharacter;
    if (character < beyondUnit) {
      put(character);
      continue;
    }
    constexpr char32_t lowBits = 0x3FF;
    put(lowestSurrogate + ((character - beyondUnit) >> 10));
    put(secondSurrogate + (character & lowBits));
  }
  return bytes;
}

/// UTF-16 without a mark shows by the zeros of its plain characters, all of them in the same halves.
std::optional<CsvEncoding> utf16ByZeros(std::string_view bytes) {
  constexpr std::size_t lookedAt = 512;
  bytes = bytes.substr(0, lookedAt);
  std::size_t even = 0, odd = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (bytes[at] == '\0') ++(at % 2 == 0 ? even : odd);
  }
  if (odd > bytes.size() / 4 && even == 0) return CsvEncoding::Utf16Little;
  if (even > bytes.size() / 4 && odd == 0) return CsvEncoding::Utf16Big;
  return std::nullopt;
}

}  // namespace

std::string_view csvMark(CsvEncoding encoding) {
  if (encoding == CsvEncoding::Utf8Mark) return utf8Mark;
  if (encoding == CsvEncoding::Utf16Little) return littleMark;
  return encoding == CsvEncoding::Utf16Big ? bigMark : std::string_view();
}

CsvEncoding csvEncodingOf(std::string_view bytes) {
  for (const CsvEncoding encoding : {CsvEncoding::Utf8Mark, CsvEncoding::Utf16Little, CsvEncoding::Utf16Big}) {
    // A mark in UTF-8 before what is none is no mark.
    const bool isMarked = bytes.starts_with(csvMark(encoding));
    if (isMarked && (encoding != CsvEncoding::Utf8Mark || isUtf8Throughout(bytes))) return encoding;
  }
  if (const auto found = utf16ByZeros(bytes)) return *found;
  return isUtf8Throughout(bytes) ? CsvEncoding::Utf8 : CsvEncoding::Windows1252;
}

std::string_view decodedCsv(std::string_view bytes, CsvEncoding encoding, std::string& kept) {
  const bool isUtf16 = encoding == CsvEncoding::Utf16Little || encoding == CsvEncoding::Utf16Big;
  const bool isBytes = encoding == CsvEncoding::Utf8 || encoding == CsvEncoding::Windows1252;
  const std::string_view mark = isBytes ? utf8Mark : csvMark(encoding);
  if (!mark.empty() && bytes.starts_with(mark)) bytes.remove_prefix(mark.size());
  if (!isUtf16 && encoding != CsvEncoding::Windows1252) return bytes;
  kept = isUtf16 ? fromUtf16(bytes, encoding == CsvEncoding::Utf16Big) : fromWindows1252(bytes);
  return kept;
}

std::string decodedCsv(std::string_view bytes, CsvEncoding encoding) {
  std::string kept;
  return std::string(decodedCsv(bytes, encoding, kept));
}

std::string encodedCsv(std::string_view text, CsvEncoding encoding) {
  if (encoding == CsvEncoding::Windows1252) return toWindows1252(text);
  const bool isUtf16 = encoding == CsvEncoding::Utf16Little || encoding == CsvEncoding::Utf16Big;
  return isUtf16 ? toUtf16(text, encoding == CsvEncoding::Utf16Big) : std::string(text);
}

}  // namespace kv
