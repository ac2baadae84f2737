#pragma once
// The commands that change which articles a department has, and in which order.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Moving articles, and adding new ones.
std::vector<Command> articleCommands();

}  // namespace kv
