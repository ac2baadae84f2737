#pragma once
// Menus and toolbars of the main window, made from the rows of the commands. A command has one action, which its
// button, its menu entries and its shortcut share.

#include <QObject>
#include <map>
#include <vector>

#include "shell/workbench/workbench.h"

class QAction;
class QActionGroup;
class QMainWindow;
class QMenu;
class QKeySequence;
class QMenuBar;
class QToolBar;
class QToolButton;

namespace kv {

/// Made once by the main window, and owned by it. The table of commands is read at the start only: later only states,
/// texts and marks follow. Numbered commands go through EseguiComando, the others through choose.
class MainMenus final : public QObject {
  Q_OBJECT
 public:
  /// Fills the menu bar and adds the rows of buttons to `window`. The workbench outlives the object.
  MainMenus(QMainWindow& window, Workbench& workbench);

  /// The action of a command by its name; null when there is no such command.
  QAction* action(std::string_view name) const;
  /// The action of a command by its number; null for a number that isn't in the table.
  QAction* command(int number) const;

  /// The command whose shortcut these keys are in the menus that show now; null for other keys.
  /// Of commands that share a shortcut it is the one of the tab in use. Enabled or not.
  const Command* commandOf(const QKeySequence& keys) const;
  /// Why the entry under the mouse is off is told in its tool tip and in the status line.
  bool eventFilter(QObject* watched, QEvent* event) override;

  /// Gives every action the state that its command has now.
  /// Called once the work in hand is done, by a timer of the window: texts, marks, visibility, tool tips. An entry that
  /// is hidden is disabled too, so that its shortcut does nothing.
  void refresh();
  /// Shows the menu and the buttons of a tab and hides those of the others.
  /// Menus and rows that belong to no tab stay.
  void showTab(Tab tab);
  /// The language menu and its button take names and flags of the session.
  /// A language without a name has no flag; the button shows the language being edited.
  void showLanguages();

  /// Gives the button of a command of the table the highlight colour.
  /// For the guide. The number is one of the table, and its picture is drawn in the colours that suit the highlight.
  void lightButton(int number);
  /// Takes the highlight colour from all buttons.
  /// Their pictures follow the palette again. Does nothing where none is lit.
  void unlightButtons();

  /// The drop-down of the languages, made once.
  /// Owned by `parent`; the whole button opens the list. Call it before showLanguages().
  QToolButton* makeLanguageButton(QWidget* parent);
  /// Puts both rows of buttons side by side where the window is wide enough, else one below the other.
  /// Called whenever the window is resized. Rows are in one line or in two, the same for all tabs.
  void fit(QMainWindow& window);

 private:
  /// A menu entry. The entries of a command share its action, and with it text and state.
  struct Entry {
    MenuItem item;
    QAction* action = nullptr;
    QMenu* menu = nullptr;
    QChar mnemonic;  ///< the character after "&"; null for none
  };
  const CommandTable& table() const { return workbench_.commands().table(); }
  /// One action for each row of the table; a command in no menu is given to the window, so that its shortcut works.
  void makeActions(QMainWindow& window);
  /// Entries and submenus of a menu.
  void makeMenu(QMenuBar& bar, Menu which);
  /// Gives entries and submenus a character after "&" that no other one of their menu has, where the text allows
  /// that. An entry of several menus has the same in all of them.
  void giveMnemonics();
  /// The submenu of this title, made at its first entry.
  QMenu* submenu(QMenu& menu, const QString& title);
  void makeToolbars(QMainWindow& window);
  /// The row of buttons, captions in two lines below the pictures; a row of a tab begins with a separator.
  QToolBar* makeToolbar(QMainWindow& window, Toolbar which, const QString& title);
  /// Caption and tool tip of a button: its tip has the shortcut, or the changing text of the command.
  void refreshButton(const Command& command);

  Workbench& workbench_;
  QMainWindow& window_;
  std::map<std::string_view, QAction*> actions_;       ///< by the name of the command
  std::map<std::string_view, QActionGroup*> choices_;  ///< entries of which one is marked
  std::vector<Entry> entries_;                         ///< in the order of menus and positions
  std::map<Menu, QMenu*> editMenus_;                   ///< those that belong to a tab
  std::map<Tab, QToolBar*> toolbars_;                  ///< those that belong to a tab
  std::vector<QToolBar*> allToolbars_;                 ///< the row of the shop first
  QToolButton* languageButton_ = nullptr;              ///< null until makeLanguageButton
  QMenu* languageMenu_ = nullptr;                      ///< the submenu that holds the languages
};

}  // namespace kv
