#include "shell/cli/cli_program.h"
#include "platform/files/files.h"

#include "commerce/gateways/payment_modules.h"
#include "platform/files/settings.h"
#include "platform/ports/clock.h"
#include "shell/cli/command_line.h"
#include "shell/cli/publish_command.h"
#include "shell/program/installed_data.h"

namespace kv {
namespace {

CliOutcome runShopCommand(const CommandLine& line, Environment& env, std::ostream& out) {
  const std::string shop = absolutePath(line.shop);
  switch (line.command) {
    case CliCommand::Build:
      return buildShop(shop, env, out);
    case CliCommand::Check:
      return checkShop(shop, env, out);
    case CliCommand::ExportSql:
      return exportShopSql(shop, env, out);
    case CliCommand::New:
      return newShop(env, out);
    case CliCommand::Publish:
      return publishFromCli(shop, {line.dryRun, line.all}, env, out);
    case CliCommand::Help:
    case CliCommand::Version:
      break;
  }
  return CliOutcome::WrongUsage;
}

}  // namespace

CliOutcome runCommandLine(std::span<const std::string> arguments, const CliContext& context) {
  const auto line = parseCommandLine(arguments);
  if (!line) {
    context.err << "korvane-cli: " << line.error().what << "\n\n" << usageText();
    return CliOutcome::WrongUsage;
  }
  if (line->command == CliCommand::Help || line->command == CliCommand::Version) {
    context.out << (line->command == CliCommand::Help ? usageText() : versionText());
    return CliOutcome::Done;
  }
  const auto application = findApplicationFolder(line->applicationFolder, context.programs);
  if (!application) {
    const Error& error = application.error();
    context.err << "Impossibile preparare la cartella dell'applicazione:\n"
                << error.where << ": " << error.what << '\n';
    return CliOutcome::Failed;
  }
  ConsoleOptions screen = context.screen;
  screen.answers = line->answers;
  screen.folder = absolutePath(line->shop);
  ConsoleUser user(context.err, systemClock(), std::move(screen));
  FileSettings settings(userSettingsPath());
  Environment env{user, settings, systemClock(), systemRandom(), *application, {}};
  env.hooks.CompletaGateway = [&env](const std::string& folder) { CompletaGateway(folder, env.applicationFolder); };
  const CliOutcome outcome = runShopCommand(*line, env, context.out);
  context.out.flush();
  return outcome;
}

}  // namespace kv
