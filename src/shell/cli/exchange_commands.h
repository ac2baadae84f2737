#pragma once
// The commands of korvane-cli that move whole shops and pictures.

#include <ostream>

#include "shell/cli/command_line.h"
#include "shell/cli/shop_commands.h"

namespace kv {

/// Each takes the parsed arguments, `shop` being their absolute folder; messages go to the user port.

/// Exports the shop into an empty folder, which is made when it isn't there.
CliOutcome exportShop(const std::string& shop, const CommandLine& line, Environment& env);

/// Imports a shop of the earlier product line, or, where the source is one of the accounting package, departments and
/// articles (accounting_command.h); with --dry-run tells on `out` what would be imported.
CliOutcome importShop(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out);

/// Names the unused pictures of the shop on `out`, one a line; with --delete deletes them after a question.
CliOutcome purgePictures(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out);

/// Does what OK of the picture dialog does, stores the picture in a row and tells its name and size on `out`.
/// The settings of the dialog stay as they are. WrongUsage for an option that makes no sense.
CliOutcome setPicture(const std::string& shop, const CommandLine& line, Environment& env, std::ostream& out);

}  // namespace kv
