#pragma once
// The address under which the visitors of a shop reach a folder of its site.

#include <string>
#include <string_view>

namespace kv {

/// Address and folder as typed, made into one public address without a closing slash. An address without a scheme gets
/// "http://".
std::string publicAddress(std::string_view url, std::string_view folder);

}  // namespace kv
