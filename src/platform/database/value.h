#pragma once
// One field of a row as a value, and how it reads as a text, a number, an amount or a flag.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/numbers/money.h"

namespace kv {

struct Null {
  bool operator==(const Null&) const = default;
};
using Bytes = std::vector<std::uint8_t>;
/// One field. Whole-number columns give int64, Single and Double give double, DateTime gives its text.
using Value = std::variant<Null, bool, std::int64_t, double, Money, std::string, Bytes>;

inline bool isNull(const Value& value) { return std::holds_alternative<Null>(value); }
/// Null reads as empty; numbers in the trimmed plain form, flags as "1"/"0".
std::string asText(const Value& value);
/// Null and text that is no number read as 0.
double asNumber(const Value& value);
std::int64_t asInteger(const Value& value);
Money asMoney(const Value& value);
bool asFlag(const Value& value);

}  // namespace kv
