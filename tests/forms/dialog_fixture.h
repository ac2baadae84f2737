#pragma once
// The model shop that comes with the program, opened, and hands to use a dialog with.

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <string>

#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "platform/qt/frm_dialog.h"
#include "store/shop/load_shop.h"
#include "support/fixed_clock.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {

/// The control of a window by its name; the test fails without it.
template <class Control>
Control* control(const QWidget& window, const char* name) {
  auto* found = window.findChild<Control*>(QString::fromUtf8(name));
  EXPECT_NE(found, nullptr) << name;
  return found;
}

inline void click(const QWidget& window, const char* name) {
  QTest::mouseClick(control<QAbstractButton>(window, name), Qt::LeftButton);
}

/// The caption of the button that Enter presses from a field, without its key mark.
inline std::string defaultButton(const QWidget& window) {
  for (const QPushButton* button : window.findChildren<QPushButton*>()) {
    if (button->isDefault()) return fromQt(button->text().remove(QLatin1Char('&')));
  }
  return {};
}

/// Names of the controls that can have the focus but have nothing to be called by.
inline std::string namelessControls(const QWidget& window) {
  std::string names;
  for (const QWidget* one : window.findChildren<QWidget*>()) {
    if ((one->focusPolicy() & Qt::TabFocus) == 0) continue;
    if (one->objectName().startsWith(QStringLiteral("qt_")) || qobject_cast<const QComboBox*>(one->parent())) continue;
    const auto* button = qobject_cast<const QAbstractButton*>(one);
    if (!one->accessibleName().isEmpty() || (button != nullptr && !button->text().isEmpty())) continue;
    names += fromQt(QString::fromUtf8(one->metaObject()->className()) + " '" + one->objectName() + "' ");
  }
  return names;
}

/// Runs `act` on the window that is modal once the events come round.
inline void whenModal(std::function<void(QWidget&)> act) {
  QTimer::singleShot(0, qApp, [act = std::move(act)] {
    QWidget* modal = QApplication::activeModalWidget();
    ASSERT_NE(modal, nullptr);
    act(*modal);
  });
}

/// Writes the picture of a window into the folder that KORVANE_PICTURES names, when it names one.
inline void keepPicture(QWidget& window, const std::string& name) {
  const QByteArray folder = qgetenv("KORVANE_PICTURES");
  if (folder.isEmpty()) return;
  QApplication::processEvents();
  window.grab().save(QString::fromUtf8(folder) + "/" + toQt(name) + ".png");
}

class DialogFixture : public ::testing::Test {
 protected:
  DialogFixture()
      : application(root / "app"), shop(root / "negozio"), env{user, settings, clock, random, application, {}} {
    const std::string data = KORVANE_APP_DATA;
    for (const char* folder : {"template", "languages"}) {
      const auto copied = copyTree(data + "/" + folder, application + "/" + folder);
      EXPECT_TRUE(copied) << copied.error().what;
    }
    for (const char* folder : {"work", "online", "scripts", "db"}) EXPECT_TRUE(createFolders(shop + "/" + folder));
    for (const char* name : {"catalog.mdb", "kvftp.mdb", "source.new", "new.mdb"}) {
      EXPECT_TRUE(copyFile(data + "/" + name, shop + "/" + name));
    }
  }

  void SetUp() override { open(); }

  void open() {
    session.ShopFolder = shop;
    ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
    ASSERT_TRUE(user.shown.empty()) << asText(user.shown.front());
  }

  /// Shows a dialog as exec() does, without waiting for its end.
  static void show(FormDialog& dialog) {
    dialog.setModal(true);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    QApplication::processEvents();
  }
  /// Escape leaves, with nothing returned.
  static void expectEscapeLeaves(FormDialog& dialog) {
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.tag(), "");
  }

  std::string stored(const std::string& column, const std::string& table = "generale") {
    const auto value = session.catalogue.scalar("SELECT " + column + " FROM " + table);
    return value ? asText(*value) : "failed: " + value.error().what;
  }

  TempFolder root;
  std::string application, shop;
  ScriptedUser user;
  MemorySettings settings;
  FixedClock clock;
  FixedRandom random;
  Session session;
  Environment env;
};

}  // namespace kv::test
