#pragma once
// The countries that the shipping dialog offers by name.

#include <span>
#include <string_view>

namespace kv {

/// Italian names of countries in alphabetical order. Source: short names of ISO 3166-1 in Italian.
std::span<const std::string_view> countryNames();

}  // namespace kv
