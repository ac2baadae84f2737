#pragma once
// frmMain, the main window: tabs, tree, list and pages around the workbench. It shows the state of the workbench
// and hands it what the user does.

#include <QMainWindow>
#include <QTimer>
#include <array>
#include <functional>

#include "shell/window/fields/frm_page.h"
#include "shell/window/frm_menus.h"
#include "shell/window/intro_guide.h"
#include "shell/window/lists/frm_articles_list.h"
#include "shell/window/lists/frm_articles_panel.h"
#include "shell/window/lists/frm_tree.h"
#include "shell/workbench/workbench.h"

class QLabel;
class QSplitter;
class QStackedWidget;
class QTabBar;

namespace kv {

/// The tabs by their keys, in the order of `Tab`.
/// The guide names tabs by them, and so are the pages named.
inline constexpr std::array<std::string_view, tabCount> tabKeys{"kReparti", "kArticoli", "kSito", "kInternet"};

/// The window around one workbench. Its parts are open to the program and to tests.
/// It holds no data of the shop. Menus are brought up to date by a timer after the work in hand, however many states
/// have changed.
class frmMain final : public QMainWindow, public WorkbenchView, public IntroTarget {
  Q_OBJECT
 public:
  /// `session` and `env` outlive the window.
  /// Opens nothing: the program shows the window and opens the shop through workbench().
  frmMain(Session& session, Environment& env, WorkbenchPorts ports);
  /// A field that has the focus is left first, so that what was typed in it is saved; the session is released.
  ~frmMain() override;

  /// The state that the window shows and the commands; it lives as long as the window.
  Workbench& workbench() { return workbench_; }
  /// Menus, buttons and their actions.
  MainMenus& menus() { return *menus_; }
  /// The departments, shown on the tabs Reparti and Articoli.
  DepartmentView& tree() { return *tree_; }
  /// The articles of the current department, shown on the tab Articoli.
  ArticleList& articles() { return *articles_; }
  /// The page of editors of a tab.
  EditorPage& page(Tab tab) { return *pages_[static_cast<std::size_t>(tab)]; }
  /// The strip of tabs.
  QTabBar& tabs() { return *tabs_; }

  /// Gives the keyboard to the field of a column, wherever it is; nothing for a column without one.
  void goToField(EditedSet set, std::string_view column);

  /// Runs once, when the window has been painted for the first time.
  /// It runs from the event loop; a second call before that replaces the first.
  void whenShown(std::function<void()> action) { whenShown_ = std::move(action); }
  /// Geometry and splitters as they were left, from the settings.
  /// Nothing happens for a part that was never stored or can't be read. Call it before the window is shown.
  void restoreLayout();

  // WorkbenchView
  // Each as WorkbenchView says. A panel that is hidden is kept up to date too.
  bool finishEdits() override;
  void showTab(Tab tab) override;
  void enableKey(std::string_view key, bool enabled) override;
  /// Starts the timer that refreshes the menus.
  void entriesChanged() override;
  void rebuildTree() override;
  void selectDepartment(const std::string& ID) override;
  void departmentTitle(const std::string& ID, const std::string& title) override;
  void expandTree(bool expanded) override;
  void articlesChanged() override;
  void selectArticle() override;
  std::vector<std::int64_t> selectedArticles() const override;
  std::vector<std::string> selectedDepartments() const override;
  void focusTree() override;
  /// Nothing while the details are hidden: the keyboard stays in tree or list.
  void startRow(EditedSet set) override;
  /// The list of articles reads its rows again too.
  void fieldsChanged(EditedSet set) override;
  void showStatus(const std::string& text) override;
  void showTitle(const std::string& title) override;
  /// The wait cursor is that of the whole program.
  void showBusy(bool busy) override;
  void showLanguages() override;
  void showListino(int listino) override;
  /// Only on the tabs that show lists; the other tabs always show their page.
  void hideDetails(bool hidden) override;
  void close() override;

  // IntroTarget
  // Each as IntroTarget says; the highlight colour is litColour.
  void AttivaTextBox(std::string_view field, std::string_view tabKey) override;
  void AttivaTasto(int command, std::string_view tabKey) override;
  void DisattivaTextBox() override;
  bool onDepartment() const override;
  void selectFirstDepartment() override;

 protected:
  /// Saves what is being typed, closes the guide, stores the layout; an open shop is compacted at the end of the
  /// program.
  void closeEvent(QCloseEvent* event) override;
  /// Puts the rows of buttons into one line or two.
  void resizeEvent(QResizeEvent* event) override;
  /// The frame is within the screen, and the action of whenShown is queued.
  void showEvent(QShowEvent* event) override;

 private:
  /// The parts of the window, made once in this order.
  void makeTabs();
  /// Tree, list and pages, with the strip of tabs and the button of the languages above them.
  void makePanels();
  /// F2, which goes to the title, and in the list opens a cell.
  void makeKeys();
  /// Shows in tree or list what is being typed into a field.
  void typed(const EditorBinding& binding, const QString& text);
  /// To the field of the title, on the two tabs that have one.
  void goToTitle();
  /// To the tab of a key; nothing for an empty key.
  void goToTab(std::string_view tabKey);
  /// Opens the commands of a row of buttons as a menu, where the mouse or the keyboard asks for it.
  void offerCommands(QWidget& list, Toolbar bar, QPoint at);
  /// Says at the right of the status line what is stored and when the shop was built.
  void showBuilt();
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
  ArticlePanel* panel_ = nullptr;
  ArticleList* articles_ = nullptr;  ///< in the panel
  std::array<EditorPage*, tabCount> pages_{};
  QLabel* status_ = nullptr;  ///< the text of the status line
  QLabel* built_ = nullptr;   ///< what is stored, and when the shop was built
  QTimer refresh_;            ///< of the menus, once the work is done
  std::function<void()> whenShown_;
  int busy_ = 0;  ///< how many wait cursors are nested
  bool detailsHidden_ = false;
};

}  // namespace kv
