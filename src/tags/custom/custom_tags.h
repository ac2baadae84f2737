#pragma once
// Custom tags: the merchant's own snippets, from `shoptag.tag` of the shop and `personal.tag` of the application.

#include <string>
#include <string_view>
#include <vector>

#include "tags/syntax/tag_index.h"

namespace kv {

/// One snippet as the file holds it.
struct CustomTag {
  std::string name;     ///< bare: "name" of "<<5-name>>"
  std::string text;     ///< lines joined by CR LF, empty lines kept
  bool ofShop = false;  ///< from `shoptag.tag`; else from `personal.tag`
};

/// Whether the setting `personaltags`, a text, turns them on: a number other than 0, "true" or "vero", case ignored.
bool areCustomTagsOn(std::string_view setting);

/// The custom tags of a build, in the order of their files.
class CustomTags {
 public:
  /// Whether there are none.
  bool empty() const { return entries_.empty(); }
  /// All tags in the order in which they were added.
  const std::vector<CustomTag>& entries() const { return entries_; }
  /// TagPersonale (custom tag): the text of a tag, given bare or whole; empty when there is none. Case counts; of two
  /// tags of one name the first wins.
  const std::string& TagPersonale(std::string_view nome) const;
  /// The text of a tag by its bare name, in which there is no ">>"; nullptr when there is none.
  const std::string* find(std::string_view name) const;
  /// Removes all tags.
  void clear();
  /// Appends the sections of a file's text: each opens with a line "<<5-name>>". Lines before the first are ignored.
  void add(std::string_view fileText, bool ofShop);

 private:
  std::vector<CustomTag> entries_;
  TagIndex index_{'5'};  // sections are indexes of entries_
};

/// CaricaTagPersonali (load custom tags): `shoptag.tag` of the shop first, then `personal.tag` of the application, so
/// that a shop's tag wins. A file that isn't there or can't be read adds nothing.
CustomTags CaricaTagPersonali(const std::string& shopFolder, const std::string& applicationFolder);

}  // namespace kv
