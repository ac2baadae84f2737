// The guide of an import from a sheet and the export to one, in their windows.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <QTableWidget>

#include "import/tables/frm_esporta_foglio.h"
#include "import/tables/frm_importa_foglio.h"
#include "wired_window.h"

namespace kv {
namespace {

using test::click;
using test::control;
using test::ProgressShown;

class TheSheetGuide : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    ASSERT_TRUE(
        session.catalogue.execute("DELETE FROM articoli; INSERT INTO articoli (ID, catID, codice, titolo, prezzo)"
                                  " SELECT 1, ID, 'A-1', 'Tazza', 15000 FROM categorie LIMIT 1"));
    sheet = root / "foglio.csv";
    ASSERT_TRUE(writeBytes(sheet, "Codice;Nome;Euro\r\nA-1;Tazza;2,50\r\nA-2;Calice;x\r\nA-3;Vaso;7\r\n"));
    guide = std::make_unique<TableGuide>(session, settings, stored("ID", "categorie LIMIT 1"), "modello1");
  }
  static std::string textAt(const QTableWidget& grid, int row, int column) {
    return fromQt(grid.item(row, column)->text());
  }
  static std::string planText(const QTableView& view) {
    std::string text;
    for (int row = 0; row < view.model()->rowCount(); ++row) {
      for (int column = 0; column < view.model()->columnCount(); ++column) {
        text += fromQt(view.model()->index(row, column).data().toString()) + (column < 3 ? "|" : "\n");
      }
    }
    return text;
  }
  std::string sheet;
  std::unique_ptr<TableGuide> guide;
};

TEST_F(TheSheetGuide, GoesFromTheFileOverTheColumnsToWhatWouldHappen) {
  frmImportaFoglio dialog(*guide, user, {});
  dialog.chooseFile = [this] { return sheet; };
  show(dialog);
  EXPECT_EQ(test::namelessControls(dialog), "");
  EXPECT_FALSE(control<QAbstractButton>(dialog, "cmdOK")->isEnabled());
  click(dialog, "cmdSfoglia");
  EXPECT_EQ(fromQt(control<QLabel>(dialog, "lblLettura")->text()),
            "CSV, UTF-8, separatore \";\", fine riga CR LF, decimali \",\", migliaia nessuno, 3 righe");
  EXPECT_EQ(textAt(*control<QTableWidget>(dialog, "grdRighe"), 1, 2), "2,50");
  test::keepPicture(dialog, "foglio_file");
  click(dialog, "cmdOK");
  auto* price = control<QComboBox>(dialog, "cboColonna2");
  EXPECT_EQ(fromQt(price->currentText()), "(non importare)");
  price->setCurrentIndex(price->findData(QStringLiteral("prezzo")));
  emit price->activated(price->currentIndex());
  EXPECT_EQ(fromQt(control<QComboBox>(dialog, "cboChiave")->currentText()), "Codice");
  EXPECT_EQ(test::namelessControls(dialog), "");
  test::keepPicture(dialog, "foglio_colonne");
  click(dialog, "cmdOK");
  auto* plan = control<QTableView>(dialog, "grdPiano");
  EXPECT_EQ(planText(*plan),
            "2|modificato|A-1  Tazza|\n3|tralasciato|A-2  Calice|Prezzo: \"x\" non è un numero\n4|nuovo|A-3  Vaso|\n");
  const auto* reason = control<QLabel>(dialog, "lblMotivo");
  EXPECT_FALSE(reason->isVisible());
  plan->setCurrentIndex(plan->model()->index(1, 0));
  EXPECT_EQ(fromQt(reason->text()), "Motivo: Prezzo: \"x\" non è un numero");
  EXPECT_TRUE(reason->isVisible()) << "however narrow its column is";
  EXPECT_TRUE(plan->model()->index(1, 3).data(Qt::ToolTipRole).toString().contains("non è un numero"));
  plan->setCurrentIndex(plan->model()->index(0, 0));
  auto* values = control<QTableWidget>(dialog, "grdValori");
  ASSERT_EQ(values->rowCount(), 1);
  EXPECT_EQ(textAt(*values, 0, 0) + textAt(*values, 0, 1) + ">" + textAt(*values, 0, 2), "Prezzo1,50>2,50");
  test::keepPicture(dialog, "foglio_piano");
  EXPECT_EQ(plan->model()->index(0, 3).data(Qt::AccessibleTextRole), "vuoto") << "a screen reader says so";
  EXPECT_EQ(control<QTableWidget>(dialog, "grdColonne")->item(2, 2)->data(Qt::AccessibleTextRole), "Prezzo");
  control<QComboBox>(dialog, "cboFiltro")->setCurrentIndex(1);
  EXPECT_EQ(planText(*plan), "4|nuovo|A-3  Vaso|\n");
  plan->model()->setData(plan->model()->index(0, 0), Qt::Unchecked, Qt::CheckStateRole);
  EXPECT_EQ(fromQt(control<QLabel>(dialog, "lblSomme")->text()),
            "Articoli: 0 nuovi, 1 modificati, 0 invariati, 1 tralasciati\n"
            "Prezzo: 1 importo cambia, in tutto da 1,50 a 2,50");
  EXPECT_EQ(test::defaultButton(dialog), "Importa");
  click(dialog, "cmdOK");
  EXPECT_EQ(dialog.tag(), "OK");
  EXPECT_EQ(stored("titolo || prezzo", "articoli"), "Tazza15000");
}

TEST_F(TheSheetGuide, ShowsWhatAnotherSeparatorMakesAndRefusesWhatIsNoSheet) {
  frmImportaFoglio dialog(*guide, user, {});
  show(dialog);
  dialog.openFile(sheet);
  auto* separator = control<QComboBox>(dialog, "cboSeparatore");
  separator->setCurrentIndex(2);
  emit separator->activated(2);
  const auto* rows = control<QTableWidget>(dialog, "grdRighe");
  EXPECT_EQ(textAt(*rows, 0, 0), "Codice;Nome;Euro");
  ASSERT_TRUE(writeBytes(sheet, "Codice;Nome;Euro\r\nA-1;Vaso di maiolica dipinto;3\r\nA-2;Tazza;2\r\n"));
  separator->setCurrentIndex(0);
  dialog.openFile(sheet);
  const auto& view = static_cast<const QAbstractItemView&>(*rows);
  EXPECT_LT(rows->columnWidth(0), rows->columnWidth(1));
  EXPECT_GE(rows->columnWidth(1), view.sizeHintForColumn(1)) << "a title is read whole";
  ASSERT_TRUE(writeBytes(sheet, std::string("MZ\0\1\0\0\1", 7)));
  dialog.openFile(sheet);
  EXPECT_EQ(user.texts(),
            (std::vector<std::string>{"Il file \"foglio.csv\" non è un foglio: servono XLSX, ODS o CSV"}));
  EXPECT_FALSE(control<QAbstractButton>(dialog, "cmdOK")->isEnabled());
  expectEscapeLeaves(dialog);
}

TEST_F(TheSheetGuide, TheRowOfTheHeadersIsListedAndCanBeChanged) {
  ASSERT_TRUE(writeBytes(sheet, "Listino 2026\r\nCodice;Prezzo\r\nA-1;3\r\n"));
  frmImportaFoglio dialog(*guide, user, {});
  show(dialog);
  dialog.openFile(sheet);
  auto* headers = control<QComboBox>(dialog, "cboIntestazioni");
  EXPECT_EQ(fromQt(headers->itemText(0) + "|" + headers->itemText(1) + "|" + headers->itemText(2)),
            "(riconosci)|riga 1: Listino 2026|riga 2: Codice, Prezzo");
  EXPECT_EQ(headers->currentIndex(), 0);
  const auto& grid = *control<QTableWidget>(dialog, "grdRighe");
  EXPECT_EQ(textAt(grid, 0, 1), "Prezzo");
  headers->setCurrentIndex(1);
  emit headers->activated(1);
  EXPECT_EQ(headers->currentIndex(), 1) << "the list was made again";
  EXPECT_EQ(textAt(grid, 0, 0), "Listino 2026");
  dialog.openFile(sheet);
  EXPECT_EQ(textAt(grid, 0, 0), "Codice") << "another file is looked at by itself";
}

TEST_F(TheSheetGuide, EachSignOfTheReadingCanBeChangedAndTheFirstRowsFollow) {
  ASSERT_TRUE(writeBytes(sheet, "Codice;Nome;Prezzo\r\nA-1;Caffè;1.234,50\r\nA-2;Tè;7\r\n"));
  frmImportaFoglio dialog(*guide, user, {});
  show(dialog);
  dialog.openFile(sheet);
  const auto& grid = *control<QTableWidget>(dialog, "grdRighe");
  const auto set = [&](const char* name, int index) {
    auto* box = control<QComboBox>(dialog, name);
    box->setCurrentIndex(index);
    emit box->activated(index);
    return fromQt(control<QLabel>(dialog, "lblLettura")->text());
  };
  const auto isRight = [&](int row) { return (grid.item(row, 2)->textAlignment() & Qt::AlignRight) != 0; };
  const std::string found = set("cboCodifica", 0);
  EXPECT_EQ(found,
            "CSV, UTF-8, separatore \";\", fine riga CR LF, decimali \",\", migliaia \".\", 2 righe, "
            "\"1.234,50\" vale 1234,50");
  EXPECT_TRUE(isRight(1) && !isRight(0));
  EXPECT_TRUE(set("cboCodifica", 3).starts_with("CSV, Windows-1252, "));
  EXPECT_EQ(textAt(grid, 1, 1), "CaffÃ¨");
  EXPECT_EQ(set("cboCodifica", 0), found);
  EXPECT_NE(set("cboSeparatore", 2).find("separatore \",\""), std::string::npos);
  EXPECT_EQ(textAt(grid, 1, 0), "A-1;Caffè;1.234");
  EXPECT_EQ(set("cboSeparatore", 0), found);
  const std::string byPoint = set("cboDecimali", 2);
  EXPECT_NE(byPoint.find("decimali \".\""), std::string::npos);
  EXPECT_TRUE(byPoint.ends_with(", 2 righe, \"1.234,50\" non è un numero"));
  EXPECT_FALSE(isRight(1));
  EXPECT_EQ(set("cboDecimali", 0), found);
  EXPECT_TRUE(set("cboMigliaia", 1).ends_with("migliaia nessuno, 2 righe, \"1.234,50\" non è un numero"));
  EXPECT_EQ(set("cboMigliaia", 0), found);
  EXPECT_NE(set("cboFineRiga", 3).find("fine riga CR,"), std::string::npos);
  EXPECT_EQ(textAt(grid, 1, 0), "\nA-1");
  EXPECT_EQ(set("cboFineRiga", 0), found);
}

TEST_F(TheSheetGuide, UnticksWithARowThoseThatCannotBeWithoutIt) {
  ASSERT_TRUE(writeBytes(sheet, "Percorso\nLegni\nLegni > Ciotole\n"));
  frmImportaFoglio dialog(*guide, user, {});
  show(dialog);
  dialog.openFile(sheet);
  auto* table = control<QComboBox>(dialog, "cboTabella");
  table->setCurrentIndex(1);
  emit table->activated(1);
  click(dialog, "cmdOK");
  click(dialog, "cmdOK");
  QAbstractItemModel* const plan = control<QTableView>(dialog, "grdPiano")->model();
  int first = -1, last = -1;
  QObject::connect(plan, &QAbstractItemModel::dataChanged, &dialog,
                   [&](const QModelIndex& from, const QModelIndex& to) {
                     first = from.row();
                     last = to.row();
                   });
  plan->setData(plan->index(0, 0), Qt::Unchecked, Qt::CheckStateRole);
  EXPECT_EQ(plan->index(1, 0).data(Qt::CheckStateRole), Qt::Unchecked);
  EXPECT_TRUE(first == 0 && last == 1) << "the list paints both";
  EXPECT_FALSE(control<QAbstractButton>(dialog, "cmdOK")->isEnabled());
}

TEST_F(TheSheetGuide, ListsTheArticlesThatGoOutOfTheCatalogueEachWithItsBox) {
  frmImportaFoglio dialog(*guide, user, {});
  ASSERT_TRUE(writeBytes(sheet, "Codice;Titolo\nA-9;Brocca\n"));
  show(dialog);
  dialog.openFile(sheet);
  click(dialog, "cmdOK");
  click(dialog, "chkFuori");
  click(dialog, "cmdOK");
  control<QComboBox>(dialog, "cboFiltro")->setCurrentIndex(5);
  auto* plan = control<QTableView>(dialog, "grdPiano");
  EXPECT_EQ(planText(*plan), "-|fuori catalogo|A-1  Tazza|il foglio non lo elenca\n");
  auto* values = control<QTableWidget>(dialog, "grdValori");
  ASSERT_EQ(values->rowCount(), 1);
  EXPECT_EQ(textAt(*values, 0, 0) + " " + textAt(*values, 0, 1) + ">" + textAt(*values, 0, 2), "Fuori catalogo no>sì");
  test::keepPicture(dialog, "foglio_fuori_catalogo");
  plan->model()->setData(plan->model()->index(0, 0), Qt::Unchecked, Qt::CheckStateRole);
  EXPECT_EQ(fromQt(control<QLabel>(dialog, "lblSomme")->text()),
            "Articoli: 1 nuovi, 0 modificati, 0 invariati, 0 tralasciati");
}

TEST_F(TheSheetGuide, ShowsHowFarReadingAndPlanningHaveComeAndEndsThemWhenAsked) {
  std::string rows = "Codice;Titolo\n";
  for (int i = 0; i < 3000; ++i) rows += "N-" + std::to_string(i) + ";Vaso\n";
  ASSERT_TRUE(writeBytes(sheet, rows));
  frmImportaFoglio dialog(*guide, user, {});
  show(dialog);
  user.cancelAtYield = 1;
  dialog.openFile(sheet);
  EXPECT_FALSE(control<QAbstractButton>(dialog, "cmdOK")->isEnabled());
  EXPECT_EQ(control<QTableWidget>(dialog, "grdRighe")->rowCount(), 0);
  EXPECT_EQ(user.progressShown.front().caption, "Lettura del foglio...");
  EXPECT_EQ(user.progressShown.back().caption, "") << "the window of the progress closes";
  user.cancelAtYield = 0;
  dialog.openFile(sheet);
  click(dialog, "cmdOK");
  user.cancelAtYield = user.yields + 2;
  click(dialog, "cmdOK");
  EXPECT_FALSE(guide->hasPlan());
  EXPECT_TRUE(control<QComboBox>(dialog, "cboChiave")->isVisible()) << "the page of the columns stays";
  EXPECT_EQ(user.progressShown.back().caption, "");
  user.cancelAtYield = 0;
  click(dialog, "cmdOK");
  EXPECT_TRUE(control<QTableView>(dialog, "grdPiano")->isVisible());
  EXPECT_EQ(control<QTableView>(dialog, "grdPiano")->model()->rowCount(), 3000);
  const ProgressShown& last = user.progressShown[user.progressShown.size() - 2];
  EXPECT_EQ(last.caption, "Confronto col catalogo...");
  EXPECT_TRUE(last.position > 0.9 * last.maximum && last.position <= last.maximum);
  EXPECT_TRUE(user.shown.empty()) << "whoever cancels knows";
}

TEST_F(TheSheetGuide, SaysWhichColumnIsMissing) {
  ASSERT_TRUE(writeBytes(sheet, "Nome;Prezzo\nTazza;1\n"));
  frmImportaFoglio dialog(*guide, user, {});
  show(dialog);
  dialog.openFile(sheet);
  click(dialog, "cmdOK");
  click(dialog, "cmdOK");
  ASSERT_EQ(user.texts().size(), 1U);
  EXPECT_TRUE(user.texts()[0].starts_with("Nessuna colonna del foglio dice quali sono gli articoli"));
}

TEST_F(TheSheetGuide, TheExportGivesTheTickedColumnsInTheirOrder) {
  const auto tables = sheetTables(session.catalogue, 1);
  ASSERT_TRUE(tables);
  frmEsportaFoglio dialog(*tables, 3, {});
  dialog.chooseFile = [this] { return root / "out.xlsx"; };
  show(dialog);
  EXPECT_EQ(test::namelessControls(dialog), "");
  EXPECT_EQ(fromQt(control<QCheckBox>(dialog, "chkElenco")->text()), "Solo gli articoli dell'&elenco (3)");
  test::keepPicture(dialog, "esporta_foglio");
  click(dialog, "cmdNessuna");
  auto* columns = control<QListWidget>(dialog, "lstColonne");
  columns->item(1)->setCheckState(Qt::Checked);
  columns->item(3)->setCheckState(Qt::Checked);
  click(dialog, "chkElenco");
  click(dialog, "cmdOK");
  EXPECT_EQ(dialog.tag(), "OK");
  EXPECT_EQ(dialog.choice().columns, (std::vector<std::string>{"codice", "titolo"}));
  EXPECT_TRUE(dialog.choice().onlyListed);
}

class TheSheetsInTheWindow : public test::WiredWindow {};

TEST_F(TheSheetsInTheWindow, AreImportedAsOneStepOfUndo) {
  fill(
      "UPDATE articoli SET codice = 'x' || ID;"
      "UPDATE articoli SET codice = 'primo', titolo = 'Prima' WHERE ID = (SELECT MIN(ID) FROM articoli)");
  ASSERT_TRUE(writeBytes(root / "foglio.csv", "codice;titolo\nprimo;Cambiato\n"));
  openWindow();
  whenShown(QStringLiteral("Korvane - Importa da un foglio"), [this](QWidget& shown) {
    auto& dialog = dynamic_cast<frmImportaFoglio&>(shown);
    dialog.openFile(root / "foglio.csv");
    for (int page = 0; page < 3; ++page) click(dialog, "cmdOK");
  });
  ASSERT_TRUE(choose("import.sheet"));
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Importazione completata\n\nArticoli: 0 nuovi, 1 modificati, 0 "
                                                    "invariati, 0 tralasciati"}));
  EXPECT_EQ(stored("titolo", "articoli WHERE codice = 'primo'"), "Cambiato");
  ASSERT_TRUE(choose("undo"));
  EXPECT_EQ(stored("titolo", "articoli WHERE codice = 'primo'"), "Prima");
}

TEST_F(TheSheetsInTheWindow, OfTheSameHeadersKeepTheColumnsThatWereChosen) {
  fill(
      "UPDATE articoli SET codice = 'x' || ID;"
      "UPDATE articoli SET codice = 'primo', titolo = 'Prima' WHERE ID = (SELECT MIN(ID) FROM articoli)");
  openWindow();
  const auto importAs = [this](const std::string& text, const std::string& wanted, bool choosing) {
    ASSERT_TRUE(writeBytes(root / "foglio.csv", text));
    whenShown(QStringLiteral("Korvane - Importa da un foglio"), [this, wanted, choosing](QWidget& shown) {
      auto& dialog = dynamic_cast<frmImportaFoglio&>(shown);
      dialog.openFile(root / "foglio.csv");
      click(dialog, "cmdOK");
      auto* box = control<QComboBox>(dialog, "cboColonna1");
      EXPECT_EQ(fromQt(box->currentText()), wanted);
      if (choosing) {
        box->setCurrentIndex(box->findData(QStringLiteral("titolo")));
        emit box->activated(box->currentIndex());
      }
      click(dialog, "cmdOK");
      click(dialog, "cmdOK");
      if (dialog.isVisible()) QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    ASSERT_TRUE(choose("import.sheet"));
  };
  importAs("codice;Come si chiama\nprimo;Seconda\n", "(non importare)", true);
  EXPECT_EQ(stored("titolo", "articoli WHERE codice = 'primo'"), "Seconda");
  importAs("codice;Come si chiama\nprimo;Terza\n", "Titolo", false);
  EXPECT_EQ(stored("titolo", "articoli WHERE codice = 'primo'"), "Terza");
}

TEST_F(TheSheetsInTheWindow, AreExportedWithTheTickedColumnsOfTheListedArticles) {
  fill("UPDATE articoli SET codice = 'C' || ID, titolo = 'Titolo ' || ID");
  openWindow();
  window->workbench().goToDepartment(stored("MIN(catID)", "articoli"));
  processEvents();
  const auto listed = window->articles().articles().keys();
  ASSERT_FALSE(listed.empty());
  whenShown(QStringLiteral("Korvane - Esporta in un foglio"), [this](QWidget& shown) {
    auto& dialog = dynamic_cast<frmEsportaFoglio&>(shown);
    dialog.chooseFile = [this] { return root / "elenco.csv"; };
    click(dialog, "cmdNessuna");
    auto* columns = control<QListWidget>(dialog, "lstColonne");
    for (const char* name : {"Codice", "Titolo"}) {
      columns->findItems(QString::fromUtf8(name), Qt::MatchExactly)[0]->setCheckState(Qt::Checked);
    }
    control<QCheckBox>(dialog, "chkElenco")->setChecked(true);
    click(dialog, "cmdOK");
  });
  ASSERT_TRUE(choose("export.sheet"));
  EXPECT_EQ(user.texts(),
            (std::vector<std::string>{"Esportazione completata: " + std::to_string(listed.size()) + " articoli"}));
  std::string wanted =
      "\xEF\xBB\xBF"
      "Codice;Titolo\r\n";
  for (const std::int64_t ID : listed) {
    wanted += "C" + std::to_string(ID) + ";Titolo " + std::to_string(ID) + "\r\n";
  }
  const auto written = readBytes(root / "elenco.csv");
  ASSERT_TRUE(written);
  EXPECT_EQ(*written, wanted);
}

TEST_F(TheSheetsInTheWindow, ThatCannotBeWrittenSaySo) {
  openWindow();
  whenShown(QStringLiteral("Korvane - Esporta in un foglio"), [this](QWidget& shown) {
    auto& dialog = dynamic_cast<frmEsportaFoglio&>(shown);
    dialog.chooseFile = [this] { return root / "nessuna_cartella/elenco.csv"; };
    click(dialog, "cmdOK");
  });
  ASSERT_TRUE(choose("export.sheet"));
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_TRUE(user.shown[0].text.starts_with("Impossibile scrivere "));
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
}

}  // namespace
}  // namespace kv
