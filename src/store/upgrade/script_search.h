#pragma once
// Search and replace in scripts that is blind to spaces, tabs and line breaks, so that a line still matches after
// somebody has indented or broken it. Every other character counts, its case included. Texts are bytes.

#include <cstddef>
#include <string>
#include <string_view>

namespace kv {

/// A text without its spaces, tabs and line breaks.
std::string withoutSpace(std::string_view text);

/// A match in a text; `position` is npos when there is none.
struct PatchMatch {
  std::size_t position = std::string_view::npos;  ///< of its first character, which is no space
  std::size_t length = 0;                         ///< to its last one, the spaces between them counted
  bool isFound() const { return position != std::string_view::npos; }
};

/// TrovaPatch (find a patch): the first match of `search` in `text` from `start` on. An empty search, or one of spaces
/// alone, matches nothing. A match may begin inside a word.
PatchMatch TrovaPatch(std::string_view text, std::string_view search, std::size_t start = 0);

/// SostituisciPatch (replace by a patch): every match replaced, from left to right, what was put in not searched again.
/// Spaces around a match stay.
std::string SostituisciPatch(std::string_view text, std::string_view search, std::string_view replacement);

}  // namespace kv
