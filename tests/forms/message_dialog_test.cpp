// What the user port of the windows shows: boxes with their buttons and defaults, the folder choice, progress and
// cancelling.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>

#include "dialog_fixture.h"
#include "platform/qt/frm_user.h"

namespace kv {
namespace {

using test::defaultButton;
using test::whenModal;

QMessageBox& boxOf(QWidget& window) {
  auto* box = qobject_cast<QMessageBox*>(&window);
  EXPECT_NE(box, nullptr);
  return *box;
}

TEST(MessageBox, ShowsTextAndIconAsTheyAreGiven) {
  QtUser user;
  whenModal([](QWidget& window) {
    const QMessageBox& box = boxOf(window);
    EXPECT_EQ(fromQt(box.text()), "Il tag <<5-x>> è <b>vuoto</b>\nRiga");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    EXPECT_EQ(defaultButton(box), "OK");
    EXPECT_EQ(box.buttons().size(), 1);
    QTest::keyClick(&window, Qt::Key_Return);
  });
  user.message("Il tag <<5-x>> è <b>vuoto</b>\nRiga", Icon::Exclamation);
}

TEST(FormDialog, OverBusyWorkThePointerIsTheUsualOneUntilTheDialogGoes) {
  const WaitCursor busy;
  Qt::CursorShape during = Qt::WaitCursor;
  whenModal([&](QWidget& window) {
    during = QApplication::overrideCursor()->shape();
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  FormDialog("Prova", nullptr).exec();
  EXPECT_EQ(during, Qt::ArrowCursor);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
}

TEST(MessageBox, EveryIconHasItsPicture) {
  QtUser user;
  const std::vector<std::pair<Icon, QMessageBox::Icon>> icons{{Icon::None, QMessageBox::NoIcon},
                                                              {Icon::Information, QMessageBox::Information},
                                                              {Icon::Question, QMessageBox::Question},
                                                              {Icon::Critical, QMessageBox::Critical}};
  for (const auto& [given, wanted] : icons) {
    whenModal([wanted = wanted](QWidget& window) {
      EXPECT_EQ(boxOf(window).icon(), wanted);
      QTest::keyClick(&window, Qt::Key_Escape);
    });
    user.message("x", given);
  }
}

/// The answer when a key is pressed in the box, with the default button that it had.
std::pair<Answer, std::string> ask(Buttons buttons, Answer preset, Qt::Key key) {
  QtUser user;
  std::string pressed;
  whenModal([&](QWidget& window) {
    pressed = defaultButton(window);
    QTest::keyClick(&window, key);
  });
  const Answer answer = user.question({"Procedere?", buttons, preset, Icon::Question});
  return {answer, pressed};
}

TEST(Question, EnterGivesThePresetAnswer) {
  EXPECT_EQ(ask(Buttons::YesNo, Answer::No, Qt::Key_Return), (std::pair{Answer::No, std::string("No")}));
  EXPECT_EQ(ask(Buttons::YesNo, Answer::Yes, Qt::Key_Return), (std::pair{Answer::Yes, std::string("Sì")}));
  EXPECT_EQ(ask(Buttons::OkCancel, Answer::Ok, Qt::Key_Return), (std::pair{Answer::Ok, std::string("OK")}));
  EXPECT_EQ(ask(Buttons::OkCancel, Answer::Cancel, Qt::Key_Return),
            (std::pair{Answer::Cancel, std::string("Annulla")}));
}

TEST(Question, EscapeRefusesWhateverIsPreset) {
  EXPECT_EQ(ask(Buttons::YesNo, Answer::Yes, Qt::Key_Escape).first, Answer::No);
  EXPECT_EQ(ask(Buttons::OkCancel, Answer::Ok, Qt::Key_Escape).first, Answer::Cancel);
}

TEST(Question, ShowsTheUsualPointerOverABusyWindow) {
  QtUser user;
  const WaitCursor busy;
  whenModal([](QWidget& window) {
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  user.message("x", Icon::None);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
}

TEST(FolderChoice, ReturnsTheFolderChosen) {
  const test::TempFolder root;
  ASSERT_TRUE(createFolder(root / "altra"));
  QtUser user;
  whenModal([&root](QWidget& window) {
    auto* dialog = qobject_cast<QFileDialog*>(&window);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(fromQt(dialog->windowTitle()), "Scegliere:");
    EXPECT_EQ(fromQt(dialog->directory().absolutePath()), root.path());
    dialog->selectFile("altra");
    QMetaObject::invokeMethod(dialog, "accept");
  });
  EXPECT_EQ(user.chooseFolder("Scegliere:", root.path()), root / "altra");
}

TEST(FolderChoice, IsEmptyWhenCancelled) {
  QtUser user;
  whenModal([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  EXPECT_EQ(user.chooseFolder("Scegliere:", "/"), "");
}

TEST(ProgressOfAUser, GoesToTheTargetOfTheRun) {
  QtUser user;
  std::string shown;
  user.beginRun([&shown](const Progress& progress) { shown = progress.caption; });
  user.progress({"Lingua 1", 3, 10});
  EXPECT_EQ(shown, "Lingua 1");
  EXPECT_TRUE(user.yield());
  user.cancelRun();
  EXPECT_FALSE(user.yield());
  user.endRun();
  EXPECT_TRUE(user.yield()) << "the next run is another";
  user.beginRun({});
  EXPECT_TRUE(user.yield());
  user.endRun();
}

TEST(ProgressOfAUser, OutsideARunIsASmallWindowUntilTheCaptionIsEmpty) {
  const auto shown = [] {
    std::string texts;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
      const auto* label = window->findChild<QLabel*>("lblStato");
      if (window->isVisible() && label != nullptr) texts += fromQt(label->text());
    }
    return texts;
  };
  QtUser user;
  user.progress({"Compattazione del database...", 0, 1});
  EXPECT_EQ(shown(), "Compattazione del database...");
  user.progress({"", 0, 0});
  EXPECT_EQ(shown(), "");
}

}  // namespace
}  // namespace kv
