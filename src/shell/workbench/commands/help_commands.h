#pragma once
// The menu of help, and the help on the tab in use.

#include <string>
#include <string_view>

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// The help pages, the guide, updates, and name and version of the program.
std::vector<Command> helpCommands();

/// The version as the page of updates takes it: major and minor by the mask "00", revision by "000", missing parts as
/// zeros; "0.1.0" is "0001000".
std::string versionNumber(std::string_view version);

}  // namespace kv
