#pragma once
// Text in memory is UTF-8; text in the files of a shop is Windows-1252 with CR LF. These routines cross that border
// and hold the text operations that every folder needs. Case is ignored by Unicode simple case folding.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// UTF-8 of Windows-1252 bytes. Every one of the 256 bytes survives the round trip: the five codes without a
/// character (81, 8D, 8F, 90, 9D) become the control characters U+0081 and so on.
/// Source: the WHATWG Encoding Standard, index windows-1252.
std::string fromWindows1252(std::string_view bytes);

/// Windows-1252 bytes of UTF-8. A character outside the code page becomes a decimal numeric character reference
/// ("&#8362;"); a byte that is not UTF-8 becomes "?".
std::string toWindows1252(std::string_view utf8);

/// What encoding one character has consumed and produced.
struct EncodedCharacter {
  std::size_t read = 0;     ///< bytes of UTF-8
  std::size_t written = 0;  ///< bytes in `out`
};
/// The most bytes that one character takes in Windows-1252: those of "&#1114111;".
constexpr std::size_t widestWindows1252 = 10;
/// Encodes the one character at `utf8[at]` as toWindows1252 does. `out` has room for `widestWindows1252` bytes.
EncodedCharacter encodeWindows1252(std::string_view utf8, std::size_t at, char* out);

/// Lower case by simple case folding; bytes that are not UTF-8 stay, and so do the micro sign and the two Turkish
/// kinds of i, so that the lower case of a Windows-1252 text is one again. Each character gives one character.
std::string foldCase(std::string_view text);
/// Whether two texts are equal when case is ignored.
bool equalsIgnoringCase(std::string_view a, std::string_view b);
/// Order by folded text: negative, 0, positive.
int compareIgnoringCase(std::string_view a, std::string_view b);
/// Whether `text` begins with `start` when case is ignored. An empty `start` begins every text.
bool startsWithIgnoringCase(std::string_view text, std::string_view start);
/// Whether `text` ends with `end` when case is ignored. An empty `end` ends every text.
bool endsWithIgnoringCase(std::string_view text, std::string_view end);
/// Byte index of `what` in `text` from `from` on, ASCII letters compared without case; npos when absent. An empty
/// `what` is found at once.
std::size_t findIgnoringCase(std::string_view text, std::string_view what, std::size_t from = 0);

/// Replaces every occurrence, from left to right, without searching the inserted text again. An empty
/// `what` leaves the text as it is.
std::string replaceAll(std::string_view text, std::string_view what, std::string_view replacement);

/// The text without the spaces (U+0020 only) at both ends.
std::string_view trim(std::string_view text);

/// Lines without their ends (CR LF, LF or CR); an end at the very end of the text opens no further line.
std::vector<std::string_view> splitLines(std::string_view text);

/// The number of characters of UTF-8 text. A byte that is not UTF-8 counts as one character.
std::size_t characterCount(std::string_view utf8);
/// The first `count` characters of UTF-8 text, counted as characterCount does; all of it when it has no more.
std::string_view firstCharacters(std::string_view utf8, std::size_t count);

/// Pattern of the LIKE operator: "*" any text, "?" one character, "#" one digit, "[abc]", "[a-z]", "[!a-z]" one
/// character in or out of a list. Case is ignored. An unclosed "[" and an empty list match nothing; "[!]" is the
/// character "!" and a hyphen at either end of a list is a hyphen.
bool matchesLike(std::string_view text, std::string_view pattern);
/// Pattern of a file name, in which "*" and "?" alone have a meaning. Case is ignored.
bool matchesWildcard(std::string_view text, std::string_view pattern);

}  // namespace kv
