#pragma once
// What the workbench reaches outside itself, and the rows of the commands that it runs.

#include <functional>
#include <vector>

#include "shell/workbench/appearance.h"
#include "shell/workbench/command.h"
#include "shell/workbench/open_document.h"

namespace kv {

struct WorkbenchPorts {
  /// The program's own are allCommands(); a test may add one.
  std::vector<Command> commands;
  WorkbenchDialogs dialogs;
  DocumentOpener open;                              ///< of the desktop; unset: documents don't open
  std::function<void(Appearance)> applyAppearance;  ///< makes the windows light or dark
  char decimalSeparator = ',';                      ///< of the user's locale, in every field
};

}  // namespace kv
