#pragma once
// The commands on the shop as a whole: which one is open, its folders, copies, and what comes from other programs.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Opening, importing, exporting and restoring a shop, its folders, the accounting program, and the end of the program.
std::vector<Command> shopCommands();

}  // namespace kv
