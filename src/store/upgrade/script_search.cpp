#include "store/upgrade/script_search.h"

#include <algorithm>

namespace kv {
namespace {

constexpr bool isSpace(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

/// How long the match is that begins at `start`; 0 when there is none. `search` holds no space.
std::size_t matchLength(std::string_view text, std::string_view search, std::size_t start) {
  std::size_t at = start;
  for (const char wanted : search) {
    while (at < text.size() && isSpace(text[at])) ++at;
    if (at == text.size() || text[at] != wanted) return 0;
    ++at;
  }
  return at - start;
}

}  // namespace

std::string withoutSpace(std::string_view text) {
  std::string compact;
  compact.reserve(text.size());
  std::ranges::copy_if(text, std::back_inserter(compact), [](char character) { return !isSpace(character); });
  return compact;
}

PatchMatch TrovaPatch(std::string_view text, std::string_view search, std::size_t start) {
  const std::string compact = withoutSpace(search);
  if (compact.empty()) return {};
  for (std::size_t at = text.find(compact.front(), start); at != std::string_view::npos;
       at = text.find(compact.front(), at + 1)) {
    if (const std::size_t length = matchLength(text, compact, at); length > 0) return {at, length};
  }
  return {};
}

std::string SostituisciPatch(std::string_view text, std::string_view search, std::string_view replacement) {
  std::string patched;
  std::size_t done = 0;
  for (PatchMatch match = TrovaPatch(text, search); match.isFound(); match = TrovaPatch(text, search, done)) {
    patched.append(text, done, match.position - done).append(replacement);
    done = match.position + match.length;
  }
  return patched.append(text, done);
}

}  // namespace kv
