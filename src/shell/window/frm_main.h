#pragma once
// frmMain, the main window: tabs, tree, list and pages around the workbench. It shows the state of the workbench
// and hands it what the user does.

#include <QMainWindow>
#include <QTimer>
#include <array>
#include <functional>

#include "shell/window/frm_articles_list.h"
#include "shell/window/frm_menus.h"
#include "shell/window/frm_page.h"
#include "shell/window/frm_tree.h"
#include "shell/window/intro_guide.h"
#include "shell/workbench/workbench.h"

class QLabel;
class QSplitter;
class QStackedWidget;
class QTabBar;

namespace kv {

/// The tabs by their keys, in the order of `Tab`.
inline constexpr std::array<std::string_view, tabCount> tabKeys{"kReparti", "kArticoli", "kSito", "kInternet"};

/// The window around one workbench. Its parts are open to the program and to tests.
class frmMain final : public QMainWindow, public WorkbenchView, public IntroTarget {
  Q_OBJECT
 public:
  /// `session` and `env` outlive the window.
  frmMain(Session& session, Environment& env, WorkbenchPorts ports);
  ~frmMain() override;

  Workbench& workbench() { return workbench_; }
  /// Menus, buttons and their actions.
  MainMenus& menus() { return *menus_; }
  DepartmentView& tree() { return *tree_; }
  ArticleList& articles() { return *articles_; }
  /// The page of editors of a tab.
  EditorPage& page(Tab tab) { return *pages_[static_cast<std::size_t>(tab)]; }
  /// The strip of tabs.
  QTabBar& tabs() { return *tabs_; }

  /// Runs once, when the window has been painted for the first time.
  void whenShown(std::function<void()> action) { whenShown_ = std::move(action); }
  /// Geometry and splitters as they were left, from the settings.
  void restoreLayout();

  // WorkbenchView
  void finishEdits() override;
  void showTab(Tab tab) override;
  void enableKey(std::string_view key, bool enabled) override;
  void entriesChanged() override;
  void rebuildTree() override;
  void selectDepartment(const std::string& ID) override;
  void departmentTitle(const std::string& ID, const std::string& title) override;
  void expandTree(bool expanded) override;
  void articlesChanged() override;
  void selectArticle() override;
  void fieldsChanged(EditedSet set) override;
  void showStatus(const std::string& text) override;
  void showTitle(const std::string& title) override;
  void showBusy(bool busy) override;
  void showLanguages() override;
  void showListino(int listino) override;
  void hideDetails(bool hidden) override;
  void close() override;

  // IntroTarget
  void AttivaTextBox(std::string_view field, std::string_view tabKey) override;
  void AttivaTasto(int command, std::string_view tabKey) override;
  void DisattivaTextBox() override;
  bool onDepartment() const override;
  void selectFirstDepartment() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  /// The parts of the window, made once in this order.
  void makeTabs();
  void makePanels();
  void makeKeys();
  /// Shows in tree or list what is being typed into a field.
  void typed(const EditorBinding& binding, const QString& text);
  /// To the field of the title, on the two tabs that have one.
  void goToTitle();
  /// To the tab of a key; nothing for an empty key.
  void goToTab(std::string_view tabKey);
  /// Stores geometry and splitters in the settings.
  void keepLayout();

  Session& session_;
  Environment& env_;
  Workbench workbench_;
  MainMenus* menus_ = nullptr;
  QTabBar* tabs_ = nullptr;
  QSplitter* sides_ = nullptr;       ///< lists beside the pages
  QSplitter* lists_ = nullptr;       ///< tree above the article list
  QStackedWidget* stack_ = nullptr;  ///< the pages of the tabs
  DepartmentView* tree_ = nullptr;
  ArticleList* articles_ = nullptr;
  std::array<EditorPage*, tabCount> pages_{};
  QLabel* status_ = nullptr;  ///< the text of the status line
  QTimer refresh_;            ///< of the menus, once the work is done
  std::function<void()> whenShown_;
  int busy_ = 0;  ///< how many wait cursors are nested
  bool detailsHidden_ = false;
};

}  // namespace kv
