#pragma once
// The dialogs of the program, wired to the typed port of the workbench.

#include "platform/qt/frm_dialog.h"
#include "shell/window/frm_main.h"

namespace kv {

/// Puts the dialogs that this program has into the workbench of the window, and the template choice and the copy of the
/// catalogue into the hooks of the session. All outlive the window's use.
void wireDialogs(frmMain& window, Session& session, Environment& env);

/// Opens pages of the help as the commands of the window do.
HelpOpener helpOf(frmMain& window);

/// Opens files and addresses with the programs of the desktop.
DocumentOpener desktopOpener();

/// The first-run guide beside the window.
void showGuide(frmMain& window);

}  // namespace kv
