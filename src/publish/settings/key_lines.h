#pragma once
// The text form of the publishing settings: lines "KEY: value" in Windows-1252 with CR LF. The first five characters of
// a line, in any case, are the key; the rest without the spaces at its ends is the value. Unknown keys are skipped.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// One line: `key` has five characters, upper case, its colon included ("MODE:").
struct KeyLine {
  std::string key;
  std::string value;
};

/// The lines of a text that are long enough for a key, in order.
std::vector<KeyLine> parseKeyLines(std::string_view text);
/// The lines of a file; nothing when it is missing or cannot be read.
std::optional<std::vector<KeyLine>> readKeyLines(const std::string& path);

/// The lines as text, one space between key and value. A line end inside a value becomes a space.
std::string keyLinesText(const std::vector<KeyLine>& lines);

/// Whether a value is the number 0. A text that is no number isn't.
bool isZero(std::string_view value);
/// Whether a value counts as switched on: the number 1 or -1.
bool isOn(std::string_view value);
/// "1" or "0".
std::string oneOrZero(bool on);
/// "-1" or "0".
std::string minusOneOrZero(bool on);

}  // namespace kv
