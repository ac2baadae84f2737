// The sheet of articles in its window, by keys and clicks.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QTableView>
#include <QToolButton>

#include "forms/dialog_fixture.h"
#include "forms/window_fixture.h"
#include "platform/qt/frm_field_mark.h"
#include "shell/sheet/frm_foglio.h"
#include "shell/sheet/frm_passo_prezzi.h"
#include "shell/sheet/frm_sostituisci.h"

namespace kv::test {
namespace {

class TheSheetWindow : public WindowFixture {
 protected:
  void SetUp() override {
    ASSERT_TRUE(settings.set(settingsSection, "foglio", "codice titolo titolo_l2 prezzo novita descrizione"));
    open();
    openSheet();
  }
  void openSheet() {
    sheet.emplace(
        window->workbench(), [this](std::string_view page) { helpOpened = page; }, window.get());
    sheet->setModal(true);
    sheet->show();
    QApplication::setActiveWindow(&*sheet);
    processEvents();
    table = control<QTableView>(*sheet, "lstFoglio");
  }
  QString text(int row, int column) { return table->model()->index(row, column).data().toString(); }
  QString status() { return control<QLabel>(*sheet, "lblStato")->text(); }
  void go(int row, int column) {
    table->setCurrentIndex(table->model()->index(row, column));
    table->setFocus();
  }
  void select(int top, int left, int bottom, int right) {
    go(top, left);
    const QAbstractItemModel& model = *table->model();
    table->selectionModel()->select(QItemSelection(model.index(top, left), model.index(bottom, right)),
                                    QItemSelectionModel::ClearAndSelect);
  }
  /// Types into the current cell and leaves it by Enter.
  void typeInCell(const QString& typed) {
    QTest::keyClick(table, Qt::Key_F2);
    auto* line = table->findChild<QLineEdit*>(QStringLiteral("txtCella"));
    ASSERT_NE(line, nullptr);
    line->selectAll();
    QTest::keyClicks(line, typed);
    QTest::keyClick(line, Qt::Key_Return);
    processEvents();
  }
  void press(Qt::Key which) {
    QTest::keyClick(table, which, Qt::ControlModifier);
    processEvents();
  }
  std::string titles() { return test::rows(session.catalogue, "SELECT titolo FROM articoli ORDER BY ID"); }
  std::string prices() { return test::rows(session.catalogue, "SELECT prezzo FROM articoli ORDER BY ID"); }

  std::optional<frmFoglio> sheet;
  QTableView* table = nullptr;
  std::string helpOpened;
};

TEST_F(TheSheetWindow, ACellSaysWhichCharactersItHasNotTaken) {
  go(0, 1);
  QTest::keyClick(table, Qt::Key_F2);
  auto* line = table->findChild<QLineEdit*>(QStringLiteral("txtCella"));
  ASSERT_NE(line, nullptr);
  line->selectAll();
  QTest::keyClicks(line, "Alba[");
  const auto* mark = line->findChild<FieldMark*>();
  ASSERT_NE(mark, nullptr);
  EXPECT_EQ(fromQt(mark->reason()), "Il carattere \"[\" non è ammesso in questo campo.");
  QTest::keyClick(line, Qt::Key_Return);
  processEvents();
  EXPECT_EQ(titles(), "Alba\nBrina\nCielo\nDuna\n");
}

TEST_F(TheSheetWindow, StoresWhatIsTypedInACellAtOnce) {
  go(0, 1);
  typeInCell(QStringLiteral("Alba nuova"));
  EXPECT_EQ(titles(), "Alba nuova\nBrina\nCielo\nDuna\n");
  EXPECT_EQ(text(0, 1), QStringLiteral("Alba nuova"));
  EXPECT_EQ(window->workbench().history().undoName(), "Modifica Titolo");
  press(Qt::Key_Z);
  EXPECT_EQ(titles(), "Alba\nBrina\nCielo\nDuna\n");
  EXPECT_EQ(text(0, 1), QStringLiteral("Alba"));
  press(Qt::Key_Y);
  EXPECT_EQ(text(0, 1), QStringLiteral("Alba nuova"));
  QTest::keyClick(&*sheet, Qt::Key_Escape);
  EXPECT_EQ(sheet->tag(), "OK") << "something was changed";
}

TEST_F(TheSheetWindow, LeavesWithoutATagWhenNothingChanged) {
  QTest::keyClick(&*sheet, Qt::Key_Escape);
  EXPECT_FALSE(sheet->isVisible());
  EXPECT_EQ(sheet->tag(), "");
}

TEST_F(TheSheetWindow, KeepsAPriceThatIsNoNumberAndSaysWhy) {
  select(0, 3, 0, 3);
  QGuiApplication::clipboard()->setText(QStringLiteral("gratis"));
  press(Qt::Key_V);
  EXPECT_EQ(text(0, 3), QStringLiteral("14,5"));
  EXPECT_TRUE(status().contains(QStringLiteral("\"gratis\" non è un numero: è rimasto il valore precedente.")));
}

TEST_F(TheSheetWindow, FiltersAndSorts) {
  control<QLineEdit>(*sheet, "txtFiltro")->setText(QStringLiteral("frost"));
  QTRY_COMPARE(table->model()->rowCount(), 1);
  control<QLineEdit>(*sheet, "txtFiltro")->clear();
  QTRY_COMPARE(table->model()->rowCount(), 4);
  control<QComboBox>(*sheet, "cboReparto")->setCurrentIndex(3);
  EXPECT_EQ(table->model()->rowCount(), 1);
  EXPECT_EQ(text(0, 0), QStringLiteral("D1"));
  control<QComboBox>(*sheet, "cboReparto")->setCurrentIndex(0);
  const auto firstAfterClick = [&] {
    emit table->horizontalHeader()->sectionClicked(3);
    return fromQt(text(0, 0));
  };
  EXPECT_EQ(firstAfterClick(), "D1");
  EXPECT_EQ(firstAfterClick(), "B1");
  EXPECT_EQ(firstAfterClick(), "A1") << "the order of the shop";
}

TEST_F(TheSheetWindow, CopiesAndPastesBlocks) {
  select(0, 0, 1, 1);
  press(Qt::Key_C);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("A1\tAlba\nB1\tBrina\n"));
  QGuiApplication::clipboard()->setText(QStringLiteral("Uno\tOne\r\nDue\tTwo\r\n"));
  select(1, 1, 1, 1);
  press(Qt::Key_V);
  EXPECT_EQ(test::rows(session.catalogue, "SELECT titolo, titolo_l2 FROM articoli ORDER BY ID"),
            "Alba|Dawn\nUno|One\nDue|Two\nDuna|Dune\n");
  EXPECT_EQ(window->workbench().history().undoName(), "Incolla nel foglio");
  select(3, 1, 3, 1);
  press(Qt::Key_V);
  EXPECT_EQ(test::rows(session.catalogue, "SELECT titolo, titolo_l2 FROM articoli WHERE ID = 4"), "Uno|One\n");
  EXPECT_TRUE(status().contains(QStringLiteral("Celle modificate: 2; oltre la fine del foglio: 2")));
}

TEST_F(TheSheetWindow, ShowsTagsInATipAsTheyAreWritten) {
  go(0, 1);
  typeInCell(QStringLiteral("<b>Alba</b>"));
  EXPECT_EQ(text(0, 1), QStringLiteral("<b>Alba</b>"));
  EXPECT_TRUE(
      table->model()->index(0, 1).data(Qt::ToolTipRole).toString().contains(QStringLiteral("&lt;b&gt;Alba&lt;/b&gt;")));
}

TEST_F(TheSheetWindow, ChoosesDepartmentsAndVariantsFromLists) {
  sheet.reset();
  ASSERT_TRUE(settings.set(settingsSection, "foglio", "codice reparto opzione1"));
  openSheet();
  const auto choose = [this](int column, const QString& name) {
    go(0, column);
    QTest::keyClick(table, Qt::Key_F2);
    auto* list = table->findChild<QComboBox*>(QStringLiteral("cboCella"));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(namelessControls(*sheet), "");
    list->setCurrentIndex(list->findText(name));
    QTest::keyClick(list, Qt::Key_Return);
    processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // the list of this cell
  };
  const auto stored = [this] { return test::rows(session.catalogue, "SELECT catID, opzione1 FROM articoli"); };
  choose(1, QStringLiteral("Piatti"));
  EXPECT_EQ(window->workbench().history().undoName(), "Modifica Reparto");
  choose(2, QStringLiteral("Colore"));
  EXPECT_EQ(stored(), "cat003|2\ncat001|null\ncat001|null\ncat003|null\n");
  select(0, 1, 1, 2);
  press(Qt::Key_D);
  EXPECT_EQ(stored(), "cat003|2\ncat003|2\ncat001|null\ncat003|null\n");
  EXPECT_EQ(text(1, 1), QStringLiteral("Piatti"));
  press(Qt::Key_Z);
  press(Qt::Key_Z);
  press(Qt::Key_Z);
  EXPECT_EQ(stored(), "cat001|null\ncat001|null\ncat001|null\ncat003|null\n");
}

TEST_F(TheSheetWindow, FillsASelection) {
  select(0, 1, 2, 1);
  press(Qt::Key_D);
  EXPECT_EQ(titles(), "Alba\nAlba\nAlba\nDuna\n");
  press(Qt::Key_Z);
  EXPECT_EQ(titles(), "Alba\nBrina\nCielo\nDuna\n");
  select(1, 1, 3, 1);
  table->selectionModel()->setCurrentIndex(table->model()->index(2, 1), QItemSelectionModel::NoUpdate);
  press(Qt::Key_Return);
  EXPECT_EQ(titles(), "Alba\nCielo\nCielo\nCielo\n");
  select(0, 4, 3, 4);
  QGuiApplication::clipboard()->setText(QStringLiteral("sì"));
  press(Qt::Key_V);
  EXPECT_EQ(scalar("SELECT SUM(novita) FROM articoli"), "4");
}

TEST_F(TheSheetWindow, ReplacesWhatIsTicked) {
  whenModal([](QWidget& dialog) {
    control<QLineEdit>(dialog, "txtTrova")->setText(QStringLiteral("a\\b"));
    control<QLineEdit>(dialog, "txtSostituisci")->setText(QStringLiteral("o"));
    control<QCheckBox>(dialog, "chkEspressione")->setChecked(true);
    click(dialog, "cmdTrova");
    auto* preview = control<QTableView>(dialog, "lstAnteprima")->model();
    EXPECT_EQ(preview->rowCount(), 3) << "Alba, Brina, Duna";
    EXPECT_EQ(fromQt(preview->index(1, 3).data().toString()), "Brino");
    preview->setData(preview->index(1, 0), Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_EQ(namelessControls(dialog), "");
    keepPicture(dialog, "foglio-sostituisci");
    click(dialog, "cmdSostituisci");
  });
  press(Qt::Key_H);
  EXPECT_EQ(titles(), "Albo\nBrina\nCielo\nDuno\n");
  EXPECT_EQ(window->workbench().history().undoName(), "Trova e sostituisci");
}

TEST_F(TheSheetWindow, SaysWhyItCannotSearch) {
  whenModal([](QWidget& dialog) {
    control<QLineEdit>(dialog, "txtTrova")->setText(QStringLiteral("(aperta"));
    control<QCheckBox>(dialog, "chkEspressione")->setChecked(true);
    click(dialog, "cmdTrova");
    EXPECT_TRUE(control<QLabel>(dialog, "lblTrovati")->text().startsWith(QStringLiteral("Non si può cercare: ")));
    EXPECT_FALSE(control<QAbstractButton>(dialog, "cmdSostituisci")->isEnabled());
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  press(Qt::Key_H);
  EXPECT_EQ(titles(), "Alba\nBrina\nCielo\nDuna\n");
}

TEST_F(TheSheetWindow, ChangesSelectedPricesByAStep) {
  select(0, 3, 2, 3);
  whenModal([](QWidget& dialog) {
    control<QLineEdit>(dialog, "txtPasso")->setText(QStringLiteral("-10 %"));
    auto* preview = control<QTableView>(dialog, "lstAnteprima")->model();
    EXPECT_EQ(fromQt(preview->index(0, 3).data().toString()), "13,05");
    EXPECT_EQ(namelessControls(dialog), "");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  press(Qt::Key_P);
  EXPECT_EQ(prices(), "130500\n180000\n81000\n10000\n");
}

TEST_F(TheSheetWindow, OffersItsToolsWhereThereIsSomethingToDo) {
  select(0, 1, 1, 1);
  EXPECT_FALSE(control<QToolButton>(*sheet, "cmdPrezzi")->isEnabled());
  select(0, 1, 1, 3);
  EXPECT_TRUE(control<QToolButton>(*sheet, "cmdPrezzi")->isEnabled());
  EXPECT_EQ(namelessControls(*sheet), "");
  QTest::keyClick(&*sheet, Qt::Key_F1);
  EXPECT_EQ(helpOpened, "pagine/foglio-articoli.htm");
  EXPECT_TRUE(fileExists(KORVANE_APP_DATA "/help/pagine/foglio-articoli.htm"));
}

TEST_F(TheSheetWindow, RemembersTheOrderOfItsColumns) {
  table->horizontalHeader()->moveSection(3, 0);
  EXPECT_EQ(settings.get(settingsSection, "foglio"), "prezzo codice titolo titolo_l2 novita descrizione");
  select(0, 0, 0, 3);
  press(Qt::Key_C);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("14,5\tA1\tAlba\tDawn\n"));
  openSheet();
  EXPECT_EQ(fromQt(table->model()->headerData(0, Qt::Horizontal).toString()), "Prezzo");
}

TEST_F(TheSheetWindow, LeadsToTheArticleInTheMainWindow) {
  go(3, 1);
  press(Qt::Key_M);
  EXPECT_EQ(sheet->jump(), 4);
  EXPECT_FALSE(sheet->isVisible());
}

}  // namespace
}  // namespace kv::test
