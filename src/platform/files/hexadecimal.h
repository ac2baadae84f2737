#pragma once
// Bytes as text. For the sources of this room.

#include <span>
#include <string>
#include <string_view>

namespace kv {

/// Two lower-case hexadecimal digits for each byte.
inline std::string hexadecimal(std::span<const unsigned char> bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text;
}

}  // namespace kv
