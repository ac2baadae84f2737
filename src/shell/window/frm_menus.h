#pragma once
// Menus and toolbars of the main window, made from the rows of the commands. A command has one action, which its
// button, its menu entries and its shortcut share.

#include <QObject>
#include <map>
#include <vector>

#include "shell/workbench/workbench.h"

class QAction;
class QMainWindow;
class QMenu;
class QMenuBar;
class QToolBar;
class QToolButton;

namespace kv {

class MainMenus final : public QObject {
  Q_OBJECT
 public:
  MainMenus(QMainWindow& window, Workbench& workbench);

  /// The action of a command by its name; null when there is no such command.
  QAction* action(std::string_view name) const;
  /// The action of a command by its number; null for a number that isn't in the table.
  QAction* command(int number) const;

  /// Gives every action the state that its command has now.
  void refresh();
  /// Shows the menu and the buttons of a tab and hides those of the others.
  void showTab(Tab tab);
  /// The language menu and its button take names and flags of the session.
  void showLanguages();

  /// Gives the button of a command of the table the highlight colour.
  void lightButton(int number);
  /// Takes the highlight colour from all buttons.
  void unlightButtons();

  /// The drop-down of the languages, made once.
  QToolButton* makeLanguageButton(QWidget* parent);
  /// Puts both rows of buttons side by side where the window is wide enough, else one below the other.
  void fit(QMainWindow& window);

 private:
  struct Entry {
    MenuItem item;
    QAction* action = nullptr;
    QChar mnemonic;  ///< the character after "&"; null for none
  };
  const CommandTable& table() const { return workbench_.commands().table(); }
  void makeActions(QMainWindow& window);
  void makeMenu(QMenuBar& bar, Menu which);
  QMenu* submenu(QMenu& menu, const QString& title);
  void makeToolbars(QMainWindow& window);
  QToolBar* makeToolbar(QMainWindow& window, Toolbar which, const QString& title);
  void refreshButton(const Command& command);

  Workbench& workbench_;
  std::map<std::string_view, QAction*> actions_;  ///< by the name of the command
  std::vector<Entry> entries_;
  std::map<Menu, QMenu*> editMenus_;
  std::map<Tab, QToolBar*> toolbars_;
  std::vector<QToolBar*> allToolbars_;
  QToolButton* languageButton_ = nullptr;
  QMenu* languageMenu_ = nullptr;
};

}  // namespace kv
