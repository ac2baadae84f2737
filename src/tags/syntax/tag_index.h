#pragma once
// The index of a tag file: its sections run together as one text, "001<<4-nome>>002<<4-altro>>". A tag is found at its
// first place in that text, so that the first of two sections of one name wins, and the digits before the place give
// the section. Lookups of plain names go by a hash of what the text would answer; sections are numbered from 0 outside.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kv {

/// Hash that lets a map of std::string be asked with a string_view.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

class TagIndex {
 public:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  /// kind: the digit of the tags, '4' or '5'.
  explicit TagIndex(char kind) : prefix_{'<', '<', kind, '-'} {}
  /// Adds the next section, given its whole tag "<<4-nome>>".
  void add(std::string_view tag);
  void clear();
  std::size_t size() const { return starts_.size(); }
  bool empty() const { return starts_.empty(); }

  /// The section of a bare name as it stands before the first ">>" of a tag, exact in case; none when there is no such
  /// tag.
  std::size_t findName(std::string_view name) const;
  /// The same of a name of any form, or of a whole tag.
  std::size_t find(std::string_view bareOrWhole, bool isWhole) const;
  /// The bare name as a whole tag.
  std::string whole(std::string_view name) const;
  /// Whether a text is a whole tag of this index's kind.
  bool isWhole(std::string_view text) const;

 private:
  std::size_t findTag(std::string_view tag) const;
  std::size_t sectionAt(std::size_t place) const;

  std::string prefix_;
  std::string text_;
  std::vector<std::size_t> starts_;  // where the tag of each section stands in text_
  std::unordered_map<std::string, std::size_t, TextHash, std::equal_to<>> places_;  // first place of each name
  std::size_t longest_ = 0;  // letters of the longest name: a longer one needs no hashing
};

/// One section of a tag file: its whole tag, and its lines joined by CR LF.
struct TagSection {
  std::string tag;
  std::string text;
};

/// Divides the text of a tag file into sections and adds their tags to `index`. A line that, without the blanks around
/// it, is a whole tag of the index's kind opens a section. Lines for which `skips` is true, and those before the first
/// section, belong to none.
std::vector<TagSection> readSections(std::string_view text, TagIndex& index, bool (*skips)(std::string_view line));

}  // namespace kv
