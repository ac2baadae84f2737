#pragma once
// frmMain, the main window: tabs, tree, list and pages around the workbench. It shows what the workbench tells and
// hands it what the user does.

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

class frmMain final : public QMainWindow, public WorkbenchView, public IntroTarget {
  Q_OBJECT
 public:
  /// `session` and `with` outlive the window.
  frmMain(Session& session, Environment& env, WorkbenchPorts ports);
  ~frmMain() override;

  Workbench& workbench() { return workbench_; }
  MainMenus& menus() { return *menus_; }
  DepartmentView& tree() { return *tree_; }
  ArticleList& articles() { return *articles_; }
  EditorPage& page(Tab tab) { return *pages_[static_cast<std::size_t>(tab)]; }
  QTabBar& tabs() { return *tabs_; }

  /// Runs once, when the window has been painted for the first time.
  void whenShown(std::function<void()> action) { whenShown_ = std::move(action); }
  /// Geometry and splitters as they were left, from the settings.
  void restorePlace();

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
  void makeTabs();
  void makePanels();
  void makeKeys();
  void typed(const EditorBinding& binding, const QString& text);
  void goToTitle();
  void goToTab(std::string_view tabKey);
  void keepPlace();

  Session& session_;
  Environment& env_;
  Workbench workbench_;
  MainMenus* menus_ = nullptr;
  QTabBar* tabs_ = nullptr;
  QSplitter* sides_ = nullptr;  ///< lists beside the pages
  QSplitter* lists_ = nullptr;  ///< tree above the article list
  QStackedWidget* stack_ = nullptr;
  DepartmentView* tree_ = nullptr;
  ArticleList* articles_ = nullptr;
  std::array<EditorPage*, tabCount> pages_{};
  QLabel* status_ = nullptr;
  QTimer refresh_;
  std::function<void()> whenShown_;
  int busy_ = 0;
  bool detailsHidden_ = false;
};

}  // namespace kv
