#pragma once
// Menus and toolbars of the main window, made from the two tables. A command has one action, which its button, its menu
// entries and its shortcut share.

#include <QObject>
#include <map>
#include <vector>

#include "shell/workbench/menu_table.h"
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

  /// The action of a command number; made for every number of the table.
  QAction* command(int number) const;
  /// The action of a menu entry that is no command; null when there is none.
  QAction* entry(MenuAction action, int argument = 0) const;
  QAction* helpKey() const { return helpKey_; }

  /// Every action takes the state that the workbench tells.
  void refresh();
  /// Shows the menu and the buttons of a tab and hides those of the others.
  void showTab(Tab tab);
  /// The language menu and its button take names and flags of the session.
  void showLanguages();

  /// Gives the button of a command the highlight colour, or takes it from all.
  void lightButton(int command);
  void unlightButtons();

  /// The drop-down of the languages, made once for a place in the window.
  QToolButton* makeLanguageButton(QWidget* parent);
  /// Puts both rows of buttons side by side where the window is wide enough, else one below the other.
  void fit(QMainWindow& window);

 private:
  using Key = std::pair<int, int>;  ///< command and -1, or -1 - action and argument
  struct Item {
    const MenuEntry* entry = nullptr;
    QAction* action = nullptr;
    QChar mnemonic;
  };
  void makeCommands();
  void makeMenus(QMenuBar& bar);
  QAction* actionOf(const MenuEntry& entry);
  QMenu* submenu(QMenu& menu, const QString& title);
  void makeToolbars(QMainWindow& window);
  QToolBar* makeTabToolbar(QMainWindow& window, Tab tab);

  Workbench& workbench_;
  std::map<int, QAction*> commands_;
  std::map<Key, QAction*> entries_;
  std::vector<Item> items_;
  std::map<MenuTab, QMenu*> editMenus_;
  std::map<Tab, QToolBar*> toolbars_;
  std::vector<QToolBar*> allToolbars_;
  QToolButton* languageButton_ = nullptr;
  QMenu* languageMenu_ = nullptr;
  QAction* helpKey_ = nullptr;
};

}  // namespace kv
