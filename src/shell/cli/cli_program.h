#pragma once
// korvane-cli as a routine: from arguments to exit status.

#include <ostream>
#include <span>
#include <string>

#include "shell/cli/console_user.h"
#include "shell/cli/shop_commands.h"

namespace kv {

/// Where the program writes and what it knows of itself. References outlive it.
struct CliContext {
  std::ostream& out;      ///< results
  std::ostream& err;      ///< messages, questions, progress
  ConsoleOptions screen;  ///< its answers and folder are set from the arguments
  std::string programs;   ///< the folder of the program, see installedData
};

/// Does what the arguments after the program's name ask for.
CliOutcome runCommandLine(std::span<const std::string> arguments, const CliContext& context);

}  // namespace kv
