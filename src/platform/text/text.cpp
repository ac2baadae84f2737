#include "platform/text/text.h"

#include <algorithm>

#include "platform/text/utf8.h"

namespace kv {
namespace {

char upperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; }

bool sameAscii(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return utf8::lowerAscii(x) == utf8::lowerAscii(y); });
}

// Finds the occurrences of one byte, each once, so that a search for two bytes (upper and lower case) takes linear
// time.
class ByteScan {
 public:
  ByteScan(std::string_view text, char byte, std::size_t from) : text_(text), byte_(byte), at_(text.find(byte, from)) {}
  std::size_t from(std::size_t start) {
    if (at_ < start) at_ = text_.find(byte_, start);
    return at_;
  }

 private:
  std::string_view text_;
  char byte_;
  std::size_t at_;
};

// The offset in bytes after `count` characters.
std::size_t offsetAfter(std::string_view text, std::size_t count) {
  std::size_t at = 0;
  for (; count > 0 && at < text.size(); --count) at += utf8::unitAt(text, at).length;
  return at;
}

}  // namespace

std::size_t findIgnoringCase(std::string_view text, std::string_view what, std::size_t from) {
  if (from > text.size() || what.size() > text.size() - from) return std::string_view::npos;
  if (what.empty()) return from;
  ByteScan lower(text, utf8::lowerAscii(what.front()), from);
  ByteScan upper(text, upperAscii(what.front()), from);
  const std::size_t last = text.size() - what.size();
  for (std::size_t at = from;; ++at) {
    at = std::min(lower.from(at), upper.from(at));
    if (at > last) return std::string_view::npos;
    if (sameAscii(text.substr(at, what.size()), what)) return at;
  }
}

std::string replaceAll(std::string_view text, std::string_view what, std::string_view replacement) {
  if (what.empty()) return std::string(text);
  std::string result;
  std::size_t at = 0;
  for (std::size_t hit = text.find(what); hit != std::string_view::npos; hit = text.find(what, at)) {
    if (at == 0) result.reserve(text.size());
    result.append(text, at, hit - at).append(replacement);
    at = hit + what.size();
  }
  return result.append(text, at, text.size() - at);
}

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string_view> splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    lines.push_back(text.substr(at, end - at));
    const bool isPair = text.substr(end, 2) == "\r\n";
    at = end + (isPair ? 2 : 1);
  }
  return lines;
}

std::size_t characterCount(std::string_view utf8Text) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < utf8Text.size();) {
    const std::size_t end = utf8::endOfAscii(utf8Text, at);
    count += end - at;
    at = end;
    if (at == utf8Text.size()) break;
    at += utf8::unitAt(utf8Text, at).length;
    ++count;
  }
  return count;
}

std::string_view firstCharacters(std::string_view utf8Text, std::size_t count) {
  if (count >= utf8Text.size()) return utf8Text;
  return utf8Text.substr(0, offsetAfter(utf8Text, count));
}

bool startsWithIgnoringCase(std::string_view text, std::string_view start) {
  // Folding turns one character into one, so equal texts have the same number of characters, though not of bytes.
  return equalsIgnoringCase(firstCharacters(text, characterCount(start)), start);
}

bool endsWithIgnoringCase(std::string_view text, std::string_view end) {
  if (end.size() <= text.size() && utf8::endOfAscii(end, 0) == end.size()) {
    const std::string_view tail = text.substr(text.size() - end.size());
    if (utf8::endOfAscii(tail, 0) == tail.size()) return sameAscii(tail, end);
  }
  return foldCase(text).ends_with(foldCase(end));
}

}  // namespace kv
