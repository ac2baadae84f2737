#pragma once
// What ReplaceString looks for and what it inserts: the forms of a file name, and the pairs of delimiters that make a
// reference of it.

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// The characters before and after a name in a reference.
struct Delimiters {
  char open;   ///< directly before the name
  char close;  ///< directly after it
};
/// All pairs, in the order in which they are looked for.
inline constexpr std::array<Delimiters, 6> referenceDelimiters{
    {{'"', '"'}, {'\'', '\''}, {' ', ' '}, {'=', ' '}, {'=', '>'}, {' ', '>'}}};

/// The tag that is inserted into a reference, before the first "." of its name.
inline constexpr std::string_view languageTag = "<<1-IDlingua>>";
/// The length of ".htm", which the page extension replaces.
inline constexpr std::size_t pageEnding = 4;

/// One form of a name: as it is, or with "%20" for each space.
struct ReferenceForm {
  std::string name;            ///< as it is inserted
  std::string folded;          ///< as it is looked for, see foldKeepingLength
  std::size_t baseLength = 0;  ///< bytes before the first "."
  bool renamesPage = false;    ///< the first four bytes after the base become the page extension
};

/// The forms of a name in the order in which they are replaced: two when it holds a space, none when it is empty.
std::vector<ReferenceForm> referenceForms(std::string_view nome, std::string_view pageExtension);

/// The text that replaces the name of a reference.
std::string replacementOf(const ReferenceForm& form, std::string_view pageExtension);

/// Lower case that keeps the index of every character: one whose lower case takes more or fewer bytes stays.
std::string foldKeepingLength(std::string_view text);

}  // namespace kv
