#pragma once
// The variants of an article, as its fields name them.

#include <array>
#include <string>

#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// The names of the four variants of the current article in a price list, 0 to 9, and in the language being edited.
/// A slot without a variant has the name of variant 1; all are empty on no article, and one that can't be read is.
/// Read at each call; index 0 is slot 1.
std::array<std::string, 4> variantNames(CatalogueSets& sets, int listino);

}  // namespace kv
