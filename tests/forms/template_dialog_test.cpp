// The template choice in its window.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>

#include "dialog_fixture.h"
#include "platform/text/text.h"
#include "tags/package/frm_template.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheTemplateDialog : public test::DialogFixture {
 protected:
  TheTemplateDialog() {
    EXPECT_TRUE(copyTree(application + "/template/classico", application + "/template/zeta"));
    EXPECT_TRUE(deleteFile(application + "/template/zeta/kvan_preview.jpg"));
    EXPECT_TRUE(deleteFile(application + "/template/zeta/kvan_note.txt"));
  }
};

TEST_F(TheTemplateDialog, OpensOnTheShopsTemplateWithPictureAndNote) {
  frmTemplate dialog(application, "classico");
  show(dialog);
  EXPECT_EQ(dialog.windowTitle(), "Korvane - Scelta del template");
  EXPECT_EQ(control<QLineEdit>(dialog, "txtTemplate")->text(), "classico");
  EXPECT_EQ(control<QListWidget>(dialog, "lstTemplate")->currentRow(), 1);
  EXPECT_TRUE(control<QLabel>(dialog, "picPreview")->isVisible());
  EXPECT_EQ(fromQt(control<QPlainTextEdit>(dialog, "txtNote")->toPlainText()),
            replaceAll(readText(application + "/template/classico/kvan_note.txt").value(), "\r\n", "\n"));
  EXPECT_EQ(test::defaultButton(dialog), "OK");
  EXPECT_EQ(test::namelessControls(dialog), "");
  test::keepPicture(dialog, "template");
}

TEST_F(TheTemplateDialog, HidesThePictureAndEmptiesTheNoteOfAPackageWithoutThem) {
  frmTemplate dialog(application, "classico");
  show(dialog);
  control<QListWidget>(dialog, "lstTemplate")->setCurrentRow(2);
  EXPECT_EQ(control<QLineEdit>(dialog, "txtTemplate")->text(), "zeta");
  EXPECT_FALSE(control<QLabel>(dialog, "picPreview")->isVisible());
  EXPECT_EQ(control<QPlainTextEdit>(dialog, "txtNote")->toPlainText(), "");
}

TEST_F(TheTemplateDialog, TypingSelectsAndOkReturnsTheName) {
  frmTemplate dialog(application, "");
  show(dialog);
  EXPECT_FALSE(control<QPushButton>(dialog, "cmdOK")->isEnabled());
  auto* field = control<QLineEdit>(dialog, "txtTemplate");
  QTest::keyClicks(field, "zet");
  EXPECT_EQ(control<QListWidget>(dialog, "lstTemplate")->currentRow(), -1);
  QTest::keyClicks(field, "a");
  EXPECT_EQ(control<QListWidget>(dialog, "lstTemplate")->currentRow(), 2);
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.tag(), "zeta");
}

TEST_F(TheTemplateDialog, ADoubleClickMeansOk) {
  frmTemplate dialog(application, "classico");
  show(dialog);
  auto* list = control<QListWidget>(dialog, "lstTemplate");
  const QPoint place = list->visualItemRect(list->item(2)).center();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, place);
  EXPECT_EQ(dialog.tag(), "zeta");
}

TEST_F(TheTemplateDialog, AnnullaAndEscapeReturnNothing) {
  frmTemplate first(application, "classico");
  show(first);
  click(first, "cmdAnnulla");
  EXPECT_FALSE(first.isVisible());
  EXPECT_EQ(first.tag(), "");
  frmTemplate second(application, "classico");
  show(second);
  expectEscapeLeaves(second);
}

TEST_F(TheTemplateDialog, F1AndTheQuestionMarkOpenItsHelpPage) {
  std::vector<std::string> pages;
  frmTemplate dialog(application, "classico", [&pages](std::string_view page) { pages.emplace_back(page); });
  show(dialog);
  QTest::keyClick(control<QLineEdit>(dialog, "txtTemplate"), Qt::Key_F1);
  click(dialog, "cmdGuida");
  EXPECT_EQ(pages, (std::vector<std::string>{"pagine/template.htm", "pagine/template.htm"}));
  EXPECT_TRUE(dialog.isVisible());
}

TEST_F(TheTemplateDialog, AQuestionMarkCanBeTyped) {
  int opened = 0;
  frmTemplate dialog(application, "", [&opened](std::string_view) { ++opened; });
  show(dialog);
  QTest::keyClicks(control<QLineEdit>(dialog, "txtTemplate"), "?");
  EXPECT_EQ(control<QLineEdit>(dialog, "txtTemplate")->text(), "?");
  EXPECT_EQ(opened, 0);
}

}  // namespace
}  // namespace kv
