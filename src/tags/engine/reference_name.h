#pragma once
// What ReplaceString looks for and what it puts in: the forms of a file name, and the pairs of letters that make a
// reference of it.

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// The letters before and behind a name in a reference.
struct Delimiters {
  char open;
  char close;
};
/// In the order in which they are looked for.
inline constexpr std::array<Delimiters, 6> referenceDelimiters{
    {{'"', '"'}, {'\'', '\''}, {' ', ' '}, {'=', ' '}, {'=', '>'}, {' ', '>'}}};

/// The tag that a reference gets, before the first "." of its name.
inline constexpr std::string_view languageTag = "<<1-IDlingua>>";
/// Letters of ".htm", which is what the page extension takes the place of.
inline constexpr std::size_t pageEnding = 4;

/// One form of a name: as it is, or with "%20" for each blank.
struct ReferenceForm {
  std::string name;            ///< as it is put in
  std::string folded;          ///< as it is looked for, see foldKeepingLength
  std::size_t baseLength = 0;  ///< letters before the first "."
  bool renamesPage = false;    ///< the first four letters behind the base become the page extension
};

/// The forms of a name in the order of their rounds: two when it holds a blank, none when it is empty.
std::vector<ReferenceForm> referenceForms(std::string_view nome, std::string_view pageExtension);

/// What takes the place of the name.
std::string replacementOf(const ReferenceForm& form, std::string_view pageExtension);

/// Lower case that leaves every letter at its place: one whose lower form takes more or fewer bytes stays.
std::string foldKeepingLength(std::string_view text);

}  // namespace kv
