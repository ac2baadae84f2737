#pragma once
// The variants of an article, as its fields name them.

#include <string>

#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// MostraVarianti (show the variants): the name of the variant in a slot, 1 to 4, of the current article in a price
/// list, 0 to 9, and in the language being edited. A slot without a variant has the name of variant 1; on no article it
/// is empty, and so is one that can't be read. Read at each call.
std::string MostraVarianti(CatalogueSets& sets, int listino, int slot);

}  // namespace kv
