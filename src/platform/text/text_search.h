#pragma once
// Searching texts for what a merchant typed, and replacing it: a plain text or a regular expression, with or without
// regard to case, whole words alone where that is wanted. The time is bounded by the length of the text, whatever the
// expression: no text of a shop can hold the program.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <vector>

namespace kv {

/// What is searched for. All texts are UTF-8.
struct SearchWords {
  std::string text;           ///< what was typed
  bool isExpression = false;  ///< it is a regular expression (RE2 syntax)
  bool matchesCase = false;   ///< "vaso" is not "Vaso"
  bool wholeWords = false;    ///< no letter, digit or "_" touches what is found
};

/// One hit, in bytes.
struct TextHit {
  std::size_t at = 0;
  std::size_t length = 0;  ///< never 0
};

class TextSearch {
 public:
  /// The reason, as the engine words it, when the text is no regular expression or is empty.
  static tl::expected<TextSearch, std::string> prepare(const SearchWords& words);
  TextSearch(TextSearch&&) noexcept;
  TextSearch& operator=(TextSearch&&) noexcept;
  ~TextSearch();

  /// All hits from left to right, none overlapping another. What is empty is no hit. A text that is not UTF-8 has none.
  std::vector<TextHit> find(std::string_view text) const;
  /// The text with every hit replaced. For an expression "$1" to "$9" (or "\1") in `replacement` are what its groups
  /// have found, "$0" all of it, "$$" a "$"; for a plain text every character is itself.
  std::string replace(std::string_view text, std::string_view replacement) const;

 private:
  struct Engine;
  explicit TextSearch(std::unique_ptr<Engine> engine);
  std::unique_ptr<Engine> engine_;
};

}  // namespace kv
