#pragma once
// The index of a tag file: the tags of its sections, joined to one text, "001<<4-nome>>002<<4-altro>>". A tag is found
// at its first position in that text, so that the first of two sections of one name wins, and the digits before it give
// the section. Plain names are looked up in a hash table with the same results. The interface counts sections from 0.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kv {

/// A hash for maps of std::string that are searched with a string_view.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
};

/// Finds the sections of a tag file by their tags.
class TagIndex {
 public:
  /// The result for a tag that isn't there.
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  /// kind: the digit of the tags, '4' or '5'.
  explicit TagIndex(char kind) : prefix_{'<', '<', kind, '-'} {}
  /// Adds the next section, given its whole tag "<<4-nome>>".
  void add(std::string_view tag);
  /// Removes all sections.
  void clear();
  /// The number of sections.
  std::size_t size() const { return starts_.size(); }
  /// Whether there are none.
  bool empty() const { return starts_.empty(); }

  /// The section of a bare name in which there is no ">>"; none when there is no such tag. Case counts.
  std::size_t findName(std::string_view name) const;
  /// The section of any bare name, or of a whole tag; none when there is no such tag. Case counts.
  std::size_t find(std::string_view bareOrWhole, bool isWhole) const;
  /// The bare name as a whole tag.
  std::string whole(std::string_view name) const;
  /// Whether a text is a whole tag of this index's kind.
  bool isWhole(std::string_view text) const;

 private:
  std::size_t findTag(std::string_view tag) const;    // by searching text_
  std::size_t sectionAt(std::size_t position) const;  // the section whose tag is at an index of text_

  std::string prefix_;               // "<<4-" or "<<5-"
  std::string text_;                 // as described at the top of this file
  std::vector<std::size_t> starts_;  // index in text_ of the tag of each section
  std::unordered_map<std::string, std::size_t, TextHash, std::equal_to<>> positions_;  // first position of each name
  std::size_t longest_ = 0;  // bytes of the longest name: a longer one is not hashed
};

/// One section of a tag file: its whole tag, and its lines joined by CR LF.
struct TagSection {
  std::string tag;   ///< "<<4-nome>>"
  std::string text;  ///< without the line of the tag
};

/// Divides the text of a tag file into sections and adds their tags to `index`. A line that, without the spaces around
/// it, is a whole tag of the index's kind opens a section. Lines for which `skips` is true, and those before the first
/// section, belong to none.
std::vector<TagSection> readSections(std::string_view text, TagIndex& index, bool (*skips)(std::string_view line));

}  // namespace kv
