#pragma once
// Sheets in and out on the command line.

#include <ostream>

#include "shell/cli/command_line.h"
#include "shell/cli/shop_commands.h"

namespace kv {

/// Imports a sheet into a table of the shop, which is given by its absolute folder, and tells on `out` how many rows
/// were written and which were left out; with --dry-run what would become of each row. WrongUsage for an option that
/// makes no sense.
CliOutcome importTable(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out);

/// Writes a table of the shop to a sheet, with --columns those columns alone.
CliOutcome exportTableOf(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out);

}  // namespace kv
