#pragma once
// Texts that a spreadsheet would run as a formula when it opens a file of separated values. They come from customers
// and from other programs, so whoever writes such a file puts an apostrophe before them. Source: OWASP, CSV Injection.

#include <string_view>

namespace kv {

/// Whether a text begins with a sign at which a spreadsheet looks for a formula: "=", "+", "-", "@", a tab, or a
/// carriage return.
inline bool hasFormulaSign(std::string_view text) {
  return !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
}

}  // namespace kv
