#pragma once
// The dialogs of sheets, wired to the typed port of the workbench.

#include "shell/window/frm_main.h"

namespace kv {

/// Puts the import from a sheet and the export to one into the workbench of the window. All outlive the window's use.
void wireSheets(frmMain& window, Session& session, Environment& env);

}  // namespace kv
