#pragma once
// The commands on the tree of departments.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Adding, moving, copying, pasting and deleting departments.
std::vector<Command> departmentCommands();

}  // namespace kv
