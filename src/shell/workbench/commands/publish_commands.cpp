#include "shell/workbench/commands/publish_commands.h"

#include "platform/files/files.h"
#include "shell/workbench/build_reminder.h"
#include "shell/workbench/fields/connection_settings.h"
#include "shell/workbench/workbench.h"

namespace kv {
namespace {

constexpr const char* buildFirst = "E' necessario costruire il negozio prima di aggiornare il sito";
constexpr const char* noBackOffice =
    "Il BackOffice non è disponibile finché non si costruisce ed aggiorna il negozio per la prima volta.\n"
    "Indicarne l'URL nella scheda \"Internet\", quindi costruire ed aggiornare il negozio.";

bool wantsToPublish(const CommandContext& context) {
  const WorkbenchDialogs::Dialog& remind = context.ports.dialogs.remindToBuild;
  return !wantsReminder(context.env.settings) || !remind || remind();
}

void publish(const CommandContext& context) {
  if (!wantsToPublish(context)) return;
  if (!readBytes(entryPath(context.session.ShopFolder, "kvftp.dat"))) {
    context.env.user.message(buildFirst, Icon::Exclamation);
    return;
  }
  const WorkbenchDialogs& dialogs = context.ports.dialogs;
  if (dialogs.publishOptions() && dialogs.publish) ignore(dialogs.publish(), "the dialog has told how it ended");
}

void openBackOffice(const CommandContext& context) {
  const std::string address = addressesOf(context.sets).backOffice;
  if (!address.empty()) return context.bench.openDocument(address);
  context.env.user.message(noBackOffice, Icon::Information);
}

/// The built shop in the browser, from this machine.
void viewSite(const CommandContext& context) {
  const LocalHost& host = context.ports.host;
  if (const auto packages = missingPackages(host.programFolders); !packages.empty()) {
    context.env.user.message(missingPackagesText(packages), Icon::Information);
    return;
  }
  const auto address = serveShop(context.session.ShopFolder, host, context.env.user);
  if (address) return context.bench.openDocument(*address);
  if (address.error().kind == ErrorKind::Cancelled) return;
  context.env.user.message("Impossibile mostrare il negozio su questa macchina:\n" + address.error().what,
                           Icon::Exclamation);
}

Command viewSiteRow() {
  Command row;
  row.name = "site.view";
  row.menus = {{Menu::Help, 105, "Vedi il negozio"}};
  row.shortcut = "F5";
  row.whenOff = "Costruire prima il negozio";
  row.enabled = [](const CommandContext& context) {
    return context.bench.isOpen() && context.ports.host.start != nullptr && isBuilt(context.session);
  };
  row.run = viewSite;
  return row;
}

Command ordersRow() {
  Command row = dialogCommand("orders", {Menu::File, 606, "Ordini..."}, &WorkbenchDialogs::orders);
  row.shortcut = "Ctrl+Shift+O";
  row.help = "pagine/ordini.htm";
  return inOpenShop(std::move(row));
}

}  // namespace

std::vector<Command> publishCommands() {
  return withHelp({viewSiteRow(),
                   ordersRow(),
                   {.number = 51,
                    .name = "publish",
                    .caption = "Aggiorna il sito",
                    .icon = "pubblica",
                    .menus = {{Menu::File, 604, "Aggiorna il sito..."}},
                    .toolbar = {Toolbar::Shop, 102},
                    .shortcut = "Ctrl+U",
                    .help = "pagine/pubblicare.htm",
                    .dialog = wired(&WorkbenchDialogs::publishOptions),
                    .run = publish},
                   {.number = 52,
                    .name = "backOffice",
                    .caption = "Entra nel BackOffice",
                    .icon = "backoffice",
                    .menus = {{Menu::File, 605, "BackOffice..."}},
                    .toolbar = {Toolbar::Shop, 103},
                    .run = openBackOffice}},
                  "index.htm");
}

}  // namespace kv
