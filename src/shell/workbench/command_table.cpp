#include "shell/workbench/command_table.h"

#include <algorithm>

namespace kv {
namespace {

/// The group that a position belongs to.
int groupOf(int position) { return position / 100; }

}  // namespace

const Command* CommandTable::numbered(int number) const {
  if (number < 0) return nullptr;
  const auto found = std::ranges::find(rows_, number, &Command::number);
  return found == rows_.end() ? nullptr : &*found;
}

const Command* CommandTable::named(std::string_view name) const {
  const auto found = std::ranges::find(rows_, name, &Command::name);
  return found == rows_.end() ? nullptr : &*found;
}

std::vector<MenuItem> CommandTable::entriesOf(Menu menu) const {
  std::vector<MenuItem> entries;
  for (const Command& command : rows_) {
    for (const MenuPlace& place : command.menus) {
      if (place.menu == menu) entries.push_back({&command, &place});
    }
  }
  std::ranges::stable_sort(entries, {}, [](const MenuItem& item) { return item.place->position; });
  std::vector<MenuItem> parted;
  for (const MenuItem& item : entries) {
    const bool first = parted.empty() || groupOf(parted.back().place->position) == groupOf(item.place->position);
    if (!first) parted.push_back({});
    parted.push_back(item);
  }
  return parted;
}

std::vector<const Command*> CommandTable::buttonsOf(Toolbar bar) const {
  std::vector<const Command*> buttons;
  for (const Command& command : rows_) {
    if (command.toolbar.bar == bar) buttons.push_back(&command);
  }
  std::ranges::stable_sort(buttons, {}, [](const Command* command) { return command->toolbar.position; });
  std::vector<const Command*> parted;
  for (const Command* command : buttons) {
    const bool first = parted.empty() || groupOf(parted.back()->toolbar.position) == groupOf(command->toolbar.position);
    if (!first) parted.push_back(nullptr);
    parted.push_back(command);
  }
  return parted;
}

std::vector<Shortcut> CommandTable::shortcuts() const {
  std::vector<Shortcut> list;
  for (const Command& command : rows_) {
    if (!command.shortcut.empty()) list.push_back({command.shortcut, &command});
  }
  return list;
}

std::string_view titleOf(Menu menu) {
  switch (menu) {
    case Menu::File:
      return "File";
    case Menu::View:
      return "Visualizza";
    case Menu::Help:
      return "?";
    default:
      return "Modifica";
  }
}

}  // namespace kv
