#pragma once
// The commands on the folders that a shop works with: where they are, and what is removed from them.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The choice of the folders, and the removal of what was built into them and of pictures that nothing shows.
std::vector<Command> folderCommands();

}  // namespace kv
