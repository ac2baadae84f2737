#pragma once
// Undo and redo.

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Undo and redo, at the head of every `Modifica`; their entries name the step.
std::vector<Command> historyCommands();

}  // namespace kv
