#pragma once
// The real main window over a small shop, driven by keys.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTest>
#include <memory>

#include "shell/window/fields/frm_field.h"
#include "shell/window/frm_main.h"
#include "shell/workbench_fixture.h"

namespace kv::test {

/// Ports that run the program's commands and reach nothing outside.
inline WorkbenchPorts portsWithCommands() {
  WorkbenchPorts ports;
  ports.commands = allCommands();
  return ports;
}

class WindowFixture : public ShopFixture, protected RememberedDialogs {
 protected:
  WindowFixture() {
    shop = makeShop("negozio");
    run(shop, threeDepartments);
    write(application + "/serverpath.net", shop + "\r\n");
    WorkbenchPorts ports = portsWithCommands();
    ports.open = [this](const std::string& file, const std::string&) {
      opened.push_back(file);
      return openedWell;
    };
    window = std::make_unique<frmMain>(session, env, std::move(ports));
    leaveDailyDialogs();
    env.hooks.bind = [this](Session&) { window->workbench().bindSession(); };
    env.hooks.release = [this](Session&) { window->workbench().releaseSession(); };
  }
  ~WindowFixture() override {
    closeSession(session, env);
    window.reset();
  }

  WorkbenchDialogs& dialogs() override { return window->workbench().ports().dialogs; }
  /// Lets the entries of the menus follow a change of the dialogs that are there.
  void refreshEntries() {
    window->entriesChanged();
    processEvents();
  }

  void open() {
    ASSERT_EQ(startSession(session, env), LoadResult::Opened);
    window->workbench().showShop();
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    processEvents();
  }
  static void processEvents() { QCoreApplication::processEvents(); }

  template <class Widget>
  Widget& field(EditedSet set, std::string_view column) {
    const Editor* editor = editorOf(set, column);
    EditorBinding* binding = window->page(editor->tab).binding(set, column);
    return *qobject_cast<Widget*>(binding->field());
  }
  QLineEdit& line(EditedSet set, std::string_view column) { return field<QLineEdit>(set, column); }
  /// Goes to the field and types over what it holds.
  void type(QLineEdit& into, const QString& text) {
    into.setFocus();
    into.selectAll();
    QTest::keyClicks(&into, text);
  }
  void leave(QWidget& left) {
    QTest::keyClick(&left, Qt::Key_Tab);
    processEvents();
  }
  void key(Qt::Key which, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* target = QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : window.get();
    QTest::keyClick(target, which, modifiers);
    processEvents();
  }
  void goArticles() {
    window->workbench().selectTab(Tab::Articles);
    window->workbench().goToArticleAt(0);
    processEvents();
  }
  std::string scalar(const std::string& query) {
    const auto value = session.catalogue.scalar(query);
    return value ? asText(*value) : value.error().what;
  }
  QString treeText(const std::string& ID) {
    return window->tree().departments().indexOf(ID).data(Qt::DisplayRole).toString();
  }
  QString cell(int row, int column) {
    return window->articles().articles().index(row, column).data(Qt::DisplayRole).toString();
  }

  std::string shop;
  std::vector<std::string> opened;
  std::unique_ptr<frmMain> window;
};

}  // namespace kv::test
