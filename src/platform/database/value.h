#pragma once
// One field of a row as a value, and how it reads as a text, a number, an amount or a flag.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/numbers/money.h"

namespace kv {

/// The value of a field that has none.
struct Null {
  bool operator==(const Null&) const = default;
};
/// The content of a binary field.
using Bytes = std::vector<std::uint8_t>;
/// One field. Whole-number columns give int64, Single and Double give double, DateTime gives its text.
using Value = std::variant<Null, bool, std::int64_t, double, Money, std::string, Bytes>;

/// Whether a value is Null.
inline bool isNull(const Value& value) { return std::holds_alternative<Null>(value); }
/// The value as a text. Null reads as empty; numbers in the plain number format without its leading space, flags as
/// "1" and "0".
std::string asText(const Value& value);
/// The value as a number. Null and text that is no number read as 0.
double asNumber(const Value& value);
/// The value as the nearest whole number, a tie to the even one; 0 when it is out of range or no number.
std::int64_t asInteger(const Value& value);
/// The value as an amount; 0 when it is out of range or no number.
Money asMoney(const Value& value);
/// The value as a flag: true for any number but 0.
bool asFlag(const Value& value);

}  // namespace kv
