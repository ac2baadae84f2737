#pragma once
// The commands on the articles of a department, and their search.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Adding, moving, copying, pasting and deleting articles, and the search.
std::vector<Command> articleCommands();

}  // namespace kv
