#pragma once
// The menu of help, and the help on the tab in use.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The help pages, the guide, updates, and name and version of the program.
std::vector<Command> helpCommands();

}  // namespace kv
