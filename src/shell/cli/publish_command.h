#pragma once
// korvane-cli publish: a publish run without a window.

#include <ostream>
#include <string>

#include "shell/cli/shop_commands.h"

namespace kv {

/// How a shop is published from the command line.
struct PublishFlags {
  bool dryRun = false;  ///< only name what would be sent
  bool all = false;     ///< send files too that are not newer than what was sent
};

/// Publishes the last build of a shop by the settings of the shop. What was sent, or would be, is named on `out`;
/// messages, questions and progress go to the user port. Failed, with a message, when the shop hasn't been built.
CliOutcome publishFromCli(const std::string& shop, const PublishFlags& flags, Environment& env, std::ostream& out);

}  // namespace kv
