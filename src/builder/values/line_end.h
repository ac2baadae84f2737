#pragma once

#include <string_view>

namespace kv {

/// What ends each line of the files of a shop.
inline constexpr std::string_view lineEnd = "\r\n";

}  // namespace kv
