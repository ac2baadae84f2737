#include "media/purge/picture_mentions.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace kv {
namespace {

/// The characters of a word that can be a file's name. A table: megabytes of texts go through it.
constexpr std::array<bool, 256> wordCharacters = [] {
  std::array<bool, 256> table{};
  for (const char c : std::string_view("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.")) {
    table[static_cast<std::uint8_t>(c)] = true;
  }
  return table;
}();

bool isInWord(char c) { return wordCharacters[static_cast<std::uint8_t>(c)]; }

/// The word around a dot; `end` is after it. Without the point of a sentence, and empty when no dot is left then.
std::string_view wordAround(std::string_view text, std::size_t dot, std::size_t& end) {
  std::size_t begin = dot;
  end = dot + 1;
  while (end < text.size() && isInWord(text[end])) ++end;
  std::size_t last = end;
  while (last > dot && text[last - 1] == '.') --last;
  if (last <= dot) return {};
  while (begin > 0 && isInWord(text[begin - 1])) --begin;
  return text.substr(begin, last - begin);
}

}  // namespace

void PictureMentions::lookFor(const std::string& name) {
  const std::string folded = foldCase(name);
  if (std::ranges::all_of(folded, isInWord)) {
    names_.insert(folded);
  } else {
    oddNames_.push_back(folded);
  }
}

void PictureMentions::read(std::string_view text) {
  // A picture's name has a dot, and most texts have none within a word.
  std::size_t end = 0;
  for (std::size_t dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.', end)) {
    const std::string_view word = wordAround(text, dot, end);
    if (word.empty()) continue;  // most dots end a sentence
    std::string folded = foldCase(word);
    if (names_.contains(folded)) found_.insert(std::move(folded));
  }
  if (oddNames_.empty()) return;
  const std::string folded = foldCase(text);
  for (const std::string& name : oddNames_) {
    if (folded.find(name) != std::string::npos) found_.insert(name);
  }
}

bool PictureMentions::isMentioned(const std::string& name) const { return found_.contains(foldCase(name)); }

}  // namespace kv
