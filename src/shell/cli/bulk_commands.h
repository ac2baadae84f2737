#pragma once
// The commands of korvane-cli that change many rows of a shop. Each keeps a dated copy of the catalogue first, unless
// it only shows its preview.

#include <ostream>
#include <string>

#include "shell/cli/bulk_options.h"
#include "shell/cli/shop_commands.h"

namespace kv {

/// `prices`: changes prices by a percentage. A dry run prints a line for each price that would change.
CliOutcome changePrices(const std::string& shop, const BulkOptions& options, Environment& env, std::ostream& out);
/// `replicate-list`: copies a price list into others. What is printed is how many fields it writes.
CliOutcome replicateList(const std::string& shop, const BulkOptions& options, Environment& env, std::ostream& out);
/// `replicate-language`: copies the texts of one language into another; the same is printed.
CliOutcome replicateLanguage(const std::string& shop, const BulkOptions& options, Environment& env, std::ostream& out);
/// `upgrade`: opens the shop and says what was brought up to date; a dry run says what would be.
CliOutcome upgradeShop(const std::string& shop, const BulkOptions& options, Environment& env, std::ostream& out);

}  // namespace kv
