#include "shell/cli/cli_program.h"
#include "platform/files/files.h"

#include "commerce/gateways/payment_modules.h"
#include "platform/files/settings.h"
#include "platform/ports/clock.h"
#include "shell/cli/bulk_commands.h"
#include "shell/cli/command_line.h"
#include "shell/cli/exchange_commands.h"
#include "shell/cli/orders_command.h"
#include "shell/cli/publish_command.h"
#include "shell/cli/table_command.h"
#include "shell/program/installed_data.h"
#include "store/shop/backup_copies.h"
#include "store/upgrade/shop_upgrade.h"

namespace kv {
namespace {

CliOutcome runShopCommand(const CommandLine& line, Environment& env, std::ostream& out) {
  const std::string shop = absolutePath(line.shop);
  switch (line.command) {
    case CliCommand::Build:
      return buildShop(shop, env, out);
    case CliCommand::Check:
      return checkShop(shop, env, out);
    case CliCommand::Doctor:
      return examineFromCli(shop, line.has("--json"), env, out);
    case CliCommand::ExportSql:
      return exportShopSql(shop, env, out);
    case CliCommand::New:
      return newShop(env, out);
    case CliCommand::Export:
      return exportShop(shop, line, env);
    case CliCommand::Import:
      return importShop(shop, line, env, out);
    case CliCommand::Purge:
      return purgePictures(shop, line, env, out);
    case CliCommand::Picture:
      return setPicture(shop, line, env, out);
    case CliCommand::ImportTable:
      return importTable(shop, line, env, out);
    case CliCommand::ExportTable:
      return exportTableOf(shop, line, env, out);
    case CliCommand::Prices:
      return changePrices(shop, line.bulk, env, out);
    case CliCommand::ReplicateList:
      return replicateList(shop, line.bulk, env, out);
    case CliCommand::ReplicateLanguage:
      return replicateLanguage(shop, line.bulk, env, out);
    case CliCommand::Upgrade:
      return upgradeShop(shop, line.bulk, env, out);
    case CliCommand::Publish:
      return publishFromCli(shop, {line.has("--dry-run"), line.has("--all")}, env, out);
    case CliCommand::Orders:
      return listOrdersFromCli(shop, line, env, out);
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
  // --delete is the consent, unless an answer says otherwise.
  if (line->has("--delete") && screen.answers.empty()) screen.answers = {Answer::Yes};
  screen.folder = absolutePath(line->command == CliCommand::Export ? line->object : line->shop);
  ConsoleUser user(context.err, systemClock(), std::move(screen));
  FileSettings settings(userSettingsPath());
  Environment env{user, settings, systemClock(), systemRandom(), *application, {}};
  env.hooks.CompletaGateway = [&env](const std::string& folder) { CompletaGateway(folder, env.applicationFolder); };
  env.hooks.CopiaCatalogo = catalogueCopier(env);
  env.hooks.AggiornaNegozio = [&env](const std::string& folder) { AggiornaNegozio(folder, env.applicationFolder); };
  const CliOutcome outcome = runShopCommand(*line, env, context.out);
  context.out.flush();
  return outcome;
}

}  // namespace kv
