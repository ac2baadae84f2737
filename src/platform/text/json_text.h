#pragma once
// Texts inside JSON.

#include <string>
#include <string_view>

namespace kv {

/// A UTF-8 text as a JSON string, with its quotes.
/// Source: RFC 8259, section 7.
std::string jsonString(std::string_view text);

}  // namespace kv
