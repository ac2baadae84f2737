#pragma once
// Running the commands of the table, and the states of their keys.

#include <map>
#include <string>
#include <string_view>

#include "shell/workbench/command_context.h"
#include "shell/workbench/command_table.h"

namespace kv {

class WorkbenchCommands {
 public:
  /// What the context names outlives this object.
  WorkbenchCommands(std::vector<Command> rows, const CommandContext& context)
      : table_(std::move(rows)), context_(context) {}

  const CommandTable& table() const { return table_; }

  /// EseguiComando (run a command): saves what is being typed, then does what the row of this number tells, enabled or
  /// not; nothing for a number that isn't in the table, without an open shop, or without the dialog it needs.
  void EseguiComando(int number) const;
  /// Runs a command if it is enabled, as its menu entry does.
  void choose(const Command& command) const;

  /// StatoComando (state of a command): sets what a key, its button and its menu entries are. Keys of the masks too.
  void StatoComando(std::string_view key, bool enabled);
  /// The state of a key; an empty key is enabled, one that was never set is not.
  bool isEnabled(std::string_view key) const;
  /// Whether a command can be chosen now.
  bool isEnabled(const Command& command) const;
  /// Gives StatoComando the state of every command with a key and a test of its own.
  void refreshKeys();

  /// How a command shows now; `place` is that of the menu entry asked for, null for none.
  EntryState stateOf(const Command& command, const MenuPlace* place) const;

 private:
  bool canRun(const Command& command) const;

  CommandTable table_;
  CommandContext context_;
  std::map<std::string, bool, std::less<>> states_;
};

}  // namespace kv
