// The merchant's own tags in their window.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRadioButton>

#include "dialog_fixture.h"
#include "platform/qt/frm_field_mark.h"
#include "tags/custom/frm_tags.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheTagsDialog : public test::DialogFixture {
 protected:
  TheTagsDialog() {
    EXPECT_TRUE(writeBytes(application + "/personal.tag", "<<5-firma>>\r\nMario\xA0Rossi\r\nCeramiche\r\n"));
    EXPECT_TRUE(writeBytes(shop + "/shoptag.tag", "<<5-orari>>\r\n9-13\r\n"));
  }
  void SetUp() override {
    DialogFixture::SetUp();
    dialog.emplace(session, env);
    show(*dialog);
    list = control<QListWidget>(*dialog, "lstTag");
    name = control<QLineEdit>(*dialog, "txtNome");
    content = control<QPlainTextEdit>(*dialog, "txtContenuto");
  }
  std::string line(int row) const { return fromQt(list->item(row)->text()); }

  std::optional<frmTags> dialog;
  QListWidget* list = nullptr;
  QLineEdit* name = nullptr;
  QPlainTextEdit* content = nullptr;
};

TEST_F(TheTagsDialog, ShowsTheFirstTagWithItsValidity) {
  EXPECT_EQ(list->count(), 2);
  EXPECT_EQ(line(0), "<<5-orari>>");
  EXPECT_EQ(line(1), "<<5-firma>>");
  EXPECT_EQ(name->text(), "orari");
  EXPECT_EQ(content->toPlainText(), "9-13");
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optNegozio")->isChecked());
  list->setCurrentRow(1);
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optTutti")->isChecked());
  EXPECT_EQ(control<QCheckBox>(*dialog, "chkAbilita")->isChecked(), stored("personaltags") == "1");
  EXPECT_EQ(test::defaultButton(*dialog), "OK");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  test::keepPicture(*dialog, "tags");
}

TEST_F(TheTagsDialog, SaysWhichCharactersBecomeReferencesUntilAnotherTagIsShown) {
  content->setFocus();
  QApplication::clipboard()->setText(QStringLiteral("10 ₪"));
  content->paste();
  const auto* mark = content->findChild<FieldMark*>();
  ASSERT_NE(mark, nullptr);
  EXPECT_EQ(fromQt(mark->reason()),
            "Il carattere \"₪\" non è fra quelli dei file del negozio: vi sarà scritto come \"&#8362;\".");
  list->setFocus();
  list->setCurrentRow(1);
  EXPECT_EQ(mark->reason(), QString());
}

TEST_F(TheTagsDialog, TypingANameRewritesTheLineAtOnce) {
  name->selectAll();
  QTest::keyClicks(name, "apertura");
  EXPECT_EQ(line(0), "<<5-apertura>>");
  name->selectAll();
  QTest::keyClick(name, Qt::Key_Delete);
  EXPECT_EQ(line(0), "");
}

TEST_F(TheTagsDialog, NuovoAddsABlankLineReadyToBeNamed) {
  click(*dialog, "cmdNuovo");
  EXPECT_EQ(list->currentRow(), 2);
  EXPECT_EQ(line(2), "");
  EXPECT_TRUE(name->hasFocus());
  EXPECT_EQ(content->toPlainText(), "");
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optTutti")->isChecked());
}

TEST_F(TheTagsDialog, EliminaTakesTheLineAndShowsAnother) {
  click(*dialog, "cmdElimina");
  EXPECT_EQ(list->count(), 1);
  EXPECT_EQ(name->text(), "firma");
  click(*dialog, "cmdElimina");
  EXPECT_EQ(list->count(), 0);
  EXPECT_FALSE(name->isEnabled());
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdElimina")->isEnabled());
  EXPECT_EQ(name->text(), "");
}

TEST_F(TheTagsDialog, OkWritesWhatTheFieldsShow) {
  click(*dialog, "cmdNuovo");
  QTest::keyClicks(name, "nuovo");
  content->setPlainText("uno\ndue");
  control<QRadioButton>(*dialog, "optNegozio")->setChecked(true);
  control<QCheckBox>(*dialog, "chkAbilita")->setChecked(true);
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(readBytes(shop + "/shoptag.tag"), "<<5-orari>>\r\n9-13\r\n<<5-nuovo>>\r\nuno\r\ndue\r\n");
  EXPECT_EQ(readBytes(application + "/personal.tag"), "<<5-firma>>\r\nMario\xA0Rossi\r\nCeramiche\r\n");
  EXPECT_EQ(stored("personaltags"), "1");
}

TEST_F(TheTagsDialog, ANonBreakingSpaceSurvivesAnEdit) {
  list->setCurrentRow(1);
  content->moveCursor(QTextCursor::End);
  QTest::keyClicks(content, "!");
  click(*dialog, "cmdOK");
  EXPECT_EQ(readBytes(application + "/personal.tag"), "<<5-firma>>\r\nMario\xA0Rossi\r\nCeramiche!\r\n");
}

TEST_F(TheTagsDialog, SaysWhenThereAreTooMany) {
  for (int i = list->count(); i < 999; ++i) click(*dialog, "cmdNuovo");
  EXPECT_TRUE(user.shown.empty());
  click(*dialog, "cmdNuovo");
  ASSERT_EQ(user.texts(), std::vector<std::string>{"E' stato raggiunto il numero massimo di tag"});
  EXPECT_EQ(list->count(), 999);
}

TEST_F(TheTagsDialog, EscapeLeavesTheFilesAlone) {
  name->setText("altro");
  click(*dialog, "cmdElimina");
  QTest::keyClick(&*dialog, Qt::Key_Escape);
  EXPECT_TRUE(dialog->isVisible()) << "No is the default";
  ASSERT_EQ(user.texts(), std::vector<std::string>{"Le modifiche ai tag non sono state salvate. Chiudere la finestra e "
                                                   "perderle?"});
  user.answers = {Answer::Yes};
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(readBytes(shop + "/shoptag.tag"), "<<5-orari>>\r\n9-13\r\n");
  EXPECT_FALSE(fileExists(shop + "/shoptag.bak"));
}

TEST_F(TheTagsDialog, WithoutChangesItIsLeftWithoutAQuestion) {
  list->setCurrentRow(1);
  expectEscapeLeaves(*dialog);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(TheTagsDialog, TheEndOfATagIsRefusedInItsName) {
  name->setFocus();
  name->selectAll();
  QTest::keyClicks(name, "a>>b");
  EXPECT_EQ(name->text(), "a>b");
  EXPECT_EQ(line(0), "<<5-a>b>>");
  EXPECT_TRUE(name->hasFocus());
}

TEST_F(TheTagsDialog, AFailureToWriteIsToldAndTheDialogStays) {
  ASSERT_TRUE(createFolder(application + "/personal.new"));
  click(*dialog, "cmdOK");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
  EXPECT_TRUE(dialog->isVisible());
}

}  // namespace
}  // namespace kv
