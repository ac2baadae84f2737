#include "platform/files/message_code.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>

#include "platform/files/hexadecimal.h"

namespace kv {
namespace {

/// The value of a hexadecimal digit; 16 for any other character.
unsigned int valueOfDigit(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned int>(c - '0');
  const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c + ('a' - 'A')) : c;
  return lower >= 'a' && lower <= 'f' ? static_cast<unsigned int>(lower - 'a') + 10U : 16U;
}

}  // namespace

std::optional<std::string> bytesOfHexadecimal(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  for (std::size_t at = 0; at < digits.size(); at += 2) {
    const unsigned int high = valueOfDigit(digits[at]), low = valueOfDigit(digits[at + 1]);
    if (high > 15U || low > 15U) return std::nullopt;
    bytes += static_cast<char>(static_cast<unsigned char>((high << 4U) | low));
  }
  return bytes;
}

std::string hmacSha256(std::string_view key, std::string_view message) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> code{};
  unsigned int size = 0;
  const auto* text = reinterpret_cast<const unsigned char*>(message.data());
  if (HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), text, message.size(), code.data(), &size) ==
      nullptr) {
    return {};
  }
  return hexadecimal({code.data(), size});
}

bool isSameCode(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CRYPTO_memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace kv
