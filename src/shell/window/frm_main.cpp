#include "shell/window/frm_main.h"
#include "platform/database/recordset.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/qt/frm_dialog.h"
#include "platform/qt/frm_screen.h"
#include "shell/window/fields/frm_picture_drop.h"
#include "shell/window/frm_keys.h"

namespace kv {
namespace {

constexpr int firstWidth = 1180;
constexpr int firstHeight = 760;
constexpr int leastWidth = 640;
constexpr int leastHeight = 420;
constexpr int listsWidth = 372;

/// A picture for the row under the mouse: for the article or department that it shows.
void takeDrops(frmMain& window) {
  Workbench& workbench = window.workbench();
  DepartmentView& tree = window.tree();
  ArticleList& articles = window.articles();
  new PictureDrops(*tree.viewport(), workbench, [&workbench, &tree](QPoint at) -> std::optional<RowPicture> {
    const QModelIndex node = tree.indexAt(at);
    const std::string key = node.isValid() ? tree.departments().keyOf(node) : std::string();
    if (key.empty() || key == treeRoot) return std::nullopt;
    workbench.goToDepartment(key);
    tree.select(workbench.sets().department());
    // What is being typed may not let the row be left.
    if (workbench.sets().department() != key) return std::nullopt;
    return RowPicture{EditedSet::Categorie, freePictures};
  });
  new PictureDrops(*articles.viewport(), workbench, [&workbench, &articles](QPoint at) -> std::optional<RowPicture> {
    const QModelIndex row = articles.indexAt(at);
    if (!row.isValid()) return std::nullopt;
    const std::int64_t ID = articles.articles().articleAt(row.row());
    workbench.goToArticle(ID);
    articles.selectCurrent();
    if (workbench.sets().article() != ID) return std::nullopt;
    return RowPicture{EditedSet::Articoli, freePictures};
  });
  for (const auto& [tab, set] :
       {std::pair{Tab::Departments, EditedSet::Categorie}, std::pair{Tab::Articles, EditedSet::Articoli}}) {
    new PictureDrops(*window.page(tab).viewport(), workbench, [set = set](QPoint) {
      return std::optional(RowPicture{set, freePictures});
    });
  }
}

}  // namespace

frmMain::frmMain(Session& session, Environment& env, WorkbenchPorts ports)
    : session_(session), env_(env), workbench_(session, env, *this, std::move(ports)) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QStringLiteral("Korvane"));
  menus_ = new MainMenus(*this, workbench_);
  makeTabs();
  makePanels();
  takeDrops(*this);
  makeKeys();
  status_ = new QLabel(this);
  status_->setObjectName(QStringLiteral("lblStato"));
  statusBar()->addWidget(status_, 1);
  built_ = new QLabel(this);
  built_->setObjectName(QStringLiteral("lblCostruito"));
  statusBar()->addPermanentWidget(built_);
  auto* view = named(new QToolButton(this), "cmdVedi");
  view->setDefaultAction(menus_->action("site.view"));
  view->setAutoRaise(true);
  view->setFocusPolicy(Qt::TabFocus);
  statusBar()->addPermanentWidget(view);
  refresh_.setSingleShot(true);
  refresh_.setInterval(0);
  connect(&refresh_, &QTimer::timeout, menus_, &MainMenus::refresh);
  connect(&refresh_, &QTimer::timeout, this, &frmMain::showBuilt);
  resize(firstWidth, firstHeight);
  setMinimumSize(leastWidth, leastHeight);
  menus_->showTab(Tab::Departments);
  new WindowKeys(*this, workbench_, *menus_, *tree_);
  tree_->setFocus(Qt::OtherFocusReason);
}

frmMain::~frmMain() {
  // A field that goes while it has the focus is left like any other, and the workbench must still be there for that.
  if (QWidget* field = focusWidget()) field->clearFocus();
  workbench_.releaseSession();
}

void frmMain::makeTabs() {
  tabs_ = new QTabBar(this);
  tabs_->setObjectName(QStringLiteral("tabSchede"));
  tabs_->setAccessibleName(tr("Schede"));
  tabs_->setExpanding(false);
  tabs_->setDocumentMode(true);
  for (const QString& name : {tr("Reparti"), tr("Articoli"), tr("Sito"), tr("Internet")}) tabs_->addTab(name);
  connect(tabs_, &QTabBar::currentChanged, this, [this](int tab) { workbench_.selectTab(static_cast<Tab>(tab)); });
}

void frmMain::makePanels() {
  tree_ = new DepartmentView(workbench_, this);
  panel_ = new ArticlePanel(workbench_, this);
  articles_ = &panel_->list();
  connect(articles_, &ArticleList::cellTyped, this, &frmMain::showBuilt);
  const auto offer = [this](QWidget* list, Toolbar bar) {
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(list, &QWidget::customContextMenuRequested, this,
            [this, list, bar](QPoint at) { offerCommands(*list, bar, at); });
  };
  offer(tree_, Toolbar::Departments);
  offer(articles_, Toolbar::Articles);
  lists_ = new QSplitter(Qt::Vertical, this);
  lists_->addWidget(tree_);
  lists_->addWidget(panel_);
  lists_->setChildrenCollapsible(false);
  stack_ = new QStackedWidget(this);
  const CommandActions actions = [this](std::string_view name) { return menus_->action(name); };
  for (int tab = 0; tab < tabCount; ++tab) {
    auto* page = new EditorPage(static_cast<Tab>(tab), workbench_, actions, stack_);
    page->setObjectName(toQt(tabKeys[static_cast<std::size_t>(tab)]));
    pages_[static_cast<std::size_t>(tab)] = page;
    stack_->addWidget(page);
    connect(page, &EditorPage::typed, this, &frmMain::typed);
    connect(page, &EditorPage::entered, this, [this](const EditorBinding& binding) {
      if (binding.editor().kind == FieldKind::DepartmentTitle) tree_->setFocus(Qt::OtherFocusReason);
    });
  }
  sides_ = new QSplitter(Qt::Horizontal, this);
  sides_->addWidget(lists_);
  sides_->addWidget(stack_);
  sides_->setStretchFactor(1, 1);
  sides_->setSizes({listsWidth, firstWidth - listsWidth});
  sides_->setChildrenCollapsible(false);
  auto* body = new QWidget(this);
  auto* column = new QVBoxLayout(body);
  column->setContentsMargins(6, 6, 6, 0);
  column->setSpacing(6);
  auto* strip = new QHBoxLayout;
  strip->setSpacing(6);
  strip->addWidget(tabs_, 1);
  strip->addWidget(menus_->makeLanguageButton(body));
  column->addLayout(strip);
  column->addWidget(sides_, 1);
  setCentralWidget(body);
}

void frmMain::makeKeys() {
  auto* rename = new QAction(this);
  rename->setShortcut(QKeySequence(Qt::Key_F2));
  connect(rename, &QAction::triggered, this, &frmMain::goToTitle);
  addAction(rename);
}

void frmMain::goToTitle() {
  const bool articles = workbench_.tab() == Tab::Articles;
  if (articles && articles_->hasFocus()) return articles_->editCell();
  if (!articles && workbench_.tab() != Tab::Departments) return;
  page(workbench_.tab()).goTo(articles ? EditedSet::Articoli : EditedSet::Categorie, "titolo");
}

/// A title shows in tree and list while it is being typed.
void frmMain::typed(const EditorBinding& binding, const QString& text) {
  showBuilt();
  const Editor& editor = binding.editor();
  CatalogueSets& sets = workbench_.sets();
  if (editor.kind == FieldKind::DepartmentTitle) return tree_->departments().setTitle(sets.department(), text);
  if (editor.set != EditedSet::Articoli || !sets.onArticle()) return;
  const int row = articles_->articles().currentRow();
  if (editor.column == "titolo") articles_->articles().preview(row, ArticleModel::Title, text);
  if (editor.column == "codice") articles_->articles().preview(row, ArticleModel::Code, text);
  if (editor.column == "prezzo") articles_->articles().preview(row, ArticleModel::Price, text);
}

bool frmMain::finishEdits() {
  bool saved = articles_ == nullptr || articles_->finishEdit();
  for (EditorPage* page : pages_) saved = (page == nullptr || page->commit()) && saved;
  return saved;
}

void frmMain::showTab(Tab tab) {
  const QSignalBlocker quiet(tabs_);
  tabs_->setCurrentIndex(static_cast<int>(tab));
  stack_->setCurrentIndex(static_cast<int>(tab));
  const bool lists = tab == Tab::Departments || tab == Tab::Articles;
  lists_->setVisible(lists);
  panel_->setVisible(tab == Tab::Articles);
  stack_->setVisible(!(lists && detailsHidden_));
  menus_->showTab(tab);
  entriesChanged();
}

void frmMain::enableKey(std::string_view key, bool /*enabled*/) {
  if (key == articleMask) pages_[static_cast<std::size_t>(Tab::Articles)]->refreshEnabled();
  if (key == departmentMask) pages_[static_cast<std::size_t>(Tab::Departments)]->refreshEnabled();
  entriesChanged();
}

void frmMain::entriesChanged() {
  // Many states change at once; the menus follow when the work is done.
  if (!refresh_.isActive()) refresh_.start();
}

void frmMain::rebuildTree() { tree_->rebuild(); }
void frmMain::selectDepartment(const std::string& ID) { tree_->select(ID); }
void frmMain::departmentTitle(const std::string& ID, const std::string& title) {
  tree_->departments().setTitle(ID, toQt(title));
}
void frmMain::expandTree(bool expanded) { tree_->expandTree(expanded); }
void frmMain::articlesChanged() { articles_->rebuild(); }
void frmMain::selectArticle() { articles_->selectCurrent(); }
std::vector<std::int64_t> frmMain::selectedArticles() const { return articles_->selected(); }
std::vector<std::string> frmMain::selectedDepartments() const { return tree_->selected(); }
void frmMain::focusTree() { tree_->setFocus(Qt::OtherFocusReason); }

void frmMain::startRow(EditedSet set) {
  const bool article = set == EditedSet::Articoli;
  // What was just added may be none that the filter lets through.
  if (article && articles_->articles().currentRow() < 0) panel_->showAll();
  if (detailsHidden_ && article) articles_->editCell(ArticleModel::Title);
  if (detailsHidden_) return;
  page(article ? Tab::Articles : Tab::Departments).goTo(set, article ? "codice" : "titolo");
}

void frmMain::fieldsChanged(EditedSet set) {
  for (EditorPage* page : pages_) page->showFields(set);
  if (set == EditedSet::Articoli) articles_->articles().refresh();
  entriesChanged();  // what was typed may be what is stored
}

void frmMain::offerCommands(QWidget& list, Toolbar bar, QPoint at) {
  menus_->refresh();
  QMenu menu(this);
  for (const Command* command : workbench_.commands().table().buttonsOf(bar)) {
    if (command == nullptr) {
      menu.addSeparator();
    } else {
      menu.addAction(menus_->action(command->name));
    }
  }
  if (bar == Toolbar::Articles) {
    menu.addSeparator();
    menu.addMenu(&panel_->columnMenu());
    menu.addSeparator();
    for (const char* name :
         {"article.duplicate", "article.mark.novita", "article.mark.inelenco", "article.mark.fuoricatalogo"}) {
      menu.addAction(menus_->action(name));
    }
  }
  menu.setObjectName(QStringLiteral("menuElenco"));
  menu.exec(list.mapToGlobal(at));
}

void frmMain::showBuilt() {
  const std::string built = workbench_.buildStatus();
  if (built.empty()) return built_->clear();
  const bool all = !articles_->isUnsaved() &&
                   std::ranges::all_of(pages_, [](const EditorPage* page) { return !page->hasUnsaved(); });
  built_->setText((all ? tr("Tutto salvato") : tr("Non tutto è salvato")) + QStringLiteral(" - ") + toQt(built));
}

void frmMain::showStatus(const std::string& text) { status_->setText(toQt(text)); }
void frmMain::showTitle(const std::string& title) { setWindowTitle(toQt(title)); }

void frmMain::showBusy(bool busy) {
  if (busy && busy_++ == 0) QApplication::setOverrideCursor(Qt::WaitCursor);
  if (!busy && busy_ > 0 && --busy_ == 0) QApplication::restoreOverrideCursor();
}

void frmMain::showLanguages() {
  menus_->showLanguages();
  entriesChanged();
}

void frmMain::showListino(int listino) {
  for (EditorPage* page : pages_) page->showListino(listino);
}

void frmMain::hideDetails(bool hidden) {
  detailsHidden_ = hidden;
  showTab(workbench_.tab());
}

void frmMain::close() { QMainWindow::close(); }

void frmMain::closeEvent(QCloseEvent* event) {
  if (!workbench_.mayLeave()) return event->ignore();
  // The guide gives back the room that it took, before the geometry is stored.
  if (auto* guide = findChild<QDialog*>(QStringLiteral("frmIntro"))) guide->close();
  keepLayout();
  // A session that is open when the window goes was left by the user.
  if (workbench_.isOpen()) session_.compactOnExit = true;
  event->accept();
}

void frmMain::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  menus_->fit(*this);
}

void frmMain::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (!event->spontaneous()) {
    bringOnScreen(*this);
    whenFramed(*this, [this, shown = size()] {
      if (size() == shown) bringOnScreen(*this);
    });
  }
  if (!whenShown_) return;
  const auto action = std::exchange(whenShown_, nullptr);
  QTimer::singleShot(0, this, action);
}

}  // namespace kv
