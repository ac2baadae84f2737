#include "shell/program/frm_publish_dialogs.h"

#include <memory>

#include "platform/ports/failure_text.h"
#include "platform/text/text.h"
#include "publish/settings/connection_check.h"
#include "publish/settings/frm_firewall.h"
#include "publish/settings/frm_folder_ftp.h"
#include "publish/settings/frm_imposta_ftp.h"
#include "publish/update/database_update.h"
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
  const auto transfer = makeTransfer(connection.protocol);
  frmFolderFTP dialog(isShop ? shopFolderTitle : scriptFolderTitle, connection, *transfer, env.user, &window);
  dialog.exec();
  const auto chosen = chosenServerFolder(dialog.tag());
  if (!chosen) return false;
  window.workbench().leaveField(*editorOf(EditedSet::Generale, isShop ? "folderFTP" : "folderCGI"), *chosen);
  return true;
}

/// Tries the connection with settings that needn't be stored yet, and shows what was found.
void verifyConnection(Session& session, UserPort& user, const FirewallSettings& way) {
  const auto job = updateJobOf(session);
  const auto login = readServerLogin(session.catalogue);
  const auto folder = session.catalogue.scalar("SELECT folderFTP FROM generale");
  if (!job || !login || !folder) {
    const Error& error = !job ? job.error() : !login ? login.error() : folder.error();
    return user.message(failureText(error), Icon::Exclamation);
  }
  const auto transfer = makeTransfer(way.protocol);
  const auto http = makeHttpClient();
  std::string found;
  {
    const WaitCursor waiting;
    const ConnectionCheck check{connectionOf(*login, way, 0), asText(*folder),
                                trim(job->shop.URL).empty() ? std::string() : job->siteBase};
    found = checkConnection(check, {*transfer, *http, user, [&user] { return user.yield(); }});
  }
  user.message(found, Icon::Information);
}

}  // namespace

void wirePublishing(frmMain& window, Session& session, Environment& env) {
  WorkbenchDialogs& dialogs = window.workbench().ports().dialogs;
  // One for all exports of the program: a shop without kvftp.ini leaves it as it was.
  const auto lock = std::make_shared<LockStatements>();
  dialogs.publishOptions = [&, lock] {
    const HelpOpener help = [&window](std::string_view page) { window.workbench().openHelp(page); };
    frmImpostaFTP dialog(session, env, *lock, help, &window);
    dialog.exec();
    return !dialog.tag().empty();
  };
  dialogs.publish = publishRun(window, session, env, lock);
  dialogs.chooseServerFolder = [&](ServerFolder folder) { return chooseFolderOfServer(window, session, env, folder); };
  dialogs.connectionSettings = [&] {
    const auto verify = [&](const FirewallSettings& way) { verifyConnection(session, env.user, way); };
    frmFirewall dialog(session.ShopFolder, env.user, verify, &window);
    dialog.exec();
    return !dialog.tag().empty();
  };
  dialogs.verifyConnection = [&] {
    verifyConnection(session, env.user, readFirewallSettings(session.ShopFolder));
    return true;
  };
}

}  // namespace kv
