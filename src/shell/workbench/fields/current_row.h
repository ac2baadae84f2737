#pragma once
// The current row of an edited set, and the settings of the shop, which are a row like any other.

#include <string>
#include <string_view>

#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// Whether the set is open and its cursor is on a row.
/// The editors of a set show a row only then.
bool isOnRow(CatalogueSets& sets, EditedSet set);

/// Whether a flag of `generale` is on; false while no shop is open.
/// `column` as the schema names it.
bool isSettingOn(CatalogueSets& sets, std::string_view column);
/// A column of `generale` as text; empty while no shop is open.
std::string settingText(CatalogueSets& sets, std::string_view column);

}  // namespace kv
