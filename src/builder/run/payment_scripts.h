#pragma once
// The scripts of payment modules on their way from the shop's folder to the site.

#include <string>
#include <vector>

#include "builder/run/build_run.h"

namespace kv {

/// SetPG (set up a payment module): makes each script that the module's conf.ini names, its tags expanded, in the
/// online folder under its name with the language suffix. The paths of those made, for the list of files. One that
/// fails is told to the user, and the others follow.
std::vector<std::string> SetPG(BuildRun& run, const std::string& name);

}  // namespace kv
