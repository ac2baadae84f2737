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
std::string updateInWindow(Session& session, Environment& env, QWidget* over) {
  auto job = updateJobOf(session);
  if (!job) return failureText(job.error());
  const auto http = makeHttpClient();
  frmUpdate dialog(std::move(*job), env, *http, over);
  dialog.exec();
  return dialog.tag();
}

bool runPublish(frmMain& window, Session& session, Environment& env, LockStatements& lock) {
  auto setup = PublishSetup::of(session, env, lock);
  if (!setup) {
    env.user.message(failureText(setup.error()), Icon::Exclamation);
    return false;
  }
  const auto transfer = makeTransfer(setup->way.protocol);
  frmFTP dialog(setup->job, setup->options(), {*transfer, env.user, env.clock}, &window);
  dialog.steps.exportSql = [&setup](UserPort& user) { return setup->exportSql(user); };
  dialog.steps.updateDatabase = [&] { return updateInWindow(session, env, &dialog); };
  dialog.steps.openSite = [&window] {
    const std::string address = window.workbench().shown(*editorOf(EditedSet::Generale, shopAddressField));
    if (!address.empty()) window.workbench().openDocument(address);
  };
  dialog.exec();
  return !dialog.tag().empty();
}

}  // namespace

WorkbenchDialogs::Dialog publishRun(frmMain& window, Session& session, Environment& env,
                                    std::shared_ptr<LockStatements> lock) {
  return [&window, &session, &env, lock = std::move(lock)] { return runPublish(window, session, env, *lock); };
}

}  // namespace kv
