#pragma once
// UTF-8 one character at a time, for the text routines of this folder. A byte that belongs to no well-formed
// sequence (too long, a surrogate, beyond U+10FFFF, cut off) is a unit of its own, so that no input is refused.
// Source: The Unicode Standard, section 3.9, table 3-7.

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace kv::utf8 {

/// The lower-case form of A to Z; every other byte as it is.
inline char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

/// One unit of a text: a character and its bytes, or one stray byte (`valid` false, length 1), whose number is
/// 0xDC00 + byte and so equals no character.
struct Unit {
  char32_t character = 0;  ///< code point, or 0xDC00 + byte for a stray byte
  std::size_t length = 1;  ///< bytes in the text, 1 to 4
  bool valid = false;      ///< whether it is a well-formed character
};

/// The unit that starts at byte `at`, which is inside `text`. The first byte tells how many bytes are needed; a
/// sequence that is cut off, overlong, a surrogate or out of range yields its first byte alone.
inline Unit unitAt(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[at + i]); };
  const std::uint8_t lead = byte(0);
  if (lead < 0x80) return {lead, 1, true};  // ASCII
  const Unit stray{0xDC00U + lead, 1, false};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  // 80 to BF only continue a sequence, C0 and C1 would be overlong, F5 to FF lead beyond U+10FFFF.
  if (lead < 0xC2 || lead > 0xF4 || text.size() - at < length) return stray;
  char32_t character = lead & (0xFFU >> (length + 1));  // the payload bits of the first byte
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return stray;  // not a continuation byte
    character = (character << 6) | (byte(i) & 0x3FU);
  }
  const bool tooLong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
  const bool noCharacter = (character >= 0xD800 && character <= 0xDFFF) || character > 0x10FFFF;
  if (tooLong || noCharacter) return stray;
  return {character, length, true};
}

/// Appends the UTF-8 bytes of one character, which is no surrogate and at most U+10FFFF.
inline void append(std::string& text, char32_t character) {
  const auto put = [&](char32_t byte) { text += static_cast<char>(static_cast<std::uint8_t>(byte)); };
  if (character < 0x80) {  // 7 bits
    put(character);
  } else if (character < 0x800) {  // 5 + 6 bits
    put(0xC0 | (character >> 6));
    put(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {  // 4 + 6 + 6 bits
    put(0xE0 | (character >> 12));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  } else {  // 3 + 6 + 6 + 6 bits
    put(0xF0 | (character >> 18));
    put(0x80 | ((character >> 12) & 0x3F));
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
  }
}

/// Index of the first byte from `at` on that isn't ASCII; text.size() when all of them are. Most texts of a shop are
/// ASCII almost throughout, so eight bytes are tested at a time.
inline std::size_t endOfAscii(std::string_view text, std::size_t at) {
  constexpr std::uint64_t high = 0x8080808080808080U;
  while (text.size() - at >= sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + at, sizeof word);
    if ((word & high) != 0) break;
    at += sizeof word;
  }
  while (at < text.size() && static_cast<std::uint8_t>(text[at]) < 0x80) ++at;
  return at;
}

}  // namespace kv::utf8
