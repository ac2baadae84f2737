// The choice of a dated copy in its window.
#include <gtest/gtest.h>

#include <set>

#include <QTableWidget>

#include "dialog_fixture.h"
#include "shell/dialogs/frm_backup.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheBackupDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    for (const char* name : {"catalog-20260712T071500Z.mdb", "catalog-20260713T081500Z.mdb"}) {
      ASSERT_TRUE(createFolders(shop + "/backup"));
      ASSERT_TRUE(copyFile(shop + "/catalog.mdb", shop + "/backup/" + name));
    }
  }
};

TEST_F(TheBackupDialog, CopiesOfTheSameMinuteAndSecondCanBeToldApart) {
  for (const char* name : {"catalog-20260713T081530Z.mdb", "catalog-20260713T081530Z-2.mdb"}) {
    ASSERT_TRUE(copyFile(shop + "/catalog.mdb", shop + "/backup/" + name));
  }
  frmBackup dialog(shop, env);
  show(dialog);
  const auto* list = control<QTableWidget>(dialog, "lstCopie");
  std::set<std::string> times;
  for (int row = 0; row < list->rowCount(); ++row) times.insert(fromQt(list->item(row, 0)->text()));
  EXPECT_EQ(times.size(), 4U);
  EXPECT_TRUE(times.contains(formatTime(1783930530) + ":30 (2)"));
}

TEST_F(TheBackupDialog, ListsTheNewestFirst) {
  frmBackup dialog(shop, env);
  show(dialog);
  const auto* list = control<QTableWidget>(dialog, "lstCopie");
  ASSERT_EQ(list->rowCount(), 2);
  EXPECT_EQ(fromQt(list->item(0, 0)->text()), formatTime(1783930500) + ":00");
  EXPECT_EQ(fromQt(list->item(1, 0)->text()), formatTime(1783840500) + ":00");
  EXPECT_EQ(list->currentRow(), 0);
  EXPECT_EQ(test::defaultButton(dialog), "Ripristina");
  EXPECT_EQ(test::namelessControls(dialog), "");
  test::keepPicture(dialog, "backup");
}

TEST_F(TheBackupDialog, AsksWithNoAsTheDefaultAndReturnsTheName) {
  frmBackup dialog(shop, env);
  show(dialog);
  control<QTableWidget>(dialog, "lstCopie")->selectRow(1);
  user.answers = {Answer::No};
  click(dialog, "cmdRipristina");
  EXPECT_TRUE(dialog.isVisible());
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(user.shown[0].buttons, Buttons::YesNo);
  user.answers = {Answer::Yes};
  click(dialog, "cmdRipristina");
  EXPECT_EQ(dialog.tag(), "catalog-20260712T071500Z.mdb");
}

TEST_F(TheBackupDialog, EscapeReturnsNothing) {
  frmBackup dialog(shop, env);
  show(dialog);
  expectEscapeLeaves(dialog);
}

TEST_F(TheBackupDialog, WithoutACopyThereIsNothingToRestore) {
  std::filesystem::remove_all(shop + "/backup");
  frmBackup dialog(shop, env);
  show(dialog);
  EXPECT_TRUE(control<QLabel>(dialog, "lblNessuna")->isVisible());
  EXPECT_FALSE(control<QPushButton>(dialog, "cmdRipristina")->isEnabled());
}

}  // namespace
}  // namespace kv
