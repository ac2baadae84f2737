#pragma once
// Bytes as hexadecimal text.

#include <span>
#include <string>
#include <string_view>

#include "platform/ports/clock.h"

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

/// So many random digits of that kind, each equally likely.
inline std::string randomHexadecimal(RandomSource& random, std::size_t count) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  while (text.size() < count) text += digits[random.below(static_cast<std::uint32_t>(digits.size()))];
  return text;
}

}  // namespace kv
