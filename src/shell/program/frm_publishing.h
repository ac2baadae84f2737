#pragma once
// The publish run of the window.

#include "shell/window/frm_main.h"
#include "shell/workbench/workbench_dialogs.h"

namespace kv {

/// Sets `publish` to frmFTP, over `window`. All references outlive the dialogs.
void wirePublishRun(WorkbenchDialogs& dialogs, frmMain& window, Session& session, Environment& env);

}  // namespace kv
