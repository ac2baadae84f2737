#include "platform/text/json_text.h"

namespace kv {

std::string jsonString(std::string_view text) {
  static constexpr std::string_view digits = "0123456789abcdef";
  std::string out = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out.append(1, '\\').append(1, c);
    } else if (code < 0x20) {
      out.append("\\u00").append(1, digits[code >> 4]).append(1, digits[code & 15]);
    } else {
      out += c;
    }
  }
  return out + "\"";
}

}  // namespace kv
