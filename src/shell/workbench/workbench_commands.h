#pragma once
// Running the commands of the table, and the states of their keys.

#include <map>
#include <string>
#include <string_view>

#include "shell/workbench/command_context.h"
#include "shell/workbench/command_table.h"

namespace kv {

/// The workbench owns it. Menus, buttons and shortcuts of the window call it.
class WorkbenchCommands {
 public:
  /// What the context names outlives this object.
  WorkbenchCommands(std::vector<Command> rows, const CommandContext& context)
      : table_(std::move(rows)), context_(context) {}

  const CommandTable& table() const { return table_; }

  /// EseguiComando (run a command): saves what is being typed, then does what the row of this number tells, enabled or
  /// not; nothing for a number that isn't in the table, without an open shop, or without the dialog it needs.
  /// The entries of the menus are refreshed afterwards. Failures are told to the user by the command itself.
  void EseguiComando(int number) const;
  /// Runs a command if it is enabled, as its menu entry does.
  /// Nothing otherwise. What is being typed is saved first, unless the row says that it stays.
  void choose(const Command& command) const;

  /// StatoComando (state of a command): sets what a key, its button and its menu entries are. Keys of the masks too.
  /// The window is told when a state changes, and only then. A key that belongs to no command is kept as well.
  void StatoComando(std::string_view key, bool enabled);
  /// The state of a key; an empty key is enabled, one that was never set is not.
  /// Reads what StatoComando set last; no test runs.
  bool isEnabled(std::string_view key) const;
  /// Whether a command can be chosen now.
  /// False without the open shop or the dialog it needs; else the state of its key, or its own test when it has no key.
  bool isEnabled(const Command& command) const;
  /// Gives StatoComando the state of every command with a key and a test of its own.
  /// Called whenever a cursor moves or the shop changes.
  void refreshKeys();

  /// Why a command can't be chosen now, for its tool tip and the status line; empty while it can be.
  std::string whyOff(const Command& command) const;
  /// How a command shows now; `entry` is the menu entry asked for, null for none.
  /// Without an entry and without a changing text the text is empty.
  EntryState stateOf(const Command& command, const MenuPlace* entry) const;

 private:
  bool canRun(const Command& command) const;

  CommandTable table_;  ///< rows stay where they are as long as this object lives
  CommandContext context_;
  std::map<std::string, bool, std::less<>> states_;  ///< by key; one that is missing was never set
};

}  // namespace kv
