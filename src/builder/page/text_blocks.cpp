#include "builder/page/text_blocks.h"

#include <algorithm>
#include <optional>
#include <set>

#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::string_view blockOpening = "<<<'";
constexpr auto notThere = std::string_view::npos;

/// Offsets in the text that a block was found in.
struct TextBlock {
  std::size_t word = 0;     ///< of the end word after the blockOpening
  std::size_t size = 0;     ///< of the end word
  std::size_t lines = 0;    ///< of what lies between
  std::size_t closing = 0;  ///< of the end word that closes the block
};

bool isOfWord(char c) {
  const auto lower = static_cast<char>(c | 0x20);
  return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') || c == '_' || (c & 0x80) != 0;
}

/// The start of the line after `at`; npos in the last one.
std::size_t nextLine(std::string_view text, std::size_t at) {
  const auto end = text.find_first_of("\r\n", at);
  if (end == notThere) return notThere;
  return end + (text.substr(end).starts_with("\r\n") ? 2 : 1);
}

/// Where a line begins with a word, spaces and tabs left out; `at` is the start of a line. `whole`: no longer word.
std::size_t findAtLineStart(std::string_view text, std::size_t at, std::string_view word, bool whole) {
  for (; at != notThere; at = nextLine(text, at)) {
    const auto start = std::min(text.find_first_not_of(" \t", at), text.size());
    const std::string_view rest = text.substr(start);
    if (!rest.starts_with(word)) continue;
    if (!whole || rest.size() == word.size() || !isOfWord(rest[word.size()])) return start;
  }
  return notThere;
}

/// The next block from `at` on.
std::optional<TextBlock> findBlock(std::string_view text, std::size_t at) {
  for (at = text.find(blockOpening, at); at != notThere; at = text.find(blockOpening, at + 1)) {
    const std::size_t word = at + blockOpening.size();
    const auto end = std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(word), text.end(), isOfWord);
    const std::size_t size = static_cast<std::size_t>(end - text.begin()) - word;
    const std::string_view rest = text.substr(word + size);
    if (size == 0 || !(rest.starts_with("'\r") || rest.starts_with("'\n"))) continue;
    const std::size_t lines = nextLine(text, word + size);
    const std::size_t closing = findAtLineStart(text, lines, text.substr(word, size), true);
    if (closing != notThere) return TextBlock{word, size, lines, closing};
  }
  return std::nullopt;
}

std::size_t occurrences(std::string_view text, std::string_view word) {
  std::size_t count = 0;
  for (auto at = text.find(word); at != notThere; at = text.find(word, at + 1)) ++count;
  return count;
}

/// The end word of a block with these lines.
std::string ownEndWord(std::string_view word, std::string_view lines) {
  std::string own(word);
  if (findAtLineStart(lines, 0, word, false) == notThere) return own;
  for (int n = 1; n == 1 || lines.find(own) != notThere; ++n) own = std::string(word) + "_" + std::to_string(n);
  return own;
}

}  // namespace

bool holdsMoreEndWords(std::string_view text, std::string_view expanded) {
  std::set<std::string_view> words;
  for (auto block = findBlock(text, 0); block; block = findBlock(text, block->closing)) {
    words.insert(text.substr(block->word, block->size));
  }
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view word) { return occurrences(expanded, word) > occurrences(text, word); });
}

std::string withOwnEndWords(std::string_view text, const TagExpansion& expand) {
  std::string out;
  std::size_t done = 0;
  for (auto block = findBlock(text, 0); block; block = findBlock(text, block->closing)) {
    const auto lines = expand(text.substr(block->lines, block->closing - block->lines));
    if (!lines) continue;
    const std::string word = ownEndWord(text.substr(block->word, block->size), *lines);
    out.append(text.substr(done, block->word - done)).append(word);
    done = block->word + block->size;
    out.append(text.substr(done, block->closing - done)).append(word);
    done = block->closing + block->size;
  }
  return out.append(text.substr(done));
}

}  // namespace kv
