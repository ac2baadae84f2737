#pragma once
// What the page of an article shows besides the pictures that the merchant chose for it.

#include <string>

namespace kv {

/// How many pictures numbers join to one, and their names: "E altre 2: vaso-2.jpg, vaso-3.jpg"; empty without any.
/// path: of the picture, in the shop's picture folder; may be empty.
std::string furtherPictures(const std::string& path);

}  // namespace kv
