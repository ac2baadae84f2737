// The choice of the working folders in its window.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLineEdit>

#include "dialog_fixture.h"
#include "shell/dialogs/frm_browse.h"

namespace kv {
namespace {

using test::click;
using test::control;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TheFoldersDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    other = root / "altra";
    ASSERT_TRUE(createFolder(other));
    dialog.emplace(session, env);
    show(*dialog);
    online = control<QLineEdit>(*dialog, "txtOnline");
    scripts = control<QLineEdit>(*dialog, "txtScript");
  }

  std::string other;
  std::optional<frmBrowse> dialog;
  QLineEdit* online = nullptr;
  QLineEdit* scripts = nullptr;
};

TEST_F(TheFoldersDialog, ShowsTheFoldersInUse) {
  EXPECT_EQ(dialog->windowTitle(), "Korvane - Selezione cartelle");
  EXPECT_EQ(fromQt(online->text()), shop + "/online");
  EXPECT_EQ(fromQt(scripts->text()), shop + "/scripts");
  EXPECT_EQ(test::defaultButton(*dialog), "OK");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  test::keepPicture(*dialog, "browse");
}

TEST_F(TheFoldersDialog, BrowsingStartsInTheFolderShownAndItsResultIsStored) {
  user.folders = {other};
  click(*dialog, "cmdSfogliaScript");
  EXPECT_EQ(user.foldersAsked.at(0).initial, shop + "/scripts");
  EXPECT_EQ(fromQt(scripts->text()), other);
  QTest::keyClick(&*dialog, Qt::Key_Return);
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(stored("sitescript"), other);
  EXPECT_EQ(stored("siteonline"), "");
}

TEST_F(TheFoldersDialog, ABrowseThatIsCancelledChangesNothing) {
  click(*dialog, "cmdSfogliaOnline");
  EXPECT_EQ(fromQt(online->text()), shop + "/online");
}

TEST_F(TheFoldersDialog, ResetGoesBackInsideTheShop) {
  user.folders = {other};
  click(*dialog, "cmdSfogliaOnline");
  click(*dialog, "cmdResetOnline");
  EXPECT_EQ(fromQt(online->text()), shop + "/online");
  click(*dialog, "cmdOK");
  EXPECT_EQ(stored("siteonline"), "");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(TheFoldersDialog, ATypedPathIsJudgedAndTheOtherFieldStored) {
  online->selectAll();
  QTest::keyClicks(online, "/");
  user.folders = {other};
  click(*dialog, "cmdSfogliaScript");
  click(*dialog, "cmdOK");
  EXPECT_THAT(user.texts(), ElementsAre("La cartella '/' è la root di un disco: l'impostazione non sarà salvata"));
  EXPECT_EQ(session.onlineFolder, shop + "/online");
  EXPECT_EQ(session.scriptFolder, other);
}

TEST_F(TheFoldersDialog, EscapeStoresNothing) {
  user.folders = {other};
  click(*dialog, "cmdSfogliaOnline");
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(stored("siteonline"), "");
  EXPECT_EQ(session.onlineFolder, shop + "/online");
}

}  // namespace
}  // namespace kv
