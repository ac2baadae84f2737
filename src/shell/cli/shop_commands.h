#pragma once
// What korvane-cli does with a shop. Each command works on exactly the folder it was given; but for a new shop, which
// becomes the one the program opens next, the per-user state is left alone.

#include <ostream>
#include <string>

#include "store/shop/session.h"

namespace kv {

/// How a command ended; the number is the exit status of the program.
enum class CliOutcome {
  Done = 0,
  Failed = 1,
  WrongUsage = 2,
  Cancelled = 130,
  FoundWarnings = Failed,   ///< of doctor
  FoundErrors = WrongUsage  ///< of doctor; also when the shop can't be examined
};

/// Tells why a command isn't done; Failed, for its caller to return.
CliOutcome refused(Environment& env, const std::string& text);

/// How a command ended that did nothing and has told why: Cancelled when the user has ended it, else Failed.
CliOutcome failedOrCancelled(Environment& env);

/// Opens the shop and builds its site. What was made is told on `out`; messages go to the user port.
CliOutcome buildShop(const std::string& shop, Environment& env, std::ostream& out);

/// Opens the shop as a build would and names what prevents one: a folder that is no shop, a missing
/// template, missing language modules, missing working folders. One sentence on `out` when nothing does.
CliOutcome checkShop(const std::string& shop, Environment& env, std::ostream& out);

/// Opens the shop and prints what a visitor would meet, a line each: "Errore" or "Avviso", a tab, the sentence; then
/// their number. asJson: the findings as findingsAsJson gives them instead. Done when there is nothing.
CliOutcome examineFromCli(const std::string& shop, bool asJson, Environment& env, std::ostream& out);

/// Opens the shop and writes the SQL files of its last build into the online folder, old ones deleted first. Names the
/// files on `out`. Failed, with a message, when the shop hasn't been built.
CliOutcome exportShopSql(const std::string& shop, Environment& env, std::ostream& out);

/// Makes a new shop in the folder that the user port chooses.
CliOutcome newShop(Environment& env, std::ostream& out);

}  // namespace kv
