#include <optional>

#include "platform/text/text.h"
#include "platform/text/utf8.h"

namespace kv {
namespace {

// One step of a pattern: whether it takes a character, and the index of the next step.
struct Step {
  bool takes = false;
  std::size_t next = 0;
};

bool isDigit(char32_t c) { return c >= '0' && c <= '9'; }

// Whether a list such as "abc", "a-z" holds a character. A hyphen at either end is a hyphen.
bool listHolds(std::string_view list, char32_t character) {
  for (std::size_t at = 0; at < list.size();) {
    const utf8::Unit low = utf8::unitAt(list, at);
    at += low.length;
    char32_t high = low.character;
    if (at + 1 < list.size() && list[at] == '-') {
      const utf8::Unit end = utf8::unitAt(list, at + 1);
      high = end.character;
      at += 1 + end.length;
    }
    if (low.character <= character && character <= high) return true;
  }
  return false;
}

// The step that begins with the "[" at `at`; without a "]" it takes nothing.
Step listStep(std::string_view pattern, std::size_t at, char32_t character) {
  const std::size_t close = pattern.find(']', at + 1);
  if (close == std::string_view::npos) return {false, pattern.size()};
  std::string_view list = pattern.substr(at + 1, close - at - 1);
  const bool negated = list.size() > 1 && list.front() == '!';
  if (negated) list.remove_prefix(1);
  return {listHolds(list, character) != negated, close + 1};
}

Step likeStep(std::string_view pattern, std::size_t at, char32_t character) {
  switch (pattern[at]) {
    case '?':
      return {true, at + 1};
    case '#':
      return {isDigit(character), at + 1};
    case '[':
      return listStep(pattern, at, character);
    default:
      break;
  }
  const utf8::Unit unit = utf8::unitAt(pattern, at);
  return {unit.character == character, at + unit.length};
}

Step wildcardStep(std::string_view pattern, std::size_t at, char32_t character) {
  if (pattern[at] == '?') return {true, at + 1};
  const utf8::Unit unit = utf8::unitAt(pattern, at);
  return {unit.character == character, at + unit.length};
}

// Only the last "*" is ever extended on a mismatch: extending an earlier one could not match more. So the time is at
// most proportional to the product of the two lengths.
template <class StepRule>
bool matches(std::string_view text, std::string_view pattern, StepRule step) {
  std::size_t at = 0, patternAt = 0;
  std::optional<std::size_t> star;
  std::size_t starText = 0;
  while (at < text.size()) {
    if (patternAt < pattern.size() && pattern[patternAt] == '*') {
      star = ++patternAt;
      starText = at;
      if (patternAt == pattern.size()) return true;
      continue;
    }
    const utf8::Unit unit = utf8::unitAt(text, at);
    const Step rule = patternAt < pattern.size() ? step(pattern, patternAt, unit.character) : Step{};
    if (rule.takes) {
      at += unit.length;
      patternAt = rule.next;
    } else if (star) {
      starText += utf8::unitAt(text, starText).length;
      at = starText;
      patternAt = *star;
    } else {
      return false;
    }
  }
  while (patternAt < pattern.size() && pattern[patternAt] == '*') ++patternAt;
  return patternAt == pattern.size();
}

}  // namespace

bool matchesLike(std::string_view text, std::string_view pattern) {
  return matches(foldCase(text), foldCase(pattern), likeStep);
}

bool matchesWildcard(std::string_view text, std::string_view pattern) {
  return matches(foldCase(text), foldCase(pattern), wildcardStep);
}

}  // namespace kv
