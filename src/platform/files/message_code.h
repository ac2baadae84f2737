#pragma once
// A code by which the receiver of a message knows that its sender holds the same key, and that nothing was changed on
// the way.

#include <optional>
#include <string>
#include <string_view>

namespace kv {

/// The bytes that hexadecimal digits of either case name, two for each byte; empty for any other character, or an odd
/// number of them.
std::optional<std::string> bytesOfHexadecimal(std::string_view digits);

/// HMAC-SHA256 of a message as 64 lower-case hexadecimal digits. key: its bytes, of any number.
/// Source: RFC 2104.
std::string hmacSha256(std::string_view key, std::string_view message);

/// Whether two codes are equal, in a time that doesn't depend on where they differ.
bool isSameCode(std::string_view a, std::string_view b);

}  // namespace kv
