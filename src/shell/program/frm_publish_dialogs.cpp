#include "shell/program/frm_publish_dialogs.h"

#include <memory>

#include "platform/ports/failure_text.h"
#include "publish/settings/frm_firewall.h"
#include "publish/settings/frm_folder_ftp.h"
#include "publish/settings/frm_imposta_ftp.h"
#include "shell/program/frm_publishing.h"
#include "shell/workbench/fields/editor_table.h"

namespace kv {
namespace {

/// Chooses a folder of the server and enters it as if it had been typed, so that the web folder follows it.
bool chooseFolderOfServer(frmMain& window, Session& session, Environment& env, ServerFolder folder) {
  const auto login = readServerLogin(session.catalogue);
  if (!login) {
    env.user.message(failureText(login.error()), Icon::Exclamation);
    return false;
  }
  const bool isShop = folder == ServerFolder::Shop;
  const ConnectionSettings connection = connectionOf(*login, readFirewallSettings(session.ShopFolder),
                                                     readPublishSettings(session.ShopFolder).silenceSeconds);
  const auto transfer = makeTransfer();
  frmFolderFTP dialog(isShop ? shopFolderTitle : scriptFolderTitle, connection, *transfer, env.user, &window);
  dialog.exec();
  const auto chosen = chosenServerFolder(dialog.tag());
  if (!chosen) return false;
  window.workbench().leaveField(*editorOf(EditedSet::Generale, isShop ? "folderFTP" : "folderCGI"), *chosen);
  return true;
}

}  // namespace

void wirePublishing(frmMain& window, Session& session, Environment& env) {
  WorkbenchDialogs& dialogs = window.workbench().ports().dialogs;
  // One for all exports of the program: a shop without kvftp.ini leaves it as it was.
  const auto lock = std::make_shared<LockStatements>();
  dialogs.publishOptions = [&, lock] {
    frmImpostaFTP dialog(session, env, *lock, &window);
    dialog.exec();
    return !dialog.tag().empty();
  };
  dialogs.publish = publishRun(window, session, env, lock);
  dialogs.chooseServerFolder = [&](ServerFolder folder) { return chooseFolderOfServer(window, session, env, folder); };
  dialogs.connectionSettings = [&] {
    frmFirewall dialog(session.ShopFolder, env.user, &window);
    dialog.exec();
    return !dialog.tag().empty();
  };
}

}  // namespace kv
