#include "publish/settings/key_lines.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::size_t keyLength = 5;

char upperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; }

std::string onOneLine(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return text;
}

}  // namespace

std::vector<KeyLine> parseKeyLines(std::string_view text) {
  std::vector<KeyLine> lines;
  for (const std::string_view line : splitLines(text)) {
    const std::string_view start = firstCharacters(line, keyLength);
    if (start.size() != keyLength) continue;
    std::string key(start);
    std::ranges::transform(key, key.begin(), upperAscii);
    lines.push_back({std::move(key), std::string(trim(line.substr(keyLength)))});
  }
  return lines;
}

std::optional<std::vector<KeyLine>> readKeyLines(const std::string& path) {
  const auto text = readText(path);
  if (!text) return std::nullopt;
  return parseKeyLines(*text);
}

std::string keyLinesText(const std::vector<KeyLine>& lines) {
  std::string text;
  for (const KeyLine& line : lines) text += line.key + " " + onOneLine(line.value) + "\r\n";
  return text;
}

bool isZero(std::string_view value) {
  const auto number = toNumber(value);
  return number && *number == 0;
}

bool isOn(std::string_view value) {
  const auto number = toNumber(value);
  return number && (*number == 1 || *number == -1);
}

std::string oneOrZero(bool on) { return on ? "1" : "0"; }
std::string minusOneOrZero(bool on) { return on ? "-1" : "0"; }

}  // namespace kv
