#pragma once
// The text form of a golden case: a comment, then parts, each after a line "-- name flags --". Text parts are UTF-8
// with LF and stand for Windows-1252 bytes with CR LF. Flags: "hex" (bytes as hexadecimal digits), "escapes" ("\xNN"
// is that byte), "noeol" (the last line end isn't part of the file), and those of an excerpt, see
// golden_digest.h. A space in a name is written "%20".

#include <string>
#include <string_view>
#include <vector>

namespace kv::test {

struct TxtarPart {
  std::string name;
  std::vector<std::string> flags;
  std::string text;  ///< as the case holds it

  bool has(std::string_view flag) const;
  /// The value of a flag "name=value"; empty when there is none.
  std::string value(std::string_view flag) const;
};

struct Txtar {
  std::string comment;
  std::vector<TxtarPart> parts;

  const TxtarPart* find(std::string_view name) const;
};

Txtar parseTxtar(std::string_view text);
std::string formatTxtar(const Txtar& archive);

/// The bytes of the file that a part stands for.
std::string partBytes(const TxtarPart& part);
/// The part that stands for these bytes, in the plainest form that can hold them.
TxtarPart bytesPart(const std::string& name, std::string_view bytes);

/// What differs between two texts, by lines: those around the first difference, "-" wanted, "+" found.
std::string firstDifference(std::string_view wanted, std::string_view found);

}  // namespace kv::test
