#pragma once
// The arguments of korvane-cli. Parsing looks at nothing but the arguments, so that every form can be tested.

#include <map>
#include <span>
#include <string>
#include <vector>

#include "platform/ports/result.h"
#include "platform/ports/user_port.h"
#include "shell/cli/bulk_options.h"

namespace kv {

/// What korvane-cli is asked to do.
enum class CliCommand {
  Build,
  Check,
  Doctor,
  ExportSql,
  New,
  Export,
  Import,
  Purge,
  Picture,
  ImportTable,
  ExportTable,
  Prices,
  ReplicateList,
  ReplicateLanguage,
  Upgrade,
  Publish,
  Orders,
  Help,
  Version
};

struct CommandLine {
  CliCommand command = CliCommand::Help;
  std::string shop;               ///< as typed; empty for Help and Version
  std::string object;             ///< the second name of the commands that take one, as typed
  std::string applicationFolder;  ///< of --app, as typed; empty means the user's own
  /// Of --answer, in order: the first question gets the first, the last one holds for all that follow. Empty means
  /// that every question gets its default.
  std::vector<Answer> answers;
  /// The command's own options with their hyphens, and their values; a flag has an empty one.
  std::map<std::string, std::string, std::less<>> options;

  BulkOptions bulk;  ///< the options of the commands that change many rows, read

  /// The value of an option; empty when it isn't given.
  std::string option(std::string_view name) const {
    const auto found = options.find(name);
    return found == options.end() ? std::string() : found->second;
  }
  bool has(std::string_view name) const { return options.contains(name); }
};

/// Reads the arguments after the program's name. "--app=X" and "--app X" mean the same; after "--" every argument
/// is a name. Malformed, `what` saying in Italian what is wrong, when a command or its shop is missing, repeated or
/// unknown.
Result<CommandLine> parseCommandLine(std::span<const std::string> arguments);

/// The text of --help, its last line closed.
std::string usageText();

/// "korvane-cli 0.1.0", the line closed.
std::string versionText();

}  // namespace kv
