#include "shell/program/frm_publishing.h"

#include <utility>

#include "platform/ports/failure_text.h"
#include "publish/run/frm_ftp.h"
#include "publish/update/frm_update.h"
#include "shell/program/publish_setup.h"
#include "shell/workbench/fields/editor_table.h"

namespace kv {
namespace {

/// frmUpdate over the window of the run; its tag.
std::string showUpdate(Session& session, Environment& env, HttpClient& http, QWidget& over) {
  auto job = updateJobOf(session);
  if (!job) return failureText(job.error());
  frmUpdate dialog(std::move(*job), env, http, &over);
  dialog.exec();
  return dialog.tag();
}

bool runPublish(frmMain& window, Session& session, Environment& env) {
  auto setup = PublishSetup::of(session, env);
  if (!setup) {
    env.user.message(failureText(setup.error()), Icon::Exclamation);
    return false;
  }
  const auto transfer = makeTransfer();
  const auto http = makeHttpClient();
  frmFTP dialog(setup->job, setup->options(), {*transfer, env.user, env.clock}, &window);
  dialog.steps.exportSql = [&] { setup->exportSql(env.user); };
  dialog.steps.updateDatabase = [&] { return showUpdate(session, env, *http, dialog); };
  dialog.steps.openSite = [&window] {
    const std::string address = window.workbench().shown(*editorOf(EditedSet::Generale, shopAddressField));
    if (!address.empty()) window.workbench().openDocument(address);
  };
  dialog.exec();
  return !dialog.tag().empty();
}

}  // namespace

void wirePublishRun(WorkbenchDialogs& dialogs, frmMain& window, Session& session, Environment& env) {
  dialogs.publish = [&] { return runPublish(window, session, env); };
}

}  // namespace kv
