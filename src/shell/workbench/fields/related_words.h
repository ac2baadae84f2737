#pragma once
// The words by which articles are related to one another.

#include <string>
#include <vector>

#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// The words in use in this shop, each once; none while no shop is open or where they can't be read.
/// Offered by the list of the article's field, and read again whenever that list is opened. A word of spaces
/// alone is left out.
std::vector<std::string> relatedWords(CatalogueSets& sets);

}  // namespace kv
