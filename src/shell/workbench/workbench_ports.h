#pragma once
// What the workbench reaches outside itself, and the rows of the commands that it runs.

#include <functional>
#include <vector>

#include "shell/workbench/appearance.h"
#include "shell/workbench/command.h"
#include "shell/workbench/local_site.h"
#include "shell/workbench/open_document.h"

namespace kv {

/// Handed over when the workbench is made; the program fills it for the window, a test with what it plays.
struct WorkbenchPorts {
  /// The program's own are allCommands(); a test may add one.
  std::vector<Command> commands;
  WorkbenchDialogs dialogs;                         ///< a dialog that is unset leaves its commands disabled
  DocumentOpener open;                              ///< of the desktop; unset: documents don't open
  LocalHost host;                                   ///< of this machine; unset: the built shop can't be seen
  std::function<void(Appearance)> applyAppearance;  ///< makes the windows light or dark
  char decimalSeparator = ',';                      ///< of the user's locale, in every field
};

}  // namespace kv
