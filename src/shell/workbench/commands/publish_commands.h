#pragma once
// Publishing the shop, and its back office.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Publishing, which needs a build, and the back office, which needs an address.
std::vector<Command> publishCommands();

}  // namespace kv
