#pragma once
// The main window wired to the dialogs of the program, over the model shop and the data that come with it.

#include <QDeadlineTimer>
#include <QMessageBox>
#include <QTimer>
#include <chrono>
#include <memory>

#include "forms/dialog_fixture.h"
#include "forms/driven_window.h"
#include "shell/program/frm_program.h"
#include "shell/window/frm_main.h"
#include "store/shop/session_start.h"

namespace kv::test {

class WiredWindow : public DialogFixture {
 protected:
  WiredWindow() {
    const std::string data = KORVANE_APP_DATA;
    for (const char* folder : {"code", "backoffice", "help", "new"}) {
      const auto copied = copyTree(data + "/" + folder, application + "/" + folder);
      EXPECT_TRUE(copied) << copied.error().what;
    }
    EXPECT_TRUE(writeBytes(application + "/serverpath.net", shop + "\r\n"));
  }
  ~WiredWindow() override {
    closeSession(session, env);
    window.reset();
  }

  /// Each test fills the shop first, then opens the window.
  void SetUp() override {}

  void fill(const std::string& sql) {
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue);
    const auto done = catalogue->execute(sql);
    ASSERT_TRUE(done) << done.error().what;
  }

  void openWindow() {
    WorkbenchPorts ports;
    ports.commands = allCommands();
    ports.open = [this](const std::string& file, const std::string&) {
      opened.push_back(file);
      return openedWell;
    };
    window = std::make_unique<frmMain>(session, env, std::move(ports));
    Workbench& workbench = window->workbench();
    wireSession(*window, session, env);
    ASSERT_EQ(startSession(session, env), LoadResult::Opened);
    workbench.showShop();
    window->resize(1900, 1000);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    processEvents();
  }
  static void processEvents() { QCoreApplication::processEvents(); }
  bool choose(std::string_view name) { return chooseInMenus(*window->menuBar(), window->menus().action(name)); }
  void run(std::string_view name) {
    for (auto* each : window->findChildren<QToolButton*>()) {
      if (!each->isVisible() || each->defaultAction() != window->menus().action(name)) continue;
      QTest::mouseClick(each, Qt::LeftButton);
      processEvents();
      return;
    }
    ADD_FAILURE() << "no button of command " << name;
  }
  void goTab(Tab tab) {
    QTest::mouseClick(&window->tabs(), Qt::LeftButton, {}, window->tabs().tabRect(static_cast<int>(tab)).center());
    processEvents();
  }
  /// Acts in the dialog of this title once it is modal and has the focus. Whatever else is modal for minutes is closed,
  /// so that the test ends.
  void whenShown(const QString& title, std::function<void(QWidget&)> act) {
    auto* poll = new QTimer(window.get());
    const QDeadlineTimer end(longestWait);
    QObject::connect(poll, &QTimer::timeout, window.get(), [poll, title, end, act = std::move(act)] {
      QWidget* modal = QApplication::activeModalWidget();
      if (modal == nullptr) return;
      const bool isIt = modal->windowTitle() == title;
      if (!isIt && !end.hasExpired()) return;
      // A menu that closes late may have given the focus back to the main window.
      if (isIt && !modal->isActiveWindow()) return modal->activateWindow();
      poll->stop();
      poll->deleteLater();
      if (isIt) return act(*modal);
      ADD_FAILURE() << "waited for '" << fromQt(title) << "', and was shown '" << fromQt(modal->windowTitle()) << "'";
      modal->close();
    });
    poll->start(2);
  }
  /// Presses OK in the box that ends a build, and keeps what it says.
  void whenFinished(std::string& said) {
    auto* poll = new QTimer(window.get());
    QObject::connect(poll, &QTimer::timeout, window.get(), [poll, &said] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return;
      poll->stop();
      poll->deleteLater();
      said = fromQt(box->text());
      EXPECT_EQ(box->icon(), QMessageBox::Information);
      EXPECT_EQ(defaultButton(*box), "OK");
      QTest::keyClick(box, Qt::Key_Return);
    });
    poll->start(2);
  }
  /// The lines of the tree from the root to the node in use: "Negozio/Vasi/Piccoli".
  std::string path() {
    std::string text;
    for (QModelIndex node = window->tree().currentIndex(); node.isValid(); node = node.parent()) {
      text = fromQt(node.data().toString()) + (text.empty() ? "" : "/") + text;
    }
    return text;
  }

  static constexpr std::chrono::minutes longestWait{5};
  std::vector<std::string> opened;
  std::unique_ptr<frmMain> window;
};

}  // namespace kv::test
