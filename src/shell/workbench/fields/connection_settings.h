#pragma once
// The columns of `generale` that say where the shop is on the web, and what follows from a change of one.

#include <string_view>

#include "shell/workbench/fields/web_address.h"
#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// The full addresses of shop and back office; both empty while the shop has no address.
FullAddresses addressesOf(CatalogueSets& sets);

/// Stores what follows from a change of a column of `generale`: a web folder that still was the one computed from the
/// FTP folder follows it, and the names of the search and order scripts go back to their defaults. Nothing for a column
/// that says nothing of the web. `oldText`: the column before the change. Failures: as CatalogueSets::store.
Result<> followConnection(CatalogueSets& sets, std::string_view column, std::string_view oldText);

}  // namespace kv
