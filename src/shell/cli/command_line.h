#pragma once
// The arguments of korvane-cli. Parsing looks at nothing but the arguments, so that every form can be tested.

#include <span>
#include <string>
#include <vector>

#include "platform/ports/result.h"
#include "platform/ports/user_port.h"

namespace kv {

/// What korvane-cli is asked to do.
enum class CliCommand { Build, Check, ExportSql, New, Publish, Help, Version };

struct CommandLine {
  CliCommand command = CliCommand::Help;
  std::string shop;               ///< as typed; empty for Help and Version
  std::string applicationFolder;  ///< of --app, as typed; empty means the user's own
  /// Of --answer, in order: the first question gets the first, the last one holds for all that follow. Empty means
  /// that every question gets its default.
  std::vector<Answer> answers;
  bool dryRun = false;  ///< --dry-run, of Publish alone
  bool all = false;     ///< --all, of Publish alone
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
