// The dialog of variants, driven by the keyboard.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>

#include "captions.h"
#include "commerce/variants/frm_opzioni.h"
#include "commerce/variants/frm_variant_grid.h"
#include "dialog_fixture.h"
#include "support/failing_store.h"
#include "support/row_text.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheVariantsDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    session.languageCount = 2;
    session.languageNames = {"italiano", "inglese", "", ""};
    openDialog("2");
  }
  void openDialog(const char* txtID) {
    VariantChoice choice;
    choice.txtID = txtID;
    dialog.emplace(session, env, choice);
    show(*dialog);
    // Found by their names: a grid of this program has no meta-object of its own.
    variants = static_cast<VariantGrid*>(control<QTableWidget>(*dialog, "DBGrid1"));
    options = static_cast<VariantGrid*>(control<QTableWidget>(*dialog, "DBGrid2"));
  }
  bool isOn(const char* name) const { return control<QPushButton>(*dialog, name)->isEnabled(); }
  /// Types into the current cell and ends with Enter.
  static void typeCell(QTableWidget* grid, const char* text) {
    QTest::keyClick(grid, Qt::Key_F2);
    auto* editor = grid->findChild<QLineEdit*>("celCella");
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QString::fromUtf8(text));
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents();
  }
  void goToOption(int row, int column) const {
    options->setFocus();
    options->setCurrentCell(row, column);
  }

  std::optional<frmOpzioni> dialog;
  VariantGrid* variants = nullptr;
  VariantGrid* options = nullptr;
};

TEST_F(TheVariantsDialog, ShowsTheVariantOfTheSlotWithItsOptions) {
  EXPECT_EQ(fromQt(dialog->windowTitle()), "Korvane - Varianti articolo");
  EXPECT_EQ(variants->cell(variants->currentRow(), 0), "Smalto");
  EXPECT_EQ(options->rowCount(), 4);
  EXPECT_EQ(options->cell(0, 1), "Blu di Montelune");
  EXPECT_EQ(options->item(0, 4)->data(Qt::AccessibleTextRole).toString(), "Predefinita");
  EXPECT_TRUE(isOn("cmdDuplica") && isOn("cmdElimina") && isOn("cmdAdd"));
  EXPECT_EQ(test::defaultButton(*dialog), "OK");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  EXPECT_EQ(test::repeatedKeys(*dialog), "");
  EXPECT_EQ(test::missingCaptions(*dialog, {"Visualizza automaticamente la differenza di prezzo",
                                            "Mostra il segno \"+\" davanti alle differenze positive"}),
            "");
  test::keepPicture(*dialog, "variants");
}

TEST_F(TheVariantsDialog, TheFixedVariantHasNothingToChange) {
  QTest::keyClick(variants, Qt::Key_Up);
  EXPECT_EQ(variants->cell(variants->currentRow(), 0), "(nessuna)");
  EXPECT_FALSE(isOn("cmdDuplica") || isOn("cmdElimina") || isOn("cmdAdd"));
  QTest::keyClick(variants, Qt::Key_F2);
  EXPECT_EQ(variants->findChild<QLineEdit*>("celCella"), nullptr);
  const int before = variants->rowCount();
  QTest::keyClick(variants, Qt::Key_D, Qt::ControlModifier);
  QTest::keyClick(variants, Qt::Key_Delete);
  QTest::keyClick(options, Qt::Key_Insert);
  EXPECT_EQ(variants->rowCount(), before);
  EXPECT_EQ(options->rowCount(), 0);
}

TEST_F(TheVariantsDialog, InsertMakesAVariantThatCanBeNamedAtOnce) {
  const int before = variants->rowCount();
  QTest::keyClick(variants, Qt::Key_Insert);
  ASSERT_EQ(variants->rowCount(), before + 1);
  EXPECT_EQ(variants->currentRow(), before);
  typeCell(variants, "Profumo");
  EXPECT_EQ(variants->cell(before, 0), "Profumo");
  EXPECT_EQ(stored("nome", "opzioni ORDER BY ID DESC"), "Profumo");
  EXPECT_TRUE(dialog->isVisible());
}

TEST_F(TheVariantsDialog, ControlDMakesACopyAndGoesToIt) {
  const int before = variants->rowCount();
  QTest::keyClick(variants, Qt::Key_D, Qt::ControlModifier);
  ASSERT_EQ(variants->rowCount(), before + 1);
  EXPECT_EQ(variants->currentRow(), before);
  EXPECT_EQ(variants->cell(before, 0), "Smalto");
  EXPECT_EQ(options->rowCount(), 4);
}

TEST_F(TheVariantsDialog, DeleteAsksFirst) {
  ASSERT_TRUE(session.catalogue.execute("DELETE FROM articoli"));
  user.answers = {Answer::Yes};
  QTest::keyClick(variants, Qt::Key_Delete);
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Eliminare la variante selezionata ('Smalto')?"});
  EXPECT_EQ(variants->currentRow(), 0);
  EXPECT_EQ(stored("COUNT(*)", "dettagliop WHERE OpID = 2"), "0");
}

TEST_F(TheVariantsDialog, ACellTakesTheCharactersOfANumberAlone) {
  goToOption(0, 2);
  typeCell(options, "-1a2-,5");
  EXPECT_EQ(options->cell(0, 2), "-12,5");
  goToOption(0, 2);
  typeCell(options, "1,2,3");
  EXPECT_EQ(options->cell(0, 2), "-12,5");
}

TEST_F(TheVariantsDialog, EnterEditsACellAndStoresItWithoutClosing) {
  goToOption(1, 1);
  QTest::keyClick(options, Qt::Key_Return);
  auto* editor = options->findChild<QLineEdit*>("celCella");
  ASSERT_NE(editor, nullptr);
  editor->setText("Verde");
  QTest::keyClick(editor, Qt::Key_Return);
  QApplication::processEvents();
  EXPECT_EQ(stored("testo", "dettagliop WHERE OpID = 2 AND codice = 'V'"), "Verde");
  EXPECT_TRUE(dialog->isVisible());
}

TEST_F(TheVariantsDialog, TabGoesThroughTheCellsAndOutOfTheGrid) {
  goToOption(3, 3);
  QTest::keyClick(options, Qt::Key_Tab);
  EXPECT_EQ(options->currentColumn(), 4);
  EXPECT_TRUE(options->hasFocus());
  QTest::keyClick(options, Qt::Key_Tab);
  EXPECT_FALSE(options->hasFocus());
}

TEST_F(TheVariantsDialog, SpaceMovesTheDefaultMark) {
  goToOption(2, 4);
  QTest::keyClick(options, Qt::Key_Space);
  EXPECT_EQ(options->cell(2, 4), "●");
  EXPECT_EQ(options->cell(0, 4), "");
  EXPECT_EQ(stored("COUNT(*)", "dettagliop WHERE OpID = 2 AND selezionato = '.'"), "1");
  EXPECT_EQ(stored("codice", "dettagliop WHERE OpID = 2 AND selezionato = '.'"), "T");
}

TEST_F(TheVariantsDialog, AClickMovesTheDefaultMark) {
  const QRect cell = options->visualItemRect(options->item(1, 4));
  QTest::mouseClick(options->viewport(), Qt::LeftButton, {}, cell.center());
  EXPECT_EQ(options->cell(1, 4), "●");
}

TEST_F(TheVariantsDialog, OptionsAreAddedAndDeletedByKeys) {
  goToOption(0, 0);
  QTest::keyClick(options, Qt::Key_Insert);
  EXPECT_EQ(options->rowCount(), 5);
  EXPECT_EQ(options->currentRow(), 4);
  QTest::keyClick(options, Qt::Key_Delete);
  EXPECT_EQ(options->rowCount(), 4);
  EXPECT_EQ(options->currentRow(), 3);
}

TEST_F(TheVariantsDialog, RowsOfASpreadsheetArePasted) {
  goToOption(0, 0);
  QApplication::clipboard()->setText("G\tGiallo\t1,5\t0,2\nR\tRosso\n");
  QTest::keyClick(options, Qt::Key_V, Qt::ControlModifier);
  ASSERT_EQ(options->rowCount(), 6);
  EXPECT_EQ(options->cell(4, 1), "Giallo");
  EXPECT_EQ(options->cell(4, 2), "1,5");
}

TEST_F(TheVariantsDialog, ThePanelOfLanguagesFollowsTheCursor) {
  auto* panel = control<QLabel>(*dialog, "lblLingue");
  EXPECT_FALSE(panel->isVisible());
  QTest::keyClick(control<QPushButton>(*dialog, "cmdLingue"), Qt::Key_Space);
  EXPECT_TRUE(panel->isVisible());
  EXPECT_EQ(panel->text(), "italiano: Smalto\ninglese: Glaze");
  goToOption(1, 0);
  EXPECT_EQ(panel->text(), "italiano: Verde salvia\ninglese: Sage green");
  goToOption(1, 1);
  typeCell(options, "Verde");
  EXPECT_TRUE(panel->isVisible());
  EXPECT_EQ(panel->text(), "italiano: Verde\ninglese: Sage green") << "as it was edited";
  typeCell(variants, "Vernice");
  EXPECT_EQ(panel->text(), "italiano: Vernice\ninglese: Glaze");
  QTest::keyClick(options, Qt::Key_Delete);
  EXPECT_FALSE(panel->isVisible()) << "its row may be gone";
  QTest::keyClick(variants, Qt::Key_Up);
  EXPECT_TRUE(panel->isVisible());
  click(*dialog, "cmdLingue");
  EXPECT_FALSE(panel->isVisible());
}

TEST_F(TheVariantsDialog, OneLanguageNeedsNoPanel) {
  session.languageCount = 1;
  openDialog(" ");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdLingue")->isVisible());
  EXPECT_EQ(variants->currentRow(), 0);
}

TEST_F(TheVariantsDialog, SignsDependOnTheDifferencesAndOkStoresBoth) {
  auto* difference = control<QCheckBox>(*dialog, "chkNoDiff");
  difference->setChecked(true);
  auto* signs = control<QCheckBox>(*dialog, "chkShowSigns");
  signs->setChecked(true);
  EXPECT_TRUE(signs->isEnabled());
  difference->setChecked(false);
  EXPECT_FALSE(signs->isEnabled());
  const std::string before = stored("nodiff || showsigns");
  difference->setChecked(true);
  EXPECT_EQ(stored("nodiff || showsigns"), before);
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(stored("nodiff || showsigns"), "11");
  EXPECT_EQ(dialog->lblID(), 2);
}

TEST_F(TheVariantsDialog, TheButtonOfUsesCountsTheArticles) {
  const auto button = [this] { return control<QPushButton>(*dialog, "cmdUso"); };
  const auto use = [this](const char* articles) {
    for (const char* slot : {"opzione1", "opzione2", "opzione3", "opzione4"}) {
      for (const char* list : {"", "_1", "_2", "_3", "_4", "_5", "_6", "_7", "_8", "_9"}) {
        ASSERT_TRUE(session.catalogue.execute(std::string("UPDATE articoli SET ") + slot + list + " = 1"));
      }
    }
    ASSERT_TRUE(session.catalogue.execute(
        std::string("UPDATE articoli SET opzione4_9 = 3 WHERE ID IN (SELECT ID FROM articoli ORDER BY ID LIMIT ") +
        articles + ")"));
    QTest::keyClick(variants, Qt::Key_Up);
    QTest::keyClick(variants, Qt::Key_Down);
  };
  QTest::keyClick(variants, Qt::Key_Down);
  use("0");
  EXPECT_EQ(fromQt(button()->text()), "&Usata in 0 articoli");
  EXPECT_FALSE(button()->isEnabled());
  use("1");
  EXPECT_EQ(fromQt(button()->text()), "&Usata in 1 articolo");
  EXPECT_TRUE(button()->isEnabled());
  use("3");
  EXPECT_EQ(fromQt(button()->text()), "&Usata in 3 articoli");
}

TEST_F(TheVariantsDialog, TheListOfUsesLeadsToAnArticleAndKeepsTheSlot) {
  ASSERT_TRUE(
      session.catalogue.execute("UPDATE articoli SET opzione4_9 = 3 WHERE ID = (SELECT MIN(ID) FROM articoli)"));
  QTest::keyClick(variants, Qt::Key_Down);
  QTimer::singleShot(0, qApp, [] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    menu->setActiveAction(menu->actions().front());
    QTest::keyClick(menu, Qt::Key_Return);
  });
  QTest::keyClick(control<QPushButton>(*dialog, "cmdUso"), Qt::Key_Space);
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(dialog->lblID(), 2);
  ASSERT_TRUE(dialog->jump());
  EXPECT_EQ(std::to_string(*dialog->jump()), stored("MIN(ID)", "articoli"));
}

TEST_F(TheVariantsDialog, EscapeLeavesWithoutASetting) {
  const std::string before = stored("nodiff");
  control<QCheckBox>(*dialog, "chkNoDiff")->toggle();
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(stored("nodiff"), before);
}

TEST_F(TheVariantsDialog, WhatTheDiskDoesNotTakeStaysInItsCellMarkedAndIsStoredByTheNextOk) {
  const auto tip = [](const QTableWidget* grid, int row, int column) {
    return fromQt(grid->item(row, column)->toolTip());
  };
  const auto ofColumn = [this](const std::string& column) {
    return test::rows(session.catalogue, "SELECT " + column + " FROM dettagliop WHERE OpID = 2 ORDER BY ID LIMIT 1");
  };
  const std::string name = test::rows(session.catalogue, "SELECT nome FROM opzioni WHERE ID = 2");
  const std::string code = ofColumn("codice");
  {
    test::FailingStore full(1, test::AfterFailure::FailsToo, test::FailingStore::fullDisk);
    full.onlyFor("UPDATE");
    goToOption(0, 0);
    typeCell(options, "ZZ");
    EXPECT_EQ(options->cell(0, 0), "ZZ");
    EXPECT_TRUE(tip(options, 0, 0).starts_with("Non salvato. Il disco è pieno")) << tip(options, 0, 0);
    EXPECT_EQ(user.shown.size(), 1U);
    variants->setFocus();
    typeCell(variants, "Sfumatura");
    EXPECT_EQ(variants->cell(variants->currentRow(), 0), "Sfumatura");
    EXPECT_EQ(options->cell(0, 0), "ZZ");
    click(*dialog, "cmdOK");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(user.shown.size(), 1U) << "told once";
  }
  EXPECT_EQ(ofColumn("codice"), code);
  EXPECT_EQ(test::rows(session.catalogue, "SELECT nome FROM opzioni WHERE ID = 2"), name);
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(ofColumn("codice"), "ZZ\n");
  EXPECT_EQ(test::rows(session.catalogue, "SELECT nome FROM opzioni WHERE ID = 2"), "Sfumatura\n");
}

}  // namespace
}  // namespace kv
