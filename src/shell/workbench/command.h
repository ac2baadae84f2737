#pragma once
// A command of the main window: one row that carries what it is called, where its entries are, when it can be chosen,
// and what it does. Toolbars, menus, shortcuts, states and help are made of these rows and of nothing else.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/workbench/workbench_dialogs.h"

namespace kv {

struct CommandContext;

/// The menus in the order of the menu bar. Of the four `Modifica` each belongs to one tab; the others always show.
enum class Menu { File, EditDepartments, EditArticles, EditSite, EditInternet, View, Help };
inline constexpr int menuCount = 7;

/// The position of a command in a menu.
struct MenuPlace {
  Menu menu = Menu::File;
  /// Entries are in the order of their positions, with a separator between hundreds: 203 is the third of the second
  /// group. No two entries of a menu share one.
  int position = 0;
  std::string_view text;          ///< as shown in the entry
  std::string_view submenu = {};  ///< title of the submenu that holds it; empty: the menu itself
};

/// The rows of buttons: that of the shop, which always shows, and those of two tabs.
enum class Toolbar { None, Shop, Departments, Articles };

/// The position of a command in a row of buttons, counted as in a menu.
struct ToolbarPlace {
  Toolbar bar = Toolbar::None;
  int position = 0;
};

struct Command {
  using Test = std::function<bool(const CommandContext&)>;

  /// 0 to 35 and 50 to 52 for the numbered commands, which need an open shop; -1 for the others.
  int number = -1;
  std::string name = {};          ///< its identity: "article.up"
  std::string_view key = {};      ///< of StatoComando; empty: it has no state of its own
  std::string_view caption = {};  ///< of its button; empty: there is none
  std::string_view icon = {};     ///< file of the button's picture, without folder and extension
  std::vector<MenuPlace> menus = {};
  ToolbarPlace toolbar = {};
  std::string_view shortcut = {};  ///< in the portable form, "Ctrl+N"
  std::string_view step = {};      ///< how undo names it; empty: nothing to undo
  std::string_view help = {};      ///< its page below the folder of the help
  /// Why it can't be chosen, told while it is off; empty: only a missing shop or dialog turns it off.
  std::string_view whenOff = {};
  std::string_view choice = {};  ///< of the entries that share one, one is marked; empty: the mark is its own
  /// Off: what is being typed stays in its field while the command runs.
  bool finishesEdits = true;

  /// The dialog without which there is nothing to do; unset: it needs none.
  std::function<bool(const WorkbenchDialogs&)> dialog = {};
  /// When it can be chosen; unset: always. With a key, StatoComando is given the answer whenever a cursor moves; a key
  /// without this test is set by what changes its state.
  Test enabled = {};
  std::function<void(const CommandContext&)> run = {};

  Test visible = {};  ///< whether its entries show; unset: always
  Test checked = {};  ///< whether its entries are marked; unset: they can't be
  /// The text of its entries where it changes; unset: that of its menu entry.
  std::function<std::string(const CommandContext&)> text = {};
};

/// Whether a dialog is there: for `Command::dialog`.
template <class Member>
std::function<bool(const WorkbenchDialogs&)> wired(Member WorkbenchDialogs::*member) {
  return [member](const WorkbenchDialogs& dialogs) { return dialogs.*member != nullptr; };
}

/// How a command shows at the moment.
struct EntryState {
  bool visible = true;
  bool enabled = true;
  bool checkable = false;
  bool checked = false;
  std::string text;  ///< of a menu entry, "&" before the character of its key
  std::string why;   ///< why it is off; empty while it is on
};

}  // namespace kv
