#include "platform/text/form_text.h"

namespace kv {
namespace {

bool isUnreserved(char c) {
  const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return isLetter || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_' || c == '~';
}

}  // namespace

std::string formValue(std::string_view text) {
  constexpr std::string_view upperDigits = "0123456789ABCDEF";
  std::string out;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (isUnreserved(c)) {
      out += c;
    } else {
      out.append(1, '%').append(1, upperDigits[byte >> 4U]).append(1, upperDigits[byte & 15U]);
    }
  }
  return out;
}

}  // namespace kv
