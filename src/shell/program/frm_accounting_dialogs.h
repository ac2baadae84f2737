#pragma once
// The dialogs of the accounting import, wired to the typed port of the workbench.

#include "shell/window/frm_main.h"

namespace kv {

/// Puts the import into the workbench of the window. All outlive the window's use.
void wireAccounting(frmMain& window, Session& session, Environment& env);

}  // namespace kv
