#pragma once
// Which files are pictures, by their names.

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/text/text.h"

namespace kv {

/// Whether a name ends as that of a picture that can be read here and shown by browsers.
inline bool isPictureName(std::string_view name) {
  constexpr std::array<std::string_view, 5> endings{".jpg", ".jpeg", ".gif", ".png", ".webp"};
  return std::ranges::any_of(endings, [name](std::string_view ending) { return endsWithIgnoringCase(name, ending); });
}

}  // namespace kv
