#pragma once
// What is wrong with a text that visitors read: tags that nobody replaces, characters that the pages can't hold, links
// to pages that the site has not. Texts in, flaws out.

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "store/schema/schema.h"
#include "tags/custom/custom_tags.h"
#include "tags/language/language_module.h"
#include "tags/syntax/tag_index.h"

namespace kv {

/// Where a text ends up, which decides the tags that are replaced in it.
enum class TextHome {
  ArticleText,  ///< read from the database by a visitor's request: none
  Page,         ///< a value of the page tag row, or a file of the template: kinds 1, 4 and 5
  ModelPage,    ///< the model of a department page: kind 2 as well
  ResultsPage   ///< results.htm: kind 3 as well
};

/// Names, looked up without a copy.
using NameSet = std::unordered_set<std::string, TextHash, std::equal_to<>>;

/// What the tags of a shop may name.
struct KnownTags {
  std::array<LanguageModule, maxLanguages> words;  ///< by language
  CustomTags custom;
  bool customOn = false;  ///< the settings turn the merchant's own tags on
  NameSet pageColumns;    ///< folded
  /// Whether a tag of this kind ('1' to '5') and name is replaced. language: 1 to 4.
  bool knows(char kind, std::string_view name, TextHome home, int language) const;
};
/// The tags that come with the program; the merchant's own and the words are for the caller to add.
KnownTags shippedTags();

/// A tag that stays in the page.
struct TagFlaw {
  bool isEndless = false;  ///< it has no ">>": the build fails at it
  std::string tag;         ///< as it is in the text; of an endless one, its first characters
};
/// The tags of a text that nobody replaces, each once.
std::vector<TagFlaw> findTagFlaws(std::string_view text, const KnownTags& known, TextHome home, int language);

/// The first character that Windows-1252 lacks, so that pages hold a reference instead; empty when there is none.
std::string_view firstReference(std::string_view text);

/// The first link of a text to a page of the site that isn't among `pages` (folded names); empty when there is none.
/// Addresses with a scheme, a folder or a tag are not looked at.
std::string firstDeadLink(std::string_view html, const NameSet& pages);
/// Whether an address is a page of the site by its form, and not among `pages`.
bool isDeadLink(std::string_view address, const NameSet& pages);

}  // namespace kv
