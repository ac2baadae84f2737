#pragma once
// Building the shop.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The template, the settings of the build, and the build.
std::vector<Command> buildCommands();

}  // namespace kv
