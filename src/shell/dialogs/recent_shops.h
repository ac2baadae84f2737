#pragma once
// The shops that were open last, in the settings of the user.

#include <string>
#include <vector>

#include "platform/files/settings.h"

namespace kv {

/// How many are remembered.
constexpr std::size_t mostRecentShops = 8;

/// The folders of these shops, the last one first. A folder without a catalogue is left out, and comes again with it.
std::vector<std::string> recentShops(const Settings& settings);

/// Puts a shop before all others; an empty folder is none. A list that can't be stored stays as it was.
void rememberShop(Settings& settings, const std::string& folder);

}  // namespace kv
