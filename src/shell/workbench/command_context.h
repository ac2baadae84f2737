#pragma once
// What a command works with: the parts of the workbench, by reference.

#include "shell/workbench/fields/field_store.h"
#include "shell/workbench/workbench_ports.h"
#include "shell/workbench/workbench_view.h"
#include "store/catalogue/tree_editing.h"
#include "store/catalogue/undo_history.h"

namespace kv {

class Workbench;

/// All outlive the run of a command. A test whether a command is enabled only reads.
struct CommandContext {
  Workbench& bench;
  Session& session;
  Environment& env;
  WorkbenchView& view;
  WorkbenchPorts& ports;
  CatalogueSets& sets;
  UndoHistory& history;
  TreeEditing& editing;
  FieldStore& fields;
};

}  // namespace kv
