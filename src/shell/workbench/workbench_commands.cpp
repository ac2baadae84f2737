#include "shell/workbench/workbench_commands.h"

namespace kv {

/// A numbered command acts on the open shop; a dialog that isn't there leaves a command with nothing to do.
bool WorkbenchCommands::canRun(const Command& command) const {
  if (command.number >= 0 && !context_.sets.isBound()) return false;
  return !command.dialog || command.dialog(context_.ports.dialogs);
}

void WorkbenchCommands::EseguiComando(int number) const {
  const Command* command = table_.numbered(number);
  if (command == nullptr || !context_.sets.isBound()) return;
  if (!context_.view.finishEdits()) return;
  if (canRun(*command)) command->run(context_);
  context_.view.entriesChanged();
}

void WorkbenchCommands::choose(const Command& command) const {
  if (!isEnabled(command)) return;
  if (command.finishesEdits && !context_.view.finishEdits()) return;
  command.run(context_);
  context_.view.entriesChanged();
}

void WorkbenchCommands::StatoComando(std::string_view key, bool enabled) {
  const auto found = states_.find(key);
  if (found != states_.end() && found->second == enabled) return;
  states_.insert_or_assign(std::string(key), enabled);
  context_.view.enableKey(key, enabled);
  context_.view.entriesChanged();
}

bool WorkbenchCommands::isEnabled(std::string_view key) const {
  if (key.empty()) return true;
  const auto found = states_.find(key);
  return found != states_.end() && found->second;
}

bool WorkbenchCommands::isEnabled(const Command& command) const {
  if (!canRun(command)) return false;
  if (!command.key.empty()) return isEnabled(command.key);
  return !command.enabled || command.enabled(context_);
}

std::string WorkbenchCommands::whyOff(const Command& command) const {
  if (isEnabled(command)) return {};
  if (!context_.sets.isBound()) return "Nessun negozio aperto";
  if (!canRun(command) || command.whenOff.empty()) return "Non disponibile in questa installazione";
  return std::string(command.whenOff);
}

void WorkbenchCommands::refreshKeys() {
  for (const Command& command : table_.rows()) {
    if (!command.key.empty() && command.enabled) StatoComando(command.key, command.enabled(context_));
  }
}

EntryState WorkbenchCommands::stateOf(const Command& command, const MenuPlace* entry) const {
  EntryState state;
  state.enabled = isEnabled(command);
  if (!state.enabled) state.why = whyOff(command);
  state.visible = !command.visible || command.visible(context_);
  state.checkable = command.checked != nullptr;
  state.checked = state.checkable && command.checked(context_);
  if (command.text) {
    state.text = command.text(context_);
  } else if (entry != nullptr) {
    state.text = entry->text;
  }
  return state;
}

}  // namespace kv
