#pragma once
// The commands that add departments.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Commands that add a department: before or after the current one, or below it. departmentCommands() has them, too.
std::vector<Command> departmentInsertCommands();

}  // namespace kv
