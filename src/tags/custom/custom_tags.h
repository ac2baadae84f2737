#pragma once
// Custom tags: the merchant's own snippets, from `shoptag.tag` of the shop and `personal.tag` of the application.

#include <string>
#include <string_view>
#include <vector>

#include "tags/syntax/tag_index.h"

namespace kv {

/// One snippet as the file holds it.
struct CustomTag {
  std::string name;  ///< bare
  std::string text;  ///< lines joined by CR LF, empty lines kept
  bool ofShop = false;
};

class CustomTags {
 public:
  bool empty() const { return entries_.empty(); }
  const std::vector<CustomTag>& entries() const { return entries_; }
  /// TagPersonale (custom tag): the text of a tag, given bare or whole; empty when there is none. Exact in case; of two
  /// tags of one name the first wins.
  const std::string& TagPersonale(std::string_view nome) const;
  /// The text by a bare name as it stands before the first ">>" of a tag, nullptr when there is none.
  const std::string* find(std::string_view name) const;
  void clear();
  /// Appends the sections of a file's text: each opens with a line "<<5-name>>". Lines before the first are ignored.
  void add(std::string_view fileText, bool ofShop);

 private:
  std::vector<CustomTag> entries_;
  TagIndex index_{'5'};
};

/// CaricaTagPersonali (load custom tags): `shoptag.tag` of the shop first, then `personal.tag` of the application, so
/// that a shop's tag wins. A file that isn't there or can't be read adds nothing.
CustomTags CaricaTagPersonali(const std::string& shopFolder, const std::string& applicationFolder);

}  // namespace kv
