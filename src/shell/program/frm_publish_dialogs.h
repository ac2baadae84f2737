#pragma once
// The dialogs of publishing, wired to the typed port of the workbench.

#include "shell/window/frm_main.h"

namespace kv {

/// Puts the settings of publishing, the run, the choice of a folder of the server and the way to the server into the
/// workbench of the window. All outlive the window's use.
void wirePublishing(frmMain& window, Session& session, Environment& env);

}  // namespace kv
