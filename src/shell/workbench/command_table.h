#pragma once
// The rows of all commands, and what is made of them: the entries of a menu, the buttons of a row, the list of
// shortcuts.

#include <span>
#include <string_view>
#include <vector>

#include "shell/workbench/command.h"

namespace kv {

/// An entry of a menu, or a separator.
struct MenuItem {
  const Command* command = nullptr;  ///< null: a separator
  const MenuPlace* place = nullptr;
};

/// A line of the shortcut list.
struct Shortcut {
  std::string_view keys;  ///< in the portable form
  const Command* command = nullptr;
};

/// Numbers and names are unique among the rows, which never change.
class CommandTable {
 public:
  /// Takes the rows over; pointers to them hold as long as the table.
  explicit CommandTable(std::vector<Command> rows) : rows_(std::move(rows)) {}
  CommandTable(const CommandTable&) = delete;
  CommandTable& operator=(const CommandTable&) = delete;

  /// All rows, in the order in which they were given.
  std::span<const Command> rows() const { return rows_; }
  /// The command of a number; null for 36 to 49 and every other number, which do nothing.
  const Command* numbered(int number) const;
  /// The command of a name; null when there is none.
  const Command* named(std::string_view name) const;

  /// The entries of a menu in their order, with the separators between their groups.
  /// No separator comes first or last.
  std::vector<MenuItem> entriesOf(Menu menu) const;
  /// The buttons of a row in their order; null: a separator.
  /// No separator comes first or last.
  std::vector<const Command*> buttonsOf(Toolbar bar) const;
  /// Every shortcut there is, in the order of the rows.
  std::vector<Shortcut> shortcuts() const;

 private:
  std::vector<Command> rows_;
};

/// The title of a menu, as the menu bar shows it.
/// Without "&".
std::string_view titleOf(Menu menu);

/// The keys of StatoComando that belong to no command: masks over all editors of a panel, and the choice of a folder of
/// the server.
inline constexpr std::string_view articleMask = "maschera articoli";
inline constexpr std::string_view departmentMask = "maschera categorie";
inline constexpr std::string_view ftpFolders = "cartelle FTP";
/// The key of expanding and collapsing the tree.
inline constexpr std::string_view expansionKey = "espansione";

}  // namespace kv
