#pragma once
// Hands for the main window: buttons pressed with the mouse, entries chosen through the open menus, and what the window
// then shows, as text.

#include <QAbstractButton>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>

#include "forms/window_fixture.h"
#include "platform/qt/frm_dialog.h"
#include "shell/workbench/commands/picture_commands.h"

namespace kv::test {

/// A caption without the mark of its key.
inline QString plain(QString text) { return text.remove(QLatin1Char('&')); }

/// The menus above an action, the one of the menu bar first; empty when no menu that is shown holds it.
inline std::vector<QMenu*> menusOf(const QMenuBar& bar, const QAction* action) {
  const std::function<bool(QMenu*, std::vector<QMenu*>&)> find = [&](QMenu* menu, std::vector<QMenu*>& path) {
    path.push_back(menu);
    for (const QAction* each : menu->actions()) {
      if (each == action || (each->menu() != nullptr && find(each->menu(), path))) return true;
    }
    path.pop_back();
    return false;
  };
  std::vector<QMenu*> path;
  for (const QAction* title : bar.actions()) {
    if (title->isVisible() && title->menu() != nullptr && find(title->menu(), path)) break;
  }
  return path;
}

/// Opens the menus down to the action and chooses it, as arrows and Enter do. False when it can't be chosen.
inline bool chooseInMenus(QMenuBar& bar, QAction* action) {
  const std::vector<QMenu*> path = menusOf(bar, action);
  if (path.empty()) return false;
  const bool offered = action->isEnabled();
  QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(path.front()->menuAction()).center());
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (!QTest::qWaitFor([&] { return path[i]->isVisible(); })) return false;
    QAction* next = i + 1 < path.size() ? path[i + 1]->menuAction() : action;
    path[i]->setActiveAction(next);
    QTest::keyClick(path[i], Qt::Key_Return);
  }
  // Enter on an entry that is off does nothing, so there is nothing to wait for.
  const auto isClosed = [&] { return !path.front()->isVisible(); };
  const bool closed = offered ? QTest::qWaitFor(isClosed) : isClosed();
  while (!closed && QApplication::activePopupWidget() != nullptr) QApplication::activePopupWidget()->close();
  QCoreApplication::processEvents();
  return closed;
}

/// Types characters that no key of the test library's keyboard makes.
inline void typeCharacters(QWidget& into, const QString& text) {
  for (const QChar character : text) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
    QApplication::sendEvent(&into, &press);
  }
}

class DrivenWindow : public WindowFixture {
 protected:
  /// The window wide enough for every button of a row.
  void openWide() {
    open();
    window->resize(1900, 1000);
    processEvents();
  }

  /// The buttons on the screen that run a command: of a row of buttons, of a picture, of a variant.
  std::vector<QAbstractButton*> buttonsOf(std::string_view name) {
    std::vector<QAbstractButton*> buttons;
    for (auto* each : window->findChildren<QToolButton*>()) {
      if (each->isVisible() && each->defaultAction() == window->menus().action(name)) buttons.push_back(each);
    }
    for (const Editor& editor : editorTable()) {
      const PictureCommandNames commands = pictureCommandNames(editor.set, editor.number);
      if (editor.control != Control::Picture || (commands.choose != name && commands.clear != name)) continue;
      const auto pair =
          window->page(editor.tab).binding(editor.set, editor.column)->field()->findChildren<QAbstractButton*>();
      QAbstractButton* button = pair.value(commands.choose == name ? 0 : 1);
      if (button != nullptr && button->isVisible()) buttons.push_back(button);
    }
    return buttons;
  }
  /// Presses a command's button with the mouse. False when it has none on the screen or it is off.
  bool press(std::string_view name) {
    const auto buttons = buttonsOf(name);
    if (buttons.empty() || !buttons.front()->isEnabled()) return false;
    QTest::mouseClick(buttons.front(), Qt::LeftButton);
    processEvents();
    return true;
  }
  /// Chooses a command in the open menus. False when it can't be chosen.
  bool choose(std::string_view name) { return chooseInMenus(*window->menuBar(), window->menus().action(name)); }
  /// The keyboard is in the window again, as after a menu or a dialog on a desktop; the screen in memory needs a word.
  void comeBack() {
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    processEvents();
  }
  QString entryText(std::string_view name) { return plain(window->menus().action(name)->text()); }
  bool isEntryOn(std::string_view name) { return window->menus().action(name)->isEnabled(); }

  void go(const std::string& ID) {
    window->tree().setCurrentIndex(window->tree().departments().indexOf(ID));
    processEvents();
  }
  void goTab(Tab tab) {
    QTest::mouseClick(&window->tabs(), Qt::LeftButton, {}, window->tabs().tabRect(static_cast<int>(tab)).center());
    processEvents();
  }
  /// The articles' tab, on an article of the department in use.
  void goArticle(int row) {
    goTab(Tab::Articles);
    const QModelIndex index = window->articles().articles().index(row, ArticleModel::Title);
    QTest::mouseClick(window->articles().viewport(), Qt::LeftButton, {}, window->articles().visualRect(index).center());
    processEvents();
  }
  /// The node of the tree that is selected.
  std::string selected() {
    const QModelIndexList rows = window->tree().selectionModel()->selectedIndexes();
    return rows.isEmpty() ? "" : window->tree().departments().keyOf(rows.front());
  }

  /// "Negozio(Vasi(Piccoli) Piatti)" as the tree shows it.
  std::string treeShown() {
    const DepartmentModel& model = window->tree().departments();
    const std::function<std::string(const QModelIndex&)> text = [&](const QModelIndex& node) {
      std::string inside;
      for (int row = 0; row < model.rowCount(node); ++row) {
        inside += (row > 0 ? " " : "") + text(model.index(row, 0, node));
      }
      return fromQt(node.data().toString()) + (inside.empty() ? "" : "(" + inside + ")");
    };
    return text(model.index(0, 0));
  }
  /// The titles of the article list, the current one in brackets.
  std::string listShown() {
    std::string text;
    for (int row = 0; row < window->articles().articles().rowCount(); ++row) {
      const bool current = window->articles().currentIndex().row() == row;
      std::string title = fromQt(cell(row, ArticleModel::Title));
      if (title.empty()) title = "-";
      if (current) title = "[" + title + "]";
      text += (row > 0 ? " " : "") + title;
    }
    return text;
  }
  /// The titles of the article list from top to bottom.
  std::string titlesShown() {
    std::string text;
    for (int row = 0; row < window->articles().articles().rowCount(); ++row) {
      text += (row > 0 ? " " : "") + fromQt(cell(row, ArticleModel::Title));
    }
    return text;
  }
  /// Rows of a query: fields parted by "|", rows by " ".
  std::string rows(const std::string& query) {
    auto statement = session.catalogue.prepare(query);
    if (!statement) return statement.error().what;
    std::string text;
    for (;;) {
      const auto row = statement->step();
      if (!row) return row.error().what;
      if (!*row) return text;
      if (!text.empty()) text += ' ';
      for (int i = 0; i < statement->columnCount(); ++i) {
        text += (i > 0 ? "|" : "") + std::string(statement->text(i));
      }
    }
  }
  /// Everything that undo answers for.
  std::string whole() {
    return rows("SELECT * FROM categorie ORDER BY contatore") + rows("SELECT * FROM articoli ORDER BY ID") +
           rows("SELECT * FROM generale");
  }
  /// Everything the window shows of it: tree, list, and the fields of all pages.
  std::string allShown() {
    processEvents();
    std::string text = treeShown() + "\n" + listShown() + "\n" + selected() + "\n";
    for (const Editor& editor : editorTable()) {
      const QWidget* field = window->page(editor.tab).binding(editor.set, editor.column)->field();
      text += std::string(editor.column) + "=";
      if (const auto* line = qobject_cast<const QLineEdit*>(field)) text += fromQt(line->text());
      if (const auto* list = qobject_cast<const QComboBox*>(field)) text += fromQt(list->currentText());
      if (const auto* memo = qobject_cast<const QPlainTextEdit*>(field)) text += fromQt(memo->toPlainText());
      if (const auto* check = qobject_cast<const QCheckBox*>(field)) text += check->isChecked() ? "1" : "0";
      for (const auto* label : field->findChildren<QLabel*>()) text += fromQt(label->text()) + " ";
      for (const auto* button : field->findChildren<QAbstractButton*>()) text += button->isEnabled() ? "+" : "-";
      text += '\n';
    }
    return text;
  }
};

}  // namespace kv::test
