#pragma once
// The settings of the site and of the connection that have dialogs of their own, and the prices.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The entries of the tabs Sito and Internet, custom tags, and the two that change prices.
std::vector<Command> siteCommands();

}  // namespace kv
