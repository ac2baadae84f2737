#pragma once
// What a command works with: the parts of the workbench, by reference.

#include "shell/workbench/fields/field_store.h"
#include "shell/workbench/workbench_ports.h"
#include "shell/workbench/workbench_view.h"
#include "store/catalogue/tree_editing.h"
#include "store/catalogue/undo_history.h"

namespace kv {

/// Complete where a command calls it: shell/workbench/workbench.h.
class Workbench;

/// All outlive the run of a command. A test whether a command is enabled only reads.
/// Made once by the workbench and handed to each `run`, `enabled`, `checked` and `text` of a row.
struct CommandContext {
  Workbench& bench;       ///< what a command does to the window's state: tab, cursors, build
  Session& session;       ///< the open shop; its catalogue is closed while none is open
  Environment& env;       ///< user, settings, clock and application folder
  WorkbenchView& view;    ///< the window, or the one that a test plays
  WorkbenchPorts& ports;  ///< dialogs, which may be unset, and the desktop
  CatalogueSets& sets;    ///< rows and cursors; bound while a shop is open
  UndoHistory& history;   ///< one step for each command or field that changed rows
  TreeEditing& editing;   ///< insertions, moves, deletions and the clipboard
  FieldStore& fields;     ///< the editors' view of the current rows
};

}  // namespace kv
