#pragma once
// The program with the window, from its start to its end.

#include "shell/window_arguments.h"

class QTranslator;

namespace kv {

/// The buttons and dialogs that come with Qt speak Italian from now on. The words belong to the application; null where
/// they are not installed, and all stays English.
QTranslator* speakItalian();

/// Runs the program inside a QApplication that stands. The exit status: 0, or 1 when no shop could be opened.
/// `programs`: the folder of the program, see installedData.
int runWindow(const WindowArguments& arguments, const std::string& programs);

}  // namespace kv
