#include "shell/workbench/commands/shop_commands.h"

#include "import/accounting/accounting_variants.h"
#include "media/purge/unused_pictures.h"
#include "platform/files/files.h"
#include "shell/workbench/workbench.h"
#include "store/shop/open_shop.h"
#include "store/shop/shop_folders.h"

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

void cleanFolders(const CommandContext& context) {
  const Session& session = context.session;
  const std::string question = "Le seguenti cartelle saranno svuotate:\n\n" + session.onlineFolder + "\n" +
                               session.scriptFolder +
                               "\n\nATTENZIONE: Tutti i file presenti in queste cartelle verranno cancellati.\n"
                               "Si desidera procedere con la cancellazione?";
  UserPort& user = context.env.user;
  if (user.question({question, Buttons::YesNo, Answer::No, Icon::Exclamation}) != Answer::Yes) return;
  for (const std::string& folder : {session.onlineFolder, session.scriptFolder}) {
    const std::string text = "Saranno cancellati i file presenti in " + folder;
    if (user.question({text, Buttons::OkCancel, Answer::Cancel, Icon::Exclamation}) != Answer::Ok) return;
    context.bench.showError(SvuotaCartella(folder));
  }
}

Command purgeRow() {
  Command row = shopRow("shop.purgePictures", {File, 203, "Rimuovi immagini inutilizzate..."}, "",
                        [](const CommandContext& context) {
                          const std::string pictures = joinPath(context.session.ShopFolder, "work");
                          context.env.user.message(purgeNotice(pictures), Icon::Information);
                          ignore(context.ports.dialogs.purgePictures(pictures), "files are no part of the step");
                        });
  row.dialog = wired(&WorkbenchDialogs::purgePictures);
  row.help = "pagine/immagini.htm";
  return row;
}

/// A command that moves a whole shop.
Command moveRow(std::string name, const MenuPlace& place, WorkbenchDialogs::Dialog WorkbenchDialogs::*dialog) {
  Command row = dialogCommand(std::move(name), place, dialog);
  row.help = "pagine/trasferire.htm";
  return row;
}

bool knowsAccounting(const CommandContext& context) { return isAccountingKnown(context.env.settings); }

/// The import is on where the machine knows of the package. The installation of the package leaves its path in the
/// settings of other systems and never here, so until there is one a second entry leads to the same dialogs: the first
/// of them asks where the data are, and keeps what it is told.
std::vector<Command> accountingRows() {
  const auto row = [](std::string name, const MenuPlace& place) {
    return dialogCommand(std::move(name), place, &WorkbenchDialogs::importAccounting, "Importa");
  };
  Command import = row("import.accounting", {File, 701, "Importa da Orsa Gestionale..."});
  import.enabled = knowsAccounting;
  import.whenOff = "Orsa Gestionale non è stato trovato: indicare dove sono i suoi dati";
  Command search = row("import.accountingData", {File, 702, "Cerca i dati di Orsa Gestionale..."});
  search.visible = [](const CommandContext& context) { return !knowsAccounting(context); };
  return withHelp({std::move(import), std::move(search)}, "pagine/orsa.htm");
}

std::vector<Command> sheetRows() {
  using Dialogs = WorkbenchDialogs;
  std::vector<Command> rows{
      dialogCommand("import.sheet", {File, 706, "Importa da un foglio..."}, &Dialogs::importSheet, "Importa il foglio"),
      dialogCommand("export.sheet", {File, 707, "Esporta in un foglio..."}, &Dialogs::exportSheet)};
  for (Command& row : rows) row.help = "pagine/foglio.htm";
  return rows;
}

/// An entry that shows where the application folder has a companion program, and starts it.
Command companionRow(std::string name, const MenuPlace& place, std::string_view program) {
  Command row = shopRow(std::move(name), place, "", [program](const CommandContext& context) {
    const std::string& folder = context.env.applicationFolder;
    context.bench.openDocument(joinPath(folder, program), folder);
  });
  row.visible = [program](const CommandContext& context) {
    return fileExists(joinPath(context.env.applicationFolder, program));
  };
  return row;
}

void exitProgram(const CommandContext& context) {
  context.session.compactOnExit = true;
  context.view.close();
}

}  // namespace

std::vector<Command> shopCommands() {
  using Dialogs = WorkbenchDialogs;
  std::vector<Command> rows{
      shopRow(
          "shop.new", {File, 101, "Nuovo negozio.."}, "Ctrl+N",
          [](const CommandContext& context) { closeWithoutShop(context, NuovoNegozio(context.session, context.env)); }),
      shopRow("shop.open", {File, 102, "Apri negozio..."}, "Ctrl+O",
              [](const CommandContext& context) {
                closeWithoutShop(context, ApriNegozio(context.session, context.env, "*"));
              }),
      dialogCommand("shop.welcome", {File, 106, "Benvenuto..."}, &Dialogs::welcome),
      moveRow("shop.export", {File, 103, "Esporta negozio per Korvane Banco"}, &Dialogs::exportShop),
      moveRow("shop.import", {File, 104, "Importa negozio Primo..."}, &Dialogs::importShop),
      dialogCommand("shop.restoreCopy", {File, 105, "Ripristina una copia..."}, &Dialogs::restoreCopy),
      dialogCommand("shop.folders", {File, 201, "Cambia le cartelle di lavoro..."}, &Dialogs::changeFolders,
                    "Cambia le cartelle"),
      shopRow("shop.cleanFolders", {File, 202, "Pulisci le cartelle di lavoro..."}, "", cleanFolders),
      purgeRow(),
      companionRow("import.stock", {File, 703, "Aggiorna giacenze da Orsa Gestionale..."}, "ogg.exe"),
      companionRow("import.orders", {File, 704, "Scarica ordini..."}, "ordsync.exe"),
      companionRow("import.companion", {File, 705, "Importa da Orsa Gestionale con gwimp..."}, "gwimp.exe"),
      shopRow("exit", {File, 801, "Esci"}, "Ctrl+Q", exitProgram)};
  for (Command& row : accountingRows()) rows.push_back(std::move(row));
  for (Command& row : sheetRows()) rows.push_back(std::move(row));
  return withHelp(std::move(rows), "index.htm");
}

}  // namespace kv
