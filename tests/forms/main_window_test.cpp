// The main window: menus, buttons, keys, tabs, tree and list, and what it remembers.

#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QSplitter>
#include <QToolBar>
#include <QToolButton>

#include "forms/window_fixture.h"
#include "platform/qt/frm_dialog.h"

namespace kv::test {
namespace {

class MainWindow : public WindowFixture {
 protected:
  QStringList visibleMenus() {
    QStringList names;
    for (QAction* action : window->menuBar()->actions()) {
      if (action->isVisible()) names.append(action->text().remove(QLatin1Char('&')));
    }
    return names;
  }
  static void collect(const QMenu& menu, QStringList& entries) {
    for (QAction* action : menu.actions()) {
      if (action->menu() != nullptr) {
        collect(*action->menu(), entries);
      } else if (!action->isSeparator() && action->isVisible()) {
        entries.append(action->text().remove(QLatin1Char('&')));
      }
    }
  }
  QStringList entriesOf(const QString& title) {
    QStringList entries;
    for (QAction* action : window->menuBar()->actions()) {
      if (action->isVisible() && action->text().remove(QLatin1Char('&')) == title) collect(*action->menu(), entries);
    }
    return entries;
  }
  bool dropOn(const std::string& key, const std::string& target) {
    DepartmentModel& model = window->tree().departments();
    const std::unique_ptr<QMimeData> data(model.mimeData({model.indexOf(key)}));
    const QModelIndex onto = model.indexOf(target);
    if (!model.canDropMimeData(data.get(), Qt::MoveAction, -1, -1, onto)) return false;
    model.dropMimeData(data.get(), Qt::MoveAction, -1, -1, onto);
    processEvents();
    return true;
  }
};

TEST_F(MainWindow, ShowsTheMenusOfTheTableInTheirOrder) {
  open();
  EXPECT_EQ(visibleMenus(), QStringList({"File", "Modifica", "Visualizza", "?"}));
  EXPECT_EQ(entriesOf("Modifica"), QStringList({"Annulla",
                                                "Ripeti",
                                                "Cronologia...",
                                                "Su",
                                                "Giu",
                                                "Prima",
                                                "Dopo",
                                                "Sottoreparto",
                                                "Copia",
                                                "Incolla",
                                                "Elimina",
                                                "Imposta immagine",
                                                "Elimina immagine",
                                                "Imposta immagine pulsante",
                                                "Elimina immagine pulsante",
                                                "normale",
                                                "piccolo",
                                                "normale",
                                                "piccolo",
                                                "Modifica prezzi...",
                                                "Foglio articoli..."}));
}

TEST_F(MainWindow, EachTabHasItsOwnEditMenu) {
  open();
  window->workbench().selectTab(Tab::Site);
  processEvents();
  EXPECT_EQ(visibleMenus().count("Modifica"), 1);
  EXPECT_TRUE(entriesOf("Modifica").contains("Spese di spedizione..."));
  window->workbench().selectTab(Tab::Internet);
  processEvents();
  EXPECT_TRUE(entriesOf("Modifica").contains("Cartella FTP del negozio..."));
  EXPECT_FALSE(entriesOf("Modifica").contains("Spese di spedizione..."));
}

TEST_F(MainWindow, EveryEntryOfTheTableHasAnActionThatFollowsItsState) {
  open();
  const WorkbenchCommands& commands = window->workbench().commands();
  for (int menu = 0; menu < menuCount; ++menu) {
    for (const MenuItem& item : commands.table().entriesOf(static_cast<Menu>(menu))) {
      if (item.command == nullptr) continue;
      const QAction* action = window->menus().action(item.command->name);
      ASSERT_NE(action, nullptr) << item.command->name;
      const EntryState state = commands.stateOf(*item.command, item.place);
      EXPECT_EQ(action->isEnabled(), state.enabled && state.visible) << item.command->name;
      EXPECT_EQ(action->isVisible(), state.visible) << item.command->name;
      EXPECT_EQ(action->shortcut(), QKeySequence(toQt(item.command->shortcut))) << item.command->name;
    }
  }
}

TEST_F(MainWindow, EveryCaptionOfTheTableIsAButton) {
  open();
  QSet<QString> captions;
  for (const QToolBar* bar : window->findChildren<QToolBar*>()) {
    for (const QAction* action : bar->actions()) captions.insert(action->iconText());
  }
  const CommandTable& table = window->workbench().commands().table();
  for (const int number : {50, 51, 52, 17, 15, 14, 20, 12, 11, 13, 7, 0, 2, 3, 4, 5, 6, 21}) {
    EXPECT_TRUE(captions.contains(toQt(table.numbered(number)->caption))) << number;
  }
}

TEST_F(MainWindow, TheKeysChangeTheTab) {
  open();
  window->tree().setFocus();
  const std::array<std::pair<Qt::Key, Tab>, 4> keys{
      {{Qt::Key_2, Tab::Articles}, {Qt::Key_3, Tab::Site}, {Qt::Key_4, Tab::Internet}, {Qt::Key_1, Tab::Departments}}};
  for (const auto& [digit, tab] : keys) {
    key(digit, Qt::AltModifier);
    EXPECT_EQ(window->workbench().tab(), tab);
    EXPECT_EQ(window->tabs().currentIndex(), static_cast<int>(tab));
    const bool lists = tab == Tab::Departments || tab == Tab::Articles;
    EXPECT_EQ(window->tree().isVisible(), lists);
    EXPECT_EQ(window->articles().isVisible(), tab == Tab::Articles);
  }
}

TEST_F(MainWindow, TheSameKeyAddsToTheListOfItsTab) {
  open();
  window->tree().setFocus();
  key(Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "4");
  window->workbench().goToDepartment("cat001");
  goArticles();
  window->articles().setFocus();
  key(Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "4");
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM articoli"), "5");
}

TEST_F(MainWindow, DeleteInTheListAsksAndDeletes) {
  open();
  goArticles();
  window->articles().setFocus();
  user.answers = {Answer::Yes};
  key(Qt::Key_Delete);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(cell(0, ArticleModel::Title), "Brina");
  EXPECT_EQ(window->articles().currentIndex().row(), 0);
}

TEST_F(MainWindow, DeleteInAFieldDeletesACharacter) {
  open();
  goArticles();
  QLineEdit& title = line(EditedSet::Articoli, "titolo");
  title.setFocus();
  title.setCursorPosition(0);
  key(Qt::Key_Delete);
  EXPECT_EQ(title.text(), "lba");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(MainWindow, F2GoesToTheTitleButInTheListWhichEditsItsCell) {
  open();
  window->tree().setFocus();
  key(Qt::Key_F2);
  EXPECT_EQ(QApplication::focusWidget(), &line(EditedSet::Categorie, "titolo"));
  goArticles();
  window->tree().setFocus();
  key(Qt::Key_F2);
  EXPECT_EQ(QApplication::focusWidget(), &line(EditedSet::Articoli, "titolo"));
  EXPECT_EQ(line(EditedSet::Articoli, "titolo").selectedText(), "Alba");
}

TEST_F(MainWindow, F1OpensTheHelpOfTheTab) {
  open();
  window->tree().setFocus();
  key(Qt::Key_F1);
  ASSERT_EQ(opened.size(), 1U);
  EXPECT_EQ(opened[0], application + "/help/pagine/reparti.htm");
}

TEST_F(MainWindow, UndoAndRedoByTheirKeys) {
  open();
  window->tree().setFocus();
  key(Qt::Key_I, Qt::ControlModifier);
  EXPECT_EQ(window->menus().action("undo")->text().remove(QLatin1Char('&')), "Annulla: Aggiungi reparto");
  window->tree().setFocus();
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "3");
  window->tree().setFocus();
  key(Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM categorie"), "4");
}

TEST_F(MainWindow, TheTreeShowsTheShopAboveItsDepartments) {
  open();
  const DepartmentModel& model = window->tree().departments();
  const QModelIndex shopNode = model.index(0, 0);
  EXPECT_EQ(shopNode.data().toString(), "Negozio");
  EXPECT_EQ(model.rowCount(shopNode), 2);
  EXPECT_EQ(model.index(0, 0, model.index(0, 0, shopNode)).data().toString(), "Piccoli");
  EXPECT_FALSE(model.flags(shopNode) & Qt::ItemIsDragEnabled);
}

TEST_F(MainWindow, ADropHangsTheDepartmentUnderAnother) {
  open();
  EXPECT_TRUE(dropOn("cat003", "cat002"));
  EXPECT_EQ(scalar("SELECT genitore FROM categorie WHERE ID = 'cat003'"), "cat002");
  EXPECT_EQ(window->tree().departments().keyOf(window->tree().currentIndex()), "cat003");
  EXPECT_TRUE(dropOn("cat003", "###"));
  EXPECT_EQ(scalar("SELECT genitore FROM categorie WHERE ID = 'cat003'"), "###");
}

TEST_F(MainWindow, ADropOnItsOwnDescendantIsNotTaken) {
  open();
  EXPECT_FALSE(dropOn("cat001", "cat002"));
  EXPECT_FALSE(dropOn("cat001", "cat001"));
}

TEST_F(MainWindow, WhatIsExpandedStaysSoOverARebuild) {
  open();
  DepartmentView& tree = window->tree();
  EXPECT_FALSE(tree.isExpanded(tree.departments().indexOf("cat001")));
  tree.expand(tree.departments().indexOf("cat001"));
  window->menus().action("department.insertAfter")->trigger();
  processEvents();
  EXPECT_TRUE(tree.isExpanded(tree.departments().indexOf("cat001")));
  window->menus().action("tree.collapse")->trigger();
  EXPECT_FALSE(tree.isExpanded(tree.departments().indexOf("cat001")));
  EXPECT_TRUE(tree.isExpanded(tree.departments().indexOf("###")));
  window->menus().action("tree.expand")->trigger();
  EXPECT_TRUE(tree.isExpanded(tree.departments().indexOf("cat001")));
}

TEST_F(MainWindow, ANodeOfTheTreeIsTheCurrentDepartment) {
  open();
  DepartmentView& tree = window->tree();
  tree.setCurrentIndex(tree.departments().indexOf("cat003"));
  EXPECT_EQ(window->workbench().sets().department(), "cat003");
  EXPECT_EQ(line(EditedSet::Categorie, "titolo").text(), "Piatti");
  tree.setCurrentIndex(tree.departments().indexOf("###"));
  EXPECT_FALSE(window->workbench().sets().onDepartment());
  EXPECT_FALSE(line(EditedSet::Categorie, "titolo").isEnabled());
}

TEST_F(MainWindow, ARowOfTheListIsTheCurrentArticle) {
  open();
  goArticles();
  EXPECT_EQ(window->articles().articles().rowCount(), 3);
  EXPECT_EQ(cell(0, ArticleModel::Code), "A1");
  EXPECT_EQ(cell(0, ArticleModel::Price), "14,5");
  window->articles().setFocus();
  key(Qt::Key_Down);
  EXPECT_EQ(line(EditedSet::Articoli, "titolo").text(), "Brina");
}

TEST_F(MainWindow, TheListShowsThePricesOfThePriceListBeingEdited) {
  run(shop, "UPDATE articoli SET prezzo3 = 77000 WHERE ID = 1");
  open();
  goArticles();
  auto* strip = window->page(Tab::Articles).findChild<QTabBar*>(QStringLiteral("tabListino"));
  ASSERT_NE(strip, nullptr);
  EXPECT_EQ(strip->count(), 10);
  strip->setCurrentIndex(3);
  EXPECT_EQ(cell(0, ArticleModel::Price), "7,7");
  EXPECT_EQ(line(EditedSet::Articoli, "prezzo").text(), "7,7");
  auto* other = window->page(Tab::Departments).findChild<QTabBar*>(QStringLiteral("tabListino"));
  EXPECT_EQ(other->currentIndex(), 3);
}

TEST_F(MainWindow, TheLanguageIsChangedByKeyAndByItsButton) {
  open();
  window->tree().setFocus();
  key(Qt::Key_2, Qt::ControlModifier);
  EXPECT_EQ(session.currentLanguage, 2);
  EXPECT_EQ(treeText("cat001"), "Pots");
  auto* button = window->findChild<QToolButton*>(QStringLiteral("cboLingua"));
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(button->text(), "inglese");
  ASSERT_FALSE(button->menu()->actions().isEmpty());
  button->menu()->actions().front()->trigger();
  processEvents();
  EXPECT_EQ(session.currentLanguage, 1);
  EXPECT_EQ(button->text(), "italiano");
  EXPECT_TRUE(button->menu()->actions().front()->isChecked());
}

TEST_F(MainWindow, HidingTheDetailsLeavesTheLists) {
  open();
  window->tree().setFocus();
  key(Qt::Key_D, Qt::ControlModifier);
  EXPECT_FALSE(window->page(Tab::Departments).isVisible());
  EXPECT_TRUE(window->tree().isVisible());
  window->workbench().selectTab(Tab::Site);
  EXPECT_TRUE(window->page(Tab::Site).isVisible());
}

TEST_F(MainWindow, ClosingSavesWhatIsTypedAndRemembersItsPosition) {
  open();
  window->resize(1010, 700);
  type(line(EditedSet::Categorie, "titolo"), "Orci");
  window->close();
  EXPECT_EQ(scalar("SELECT titolo FROM categorie WHERE ID = 'cat001'"), "Orci");
  EXPECT_TRUE(session.compactOnExit);
  EXPECT_FALSE(settings.get("Finestra", "geometria").empty());
  frmMain again(session, env, portsWithCommands());
  again.restoreLayout();
  EXPECT_EQ(again.size(), QSize(1010, 700));
}

TEST_F(MainWindow, TheGuideLightsFieldsAndButtonsAndPutsThemOut) {
  open();
  window->AttivaTextBox("hostname", "kInternet");
  window->AttivaTextBox("username", "kInternet");
  EXPECT_EQ(window->workbench().tab(), Tab::Internet);
  QLineEdit& host = line(EditedSet::Generale, "hostname");
  const QColor lit = host.palette().color(QPalette::Base);
  EXPECT_NE(lit, window->palette().color(QPalette::Base));
  window->AttivaTasto(14, "kReparti");
  EXPECT_EQ(window->workbench().tab(), Tab::Departments);
  window->DisattivaTextBox();
  EXPECT_NE(host.palette().color(QPalette::Base), lit);
}

TEST_F(MainWindow, TheGuideFindsADepartment) {
  open();
  window->workbench().goToDepartment("###");
  EXPECT_FALSE(window->onDepartment());
  showIntroStep(0, *window);
  EXPECT_TRUE(window->onDepartment());
  EXPECT_EQ(window->workbench().sets().department(), "cat001");
}

}  // namespace
}  // namespace kv::test
