#pragma once
// The dialogs of shipping, payment systems and variants, wired to the typed port of the workbench.

#include "shell/window/frm_main.h"

namespace kv {

/// Puts these dialogs into the workbench of the window. All outlive the window's use.
void wireSales(frmMain& window, Session& session, Environment& env);

}  // namespace kv
