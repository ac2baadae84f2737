#pragma once
// The program with the window, from its start to its end.

#include "shell/program/window_arguments.h"
#include "shell/window/frm_main.h"

class QTranslator;

namespace kv {

/// The buttons and dialogs that come with Qt speak Italian from now on. The words belong to the application; null where
/// they are not installed, and all stays English.
QTranslator* speakItalian();

/// Ties a session to the window that shows it: the hooks by which a shop is opened, shown and let go, and the dialogs.
/// All three outlive what they are tied by.
void wireSession(frmMain& window, Session& session, Environment& env);

/// Runs the program inside a QApplication that exists. The exit status: 0, or 1 when no shop could be opened.
/// `programs`: the folder of the program, see installedData.
int runWindow(const WindowArguments& arguments, const std::string& programs);

}  // namespace kv
