#include "shell/workbench/commands/folder_commands.h"

#include "media/purge/unused_pictures.h"
#include "platform/files/files.h"
#include "shell/workbench/workbench.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

using enum Menu;

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

Command cleanRow() {
  Command row;
  row.name = "shop.cleanFolders";
  row.menus = {{File, 202, "Pulisci le cartelle di lavoro..."}};
  row.run = cleanFolders;
  return row;
}

Command purgeRow() {
  Command row;
  row.name = "shop.purgePictures";
  row.menus = {{File, 203, "Rimuovi immagini inutilizzate..."}};
  row.run = [](const CommandContext& context) {
    const std::string pictures = entryPath(context.session.ShopFolder, "work");
    context.env.user.message(purgeNotice(pictures), Icon::Information);
    ignore(context.ports.dialogs.purgePictures(pictures), "files are no part of the step");
  };
  row.dialog = wired(&WorkbenchDialogs::purgePictures);
  row.help = "pagine/immagini.htm";
  return row;
}

}  // namespace

std::vector<Command> folderCommands() {
  return withHelp({dialogCommand("shop.folders", {File, 201, "Cambia le cartelle di lavoro..."},
                                 &WorkbenchDialogs::changeFolders, "Cambia le cartelle"),
                   cleanRow(), purgeRow()},
                  "index.htm");
}

}  // namespace kv
