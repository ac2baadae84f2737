#pragma once
// JSON as values, read by the store engine's own reader of it.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/result.h"

namespace kv {

enum class JsonKind { Null, Flag, Number, Text, List, Object };

/// A value with all that is in it.
struct JsonValue {
  JsonKind kind = JsonKind::Null;
  std::string text{};              ///< of a Text; the digits of a Number; "1" or "0" of a Flag
  std::vector<std::string> names;  ///< of an Object's members, in their order
  std::vector<JsonValue> items;    ///< of a List; the members of an Object

  /// The first member of a name; null when there is none, or when this is no object.
  const JsonValue* member(std::string_view name) const;
  /// The text of a member that is a text or a number; empty for any other.
  std::string textOf(std::string_view name) const;
  /// A member that is a whole number, as a number or as its text; empty for any other, and out of 64 bits.
  std::optional<std::int64_t> wholeOf(std::string_view name) const;
  /// Whether a member is true, or a number other than 0.
  bool flagOf(std::string_view name) const;
  /// The values of a member that is a list; empty for any other.
  const std::vector<JsonValue>& listOf(std::string_view name) const;
};

/// Reads a text that is one JSON value, at most 32 levels deep. A byte that isn't UTF-8 becomes U+FFFD, a NUL inside a
/// text is left out. Malformed when it is none; other failures as Database::prepare.
/// Source: RFC 8259.
Result<JsonValue> readJson(std::string_view text);

/// The value as JSON without spaces; reading it gives the value again.
std::string jsonText(const JsonValue& value);

}  // namespace kv
