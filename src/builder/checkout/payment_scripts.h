#pragma once
// The scripts of payment modules on their way from the shop's folder to the site.

#include <string>
#include <vector>

#include "builder/output/build_output.h"

namespace kv {

/// SetPG (set up a payment module): makes each script that the conf.ini of the module `name` names, its tags expanded,
/// in the online folder under its name with the language suffix. The paths of those made, for the list of files. The
/// scripts are the merchant's: one that can't be made is told to the user, and the others follow.
std::vector<std::string> SetPG(const std::string& name, const PageSources& sources, BuildOutput& output);

}  // namespace kv
