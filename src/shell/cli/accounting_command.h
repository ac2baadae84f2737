#pragma once
// The import from the accounting package on the command line.

#include <ostream>

#include "shell/cli/command_line.h"
#include "shell/cli/shop_commands.h"

namespace kv {

/// Imports departments and articles from a database file or a folder of CSV files into the shop, which is given by its
/// absolute folder; with --dry-run tells on `out` what would become of each row. The source is given by its path, so
/// none has to be known to the settings. WrongUsage for an option that makes no sense.
CliOutcome importAccounting(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out);

}  // namespace kv
