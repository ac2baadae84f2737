// The search for articles in its window.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableView>

#include "dialog_fixture.h"
#include "platform/qt/frm_note.h"
#include "platform/text/text.h"
#include "shell/dialogs/article_search.h"
#include "shell/dialogs/frm_search.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheSearchDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    dialog.emplace(session, env);
    show(*dialog);
    text = control<QLineEdit>(*dialog, "txtTesto");
    hits = control<QTableView>(*dialog, "lstArticoli");
  }
  int found() const { return hits->model()->rowCount(); }
  std::string cell(int row, int column) const { return fromQt(hits->model()->index(row, column).data().toString()); }

  std::optional<frmSearch> dialog;
  QLineEdit* text = nullptr;
  QTableView* hits = nullptr;
};

TEST_F(TheSearchDialog, OpensOnTheTextWithCercaAsTheDefault) {
  EXPECT_EQ(dialog->windowTitle(), "Korvane - Cerca articoli");
  EXPECT_TRUE(text->hasFocus());
  EXPECT_EQ(test::defaultButton(*dialog), "Cerca");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdMostra")->isEnabled());
  EXPECT_FALSE(control<QLabel>(*dialog, "lblNessuno")->isVisible());
  EXPECT_EQ(test::namelessControls(*dialog), "");
}

TEST_F(TheSearchDialog, EnterSearchesAndEnterAgainShowsTheFirstHit) {
  QTest::keyClicks(text, "vaso");
  QTest::keyClick(text, Qt::Key_Return);
  ASSERT_GT(found(), 0);
  EXPECT_TRUE(hits->hasFocus());
  EXPECT_EQ(test::defaultButton(*dialog), "Mostra");
  test::keepPicture(*dialog, "search");
  const std::string code = cell(0, 0);
  QTest::keyClick(hits, Qt::Key_Return);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(stored("codice", "articoli WHERE ID = " + dialog->tag()), code);
  EXPECT_EQ(std::to_string(dialog->chosen()), dialog->tag());
}

TEST_F(TheSearchDialog, ADoubleClickShowsTheArticle) {
  click(*dialog, "cmdCerca");
  ASSERT_GT(found(), 1);
  const QPoint place = hits->visualRect(hits->model()->index(1, 1)).center();
  QTest::mouseClick(hits->viewport(), Qt::LeftButton, {}, place);
  QTest::mouseDClick(hits->viewport(), Qt::LeftButton, {}, place);
  EXPECT_NE(dialog->tag(), "");
}

TEST_F(TheSearchDialog, WithoutHitsSaysSoAndMostraIsOff) {
  QTest::keyClicks(text, "zzz nulla");
  click(*dialog, "cmdCerca");
  EXPECT_EQ(found(), 0);
  EXPECT_TRUE(control<QLabel>(*dialog, "lblNessuno")->isVisible());
  EXPECT_TRUE(text->hasFocus());
  EXPECT_EQ(text->selectedText(), "zzz nulla") << "the next words replace it";
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdMostra")->isEnabled());
  test::keepPicture(*dialog, "search_none");
  text->clear();
  click(*dialog, "cmdCerca");
  EXPECT_FALSE(control<QLabel>(*dialog, "lblNessuno")->isVisible());
  EXPECT_TRUE(control<QPushButton>(*dialog, "cmdMostra")->isEnabled());
}

TEST_F(TheSearchDialog, TakesTheSearchCharactersAlone) {
  QTest::keyClicks(text, "a'b%c_d[e]*?9 ");
  EXPECT_EQ(text->text(), "abcde*?9 ");
  QTest::keyClicks(text, "%");
  EXPECT_EQ(fromQt(noteOf(*dialog)), refusedSearchKey("%"));
  text->clear();
  QApplication::clipboard()->setText(QStringLiteral("caffè; \"città\"\n"));
  text->paste();
  EXPECT_EQ(fromQt(text->text()), "caffè città");
  for (const char* kept : {"TZ-001", "www.a.it"}) {
    text->clear();
    QApplication::clipboard()->setText(kept);
    text->paste();
    EXPECT_EQ(text->text(), kept);
  }
}

TEST_F(TheSearchDialog, TheRadioChoosesTheColumn) {
  const std::string code = stored("codice", "articoli WHERE codice <> '' ORDER BY ID");
  control<QRadioButton>(*dialog, "opt_codice")->setChecked(true);
  // The hyphen of a code is no search character; "?" stands for any.
  text->setText(toQt(replaceAll(code, "-", "?")));
  click(*dialog, "cmdCerca");
  ASSERT_GE(found(), 1);
  EXPECT_EQ(cell(0, 0), code);
}

TEST_F(TheSearchDialog, WholeWordsLeaveTheBareWordOut) {
  ASSERT_TRUE(session.catalogue.execute(
      "INSERT INTO articoli (catID, titolo) VALUES ('cat001', 'qblu'), ('cat001', 'qblu scuro'), "
      "('cat001', 'un qblu'), ('cat001', 'qbluastro')"));
  text->setText("qblu");
  click(*dialog, "cmdCerca");
  EXPECT_EQ(found(), 4);
  control<QCheckBox>(*dialog, "chkParole")->setChecked(true);
  click(*dialog, "cmdCerca");
  EXPECT_EQ(found(), 2);
}

TEST_F(TheSearchDialog, EscapeShowsNothing) {
  click(*dialog, "cmdCerca");
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(dialog->chosen(), 0);
}

}  // namespace
}  // namespace kv
