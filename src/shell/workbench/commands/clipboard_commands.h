#pragma once
// The commands that take articles to the clipboard of the catalogue and from it, or out of the catalogue.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Copying, pasting and deleting articles.
std::vector<Command> clipboardCommands();

}  // namespace kv
