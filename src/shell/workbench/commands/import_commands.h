#pragma once
// The commands that bring data from other programs and from sheets, or take them there.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The companion programs, the accounting import, and articles from and to a sheet.
std::vector<Command> importCommands();

}  // namespace kv
