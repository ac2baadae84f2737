#include "shell/workbench/commands/shop_commands.h"

#include "shell/workbench/workbench.h"
#include "store/shop/open_shop.h"

namespace kv {
namespace {

using enum Menu;

Command shopRow(std::string name, const MenuPlace& place, std::string_view shortcut,
                std::function<void(const CommandContext&)> run) {
  Command row;
  row.name = std::move(name);
  row.menus = {place};
  row.shortcut = shortcut;
  row.run = std::move(run);
  return row;
}

/// The session is torn down and loaded again on the way; the hook `reload` of the program shows the shop that came.
void closeWithoutShop(const CommandContext& context, bool changed) {
  if (changed && !context.session.catalogue.isOpen()) context.view.close();
}

/// A command that moves a whole shop.
Command moveRow(std::string name, const MenuPlace& place, WorkbenchDialogs::Dialog WorkbenchDialogs::*dialog) {
  Command row = dialogCommand(std::move(name), place, dialog);
  row.help = "pagine/trasferire.htm";
  return row;
}

void exitProgram(const CommandContext& context) {
  context.session.compactOnExit = true;
  context.view.close();
}

}  // namespace

std::vector<Command> shopCommands() {
  using Dialogs = WorkbenchDialogs;
  return withHelp({shopRow("shop.new", {File, 101, "Nuovo negozio.."}, "Ctrl+N",
                           [](const CommandContext& context) {
                             closeWithoutShop(context, NuovoNegozio(context.session, context.env));
                           }),
                   shopRow("shop.open", {File, 102, "Apri negozio..."}, "Ctrl+O",
                           [](const CommandContext& context) {
                             closeWithoutShop(context, ApriNegozio(context.session, context.env, "*"));
                           }),
                   dialogCommand("shop.welcome", {File, 106, "Benvenuto..."}, &Dialogs::welcome),
                   moveRow("shop.export", {File, 103, "Esporta negozio per Korvane Banco"}, &Dialogs::exportShop),
                   moveRow("shop.import", {File, 104, "Importa negozio Primo..."}, &Dialogs::importShop),
                   dialogCommand("shop.restoreCopy", {File, 105, "Ripristina una copia..."}, &Dialogs::restoreCopy),
                   shopRow("exit", {File, 801, "Esci"}, "Ctrl+Q", exitProgram)},
                  "index.htm");
}

}  // namespace kv
