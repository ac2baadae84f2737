#pragma once
// What the window shows and how it looks.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The tabs, the nodes of the tree, the panels beside the lists, light and dark.
std::vector<Command> viewCommands();

/// The name of the command that goes to a tab.
std::string tabCommand(Tab tab);

}  // namespace kv
