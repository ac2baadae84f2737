#pragma once
// The commands that show articles of the whole shop: one that is searched, or all in a sheet.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The search of an article, and the sheet of articles.
std::vector<Command> searchCommands();

}  // namespace kv
