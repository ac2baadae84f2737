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

/// The word around a dot; `end` is after it. Folded, and without the point of a sentence.
std::string wordAround(std::string_view text, std::size_t dot, std::size_t& end) {
  std::size_t begin = dot;
  end = dot + 1;
  while (begin > 0 && isInWord(text[begin - 1])) --begin;
  while (end < text.size() && isInWord(text[end])) ++end;
  std::string word = foldCase(text.substr(begin, end - begin));
  while (word.ends_with('.')) word.pop_back();
  return word;
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
    std::string word = wordAround(text, dot, end);
    if (names_.contains(word)) found_.insert(std::move(word));
  }
  if (oddNames_.empty()) return;
  const std::string folded = foldCase(text);
  for (const std::string& name : oddNames_) {
    if (folded.find(name) != std::string::npos) found_.insert(name);
  }
}

bool PictureMentions::isMentioned(const std::string& name) const { return found_.contains(foldCase(name)); }

}  // namespace kv
