#pragma once
// The commands that define the variants of an article.

#include <string>

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// One command for each of the four variant slots, in the price list being edited.
std::vector<Command> variantCommands();

/// The name of the command that defines a variant slot, 1 to 4.
std::string variantCommand(int slot);

}  // namespace kv
