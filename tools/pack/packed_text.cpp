#include "packed_text.h"

#include <charconv>

#include "platform/text/text.h"

namespace kv {
namespace {

constexpr int deepestPart = 8;

Result<std::string> expanded(std::string_view text, const PartSource& part, int depth) {
  if (depth > deepestPart) return fail(ErrorKind::Malformed, "", "parts that contain each other");
  std::string out;
  std::size_t from = 0;
  for (;;) {
    const auto open = text.find("{{", from);
    const auto close = open == std::string_view::npos ? open : text.find("}}", open);
    if (close == std::string_view::npos) break;
    const std::string_view name = text.substr(open + 2, close - open - 2);
    std::optional<std::string> found = part(name);
    if (!found) return fail(ErrorKind::Malformed, "", "no part is named " + std::string(name));
    if (found->ends_with('\n')) found->pop_back();
    Result<std::string> inner = expanded(*found, part, depth + 1);
    if (!inner) return inner;
    out += text.substr(from, open - from);
    out += *inner;
    from = close + 2;
  }
  out += text.substr(from);
  return out;
}

}  // namespace

Result<std::string> withParts(std::string_view text, const PartSource& part) { return expanded(text, part, 0); }

Result<std::string> shopTextOf(std::string_view text) {
  std::string out;
  int number = 0;
  for (const std::string_view line : splitLines(text)) {
    ++number;
    const std::string bytes = toWindows1252(line);
    if (fromWindows1252(bytes) != line)
      return fail(ErrorKind::Malformed, std::to_string(number), "a character that Windows-1252 lacks");
    out += bytes;
    out += "\r\n";
  }
  if (!text.empty() && text.back() != '\n' && text.back() != '\r') out.resize(out.size() - 2);
  return out;
}

Result<std::string> colourGif(std::string_view colour) {
  constexpr std::size_t digits = 6;
  unsigned value = 0;
  const auto [end, error] = std::from_chars(colour.data(), colour.data() + colour.size(), value, 16);
  if (colour.size() != digits || error != std::errc() || end != colour.data() + digits)
    return fail(ErrorKind::Malformed, "", "no colour: " + std::string(colour));
  // GIF89a: a screen of 1 x 1 with a table of two colours, and the one pixel, colour 0, as LZW data of 2 bytes.
  std::string gif{"GIF89a\x01\x00\x01\x00\x80\x00\x00", 13};
  for (const unsigned shift : {16U, 8U, 0U}) gif += static_cast<char>((value >> shift) & 0xFFU);
  gif.append("\xFF\xFF\xFF", 3);
  gif.append("\x2C\x00\x00\x00\x00\x01\x00\x01\x00\x00\x02\x02\x44\x01\x00\x3B", 16);
  return gif;
}

}  // namespace kv
