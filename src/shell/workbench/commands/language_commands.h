#pragma once
// The languages of the shop: which one is being edited, and what they are.

#include <string>

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The choice of a language, the dialog of the languages, and the replication of their texts.
std::vector<Command> languageCommands();

/// The name of the command that goes to a language, 1 to 4.
std::string languageCommand(int language);

}  // namespace kv
