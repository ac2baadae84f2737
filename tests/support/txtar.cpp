#include "support/txtar.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "platform/text/text.h"

namespace kv::test {
namespace {

constexpr std::size_t hexDigitsPerLine = 100;

std::vector<std::string> split(std::string_view text, std::string_view separator) {
  std::vector<std::string> pieces;
  for (std::size_t at = text.find(separator); at != std::string_view::npos; at = text.find(separator)) {
    pieces.emplace_back(text.substr(0, at));
    text.remove_prefix(at + separator.size());
  }
  pieces.emplace_back(text);
  return pieces;
}

// Takes a marker line apart; false for any other line.
bool readMarker(std::string_view line, TxtarPart& part) {
  if (line.size() < 7 || !line.starts_with("-- ") || !line.ends_with(" --")) return false;
  std::vector<std::string> words = split(line.substr(3, line.size() - 6), " ");
  if (std::ranges::any_of(words, &std::string::empty)) return false;
  part = {replaceAll(words.front(), "%20", " "), {words.begin() + 1, words.end()}, ""};
  return true;
}

int hexDigit(char letter) {
  if (letter >= '0' && letter <= '9') return letter - '0';
  const auto lower = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string hexBytes(std::string_view text) {
  std::string digits;
  for (const char letter : text) {
    if (hexDigit(letter) >= 0) digits += letter;
  }
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    bytes += static_cast<char>(hexDigit(digits[i]) * 16 + hexDigit(digits[i + 1]));
  return bytes;
}

std::string hexOf(unsigned char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  return {digits[byte / 16], digits[byte % 16]};
}

// Whether "xNN" begins at an index, so that the backslash before it opens an escape.
bool escapeAt(std::string_view text, std::size_t at) {
  return at + 2 < text.size() && text[at] == 'x' && hexDigit(text[at + 1]) >= 0 && hexDigit(text[at + 2]) >= 0;
}

bool isOdd(unsigned char byte) {
  const bool freeCode = byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 || byte == 0x9D;
  return (byte < 0x20 && byte != '\t') || byte == 0x7F || freeCode;
}

// A line of a file with its odd bytes as escapes.
std::string escapedLine(std::string_view bytes) {
  std::string out;
  TxtarPart unused;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool marker = i == 0 && bytes.starts_with("--") && readMarker(bytes, unused);
    const bool backslash = bytes[i] == '\\' && escapeAt(bytes, i + 1);
    const auto byte = static_cast<unsigned char>(bytes[i]);
    out += isOdd(byte) || backslash || marker ? "\\x" + hexOf(byte) : fromWindows1252(bytes.substr(i, 1));
  }
  return out;
}

bool isPicture(std::string_view name) {
  return endsWithIgnoringCase(name, ".gif") || endsWithIgnoringCase(name, ".jpg") || endsWithIgnoringCase(name, ".png");
}

TxtarPart hexPart(const std::string& name, std::string_view bytes) {
  std::string digits;
  for (const char byte : bytes) digits += hexOf(static_cast<unsigned char>(byte));
  TxtarPart part{name, {"hex"}, ""};
  for (std::size_t i = 0; i < digits.size(); i += hexDigitsPerLine)
    part.text += digits.substr(i, hexDigitsPerLine) + "\n";
  return part;
}

}  // namespace

bool TxtarPart::has(std::string_view flag) const { return std::ranges::find(flags, flag) != flags.end(); }

std::string TxtarPart::value(std::string_view flag) const {
  for (const std::string& one : flags) {
    if (one.starts_with(std::string(flag) + "=")) return one.substr(flag.size() + 1);
  }
  return {};
}

const TxtarPart* Txtar::find(std::string_view name) const {
  const auto found = std::ranges::find(parts, name, &TxtarPart::name);
  return found == parts.end() ? nullptr : &*found;
}

Txtar parseTxtar(std::string_view text) {
  Txtar archive;
  std::vector<std::string> lines = split(text, "\n");
  if (lines.back().empty()) lines.pop_back();
  for (const std::string& line : lines) {
    TxtarPart part;
    if (readMarker(line, part)) {
      archive.parts.push_back(std::move(part));
    } else {
      (archive.parts.empty() ? archive.comment : archive.parts.back().text) += line + "\n";
    }
  }
  return archive;
}

std::string formatTxtar(const Txtar& archive) {
  std::string out = archive.comment;
  for (const TxtarPart& part : archive.parts) {
    out += "-- " + replaceAll(part.name, " ", "%20");
    for (const std::string& flag : part.flags) out += " " + flag;
    out += " --\n" + part.text;
  }
  return out;
}

std::string partBytes(const TxtarPart& part) {
  if (part.has("hex")) return hexBytes(part.text);
  std::string_view text = part.text;
  if (part.has("noeol") && !text.empty()) text.remove_suffix(1);
  std::string bytes;
  std::size_t start = 0;
  for (std::size_t at = part.has("escapes") ? text.find('\\') : std::string_view::npos; at != std::string_view::npos;
       at = text.find('\\', at + 1)) {
    if (!escapeAt(text, at + 1)) continue;
    bytes += toWindows1252(replaceAll(text.substr(start, at - start), "\n", "\r\n")) + hexBytes(text.substr(at + 2, 2));
    start = at + 4;
  }
  return bytes + toWindows1252(replaceAll(text.substr(start), "\n", "\r\n"));
}

TxtarPart bytesPart(const std::string& name, std::string_view bytes) {
  if (isPicture(name)) return hexPart(name, bytes);
  TxtarPart part{name, {}, ""};
  const std::vector<std::string> lines = split(bytes, "\r\n");
  for (const std::string& line : lines) {
    if (escapedLine(line) != fromWindows1252(line) && part.flags.empty()) part.flags = {"escapes"};
  }
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const bool last = i + 1 == lines.size();
    if (last && lines[i].empty()) break;
    part.text += (part.flags.empty() ? fromWindows1252(lines[i]) : escapedLine(lines[i])) + "\n";
    if (last) part.flags.emplace_back("noeol");
  }
  return part;
}

std::string firstDifference(std::string_view wanted, std::string_view found) {
  constexpr std::size_t env = 3;
  const std::vector<std::string> left = split(wanted, "\n"), right = split(found, "\n");
  std::size_t first = 0;
  while (first < left.size() && first < right.size() && left[first] == right[first]) ++first;
  std::string out = "line " + std::to_string(first + 1) + "\n";
  for (std::size_t i = first > env ? first - env : 0; i < first; ++i) out += "  " + left[i] + "\n";
  for (std::size_t i = first; i < std::min(first + env, left.size()); ++i) out += "- " + left[i] + "\n";
  for (std::size_t i = first; i < std::min(first + env, right.size()); ++i) out += "+ " + right[i] + "\n";
  return out;
}

}  // namespace kv::test
