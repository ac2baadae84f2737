// The dialogs of the import from the accounting package, in their windows.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>

#include "import/accounting/frm_importa_og.h"
#include "import/accounting/frm_importa_ogma_prog.h"
#include "import/accounting/frm_og_choose.h"
#include "wired_window.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheAccountingDialogs : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    source = root / "orsa.db";
    auto made = Database::create(source);
    ASSERT_TRUE(made);
    ASSERT_TRUE(
        made->execute("CREATE TABLE Categoria (Id INTEGER, Nome TEXT); INSERT INTO Categoria VALUES (7, 'Vasi');"
                      "CREATE TABLE Articoli (Id INTEGER, IdCategoria INTEGER, Codice TEXT, Descrizione TEXT,"
                      " iva DOUBLE, Vendita1 DOUBLE);"
                      "INSERT INTO Articoli VALUES (1, 7, 'A', 'Vaso', 22, 3.5), (2, 9, 'B', 'Fuori', 22, 1);"
                      "CREATE TABLE Nomi (ID INTEGER, nome TEXT, path TEXT)"));
    ASSERT_TRUE(made->execute("INSERT INTO Nomi VALUES (4, 'Uno', 'manca.mdb'), (9, 'Due', '" + source + "')"));
  }
  /// Enter in a dialog presses its default button.
  static void accept(QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); }
  static std::string shownTable(const QTableView& view) {
    const QAbstractItemModel& model = *view.model();
    std::string text;
    for (int row = -1; row < model.rowCount(); ++row) {
      for (int column = 0; column < model.columnCount(); ++column) {
        const QVariant cell = row < 0 ? model.headerData(column, Qt::Horizontal) : model.index(row, column).data();
        text += (column > 0 ? "|" : "") + fromQt(cell.toString());
      }
      text += "\n";
    }
    return text;
  }
  std::string source;
};

TEST_F(TheAccountingDialogs, TheChoiceListsInstalledVariantsAndReturnsTheNumber) {
  ASSERT_TRUE(storeAccountingPath(settings, accountingVariants()[1], source));
  ASSERT_TRUE(storeAccountingPath(settings, accountingVariants()[5], source));
  frmOGChoose dialog(settings, user);
  show(dialog);
  EXPECT_EQ(test::namelessControls(dialog), "");
  auto* list = control<QListWidget>(dialog, "lstVarianti");
  ASSERT_EQ(list->count(), 2);
  EXPECT_EQ(list->currentRow(), 0);
  list->setCurrentRow(1);
  EXPECT_EQ(fromQt(control<QLineEdit>(dialog, "txtPercorso")->text()), source);
  test::keepPicture(dialog, "og_choose");
  accept(dialog);
  EXPECT_EQ(dialog.tag(), "5");
}

TEST_F(TheAccountingDialogs, AFolderChosenForAVariantInstallsItAndOkStoresIt) {
  frmOGChoose dialog(settings, user);
  show(dialog);
  accept(dialog);
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Selezionare una variante di Orsa Gestionale"}));
  EXPECT_TRUE(control<QLabel>(dialog, "lblNota")->isVisible()) << "an empty list says how to fill it";
  control<QComboBox>(dialog, "cboVariante")->setCurrentIndex(3);
  user.folders = {shop};
  click(dialog, "cmdCartella");
  EXPECT_EQ(control<QListWidget>(dialog, "lstVarianti")->count(), 1);
  EXPECT_EQ(accountingPath(settings, accountingVariants()[3]), "");
  accept(dialog);
  EXPECT_EQ(dialog.tag(), "3");
  EXPECT_EQ(accountingPath(settings, accountingVariants()[3]), shop);
}

TEST_F(TheAccountingDialogs, AFileChosenForAVariantInstallsItAndOkStoresIt) {
  frmOGChoose dialog(settings, user);
  show(dialog);
  control<QComboBox>(dialog, "cboVariante")->setCurrentIndex(5);
  const auto choose = [&dialog](const std::string& path) {
    test::whenModal([&path](QWidget& window) {
      auto* files = qobject_cast<QFileDialog*>(&window);
      ASSERT_NE(files, nullptr);
      EXPECT_EQ(fromQt(files->windowTitle()), "Dati di Orsa Gestionale");
      if (path.empty()) {
        QTest::keyClick(files, Qt::Key_Escape);
        return;
      }
      files->selectFile(toQt(path));
      QMetaObject::invokeMethod(files, "accept");
    });
    QTest::keyClick(control<QPushButton>(dialog, "cmdSfoglia"), Qt::Key_Space);
  };
  choose("");
  EXPECT_EQ(control<QListWidget>(dialog, "lstVarianti")->count(), 0) << "Escape chooses nothing";
  choose(source);
  EXPECT_EQ(fromQt(control<QLineEdit>(dialog, "txtPercorso")->text()), source);
  EXPECT_EQ(control<QListWidget>(dialog, "lstVarianti")->count(), 1);
  EXPECT_EQ(accountingPath(settings, accountingVariants()[5]), "");
  accept(dialog);
  EXPECT_EQ(dialog.tag(), "5");
  EXPECT_EQ(accountingPath(settings, accountingVariants()[5]), source);
}

TEST_F(TheAccountingDialogs, EscapeFromTheChoiceStoresNothing) {
  frmOGChoose dialog(settings, user);
  show(dialog);
  user.folders = {shop};
  click(dialog, "cmdCartella");
  expectEscapeLeaves(dialog);
  EXPECT_TRUE(installedVariants(settings).empty());
}

TEST_F(TheAccountingDialogs, OkWithoutATargetPriceListSaysSo) {
  frmImportaOG dialog(savedAccountingOptions(shop, accountingVariants()[0]), user);
  show(dialog);
  EXPECT_EQ(test::namelessControls(dialog), "");
  accept(dialog);
  EXPECT_EQ(user.shown, (std::vector<test::Shown>{{"Impostare il listino di destinazione", Icon::Exclamation}}));
  EXPECT_TRUE(dialog.isVisible());
  control<QComboBox>(dialog, "cboListino")->setCurrentIndex(2);
  accept(dialog);
  EXPECT_EQ(dialog.tag(), "0100112");
}

TEST_F(TheAccountingDialogs, ASavedLineFillsTheControlsAndIsReadBackEqual) {
  for (const char* line : {"1231013", "0190109"}) {
    frmImportaOG dialog(readAccountingOptions(line, 2), user);
    show(dialog);
    EXPECT_EQ(dialog.findChild<QCheckBox*>(QStringLiteral("chkVista0")), nullptr);
    accept(dialog);
    EXPECT_EQ(dialog.tag(), line);
  }
}

TEST_F(TheAccountingDialogs, TheThirdGenerationHasABoxForEachVisibility) {
  frmImportaOG3 dialog(readAccountingOptions("12310130101", 3), user);
  show(dialog);
  EXPECT_EQ(test::namelessControls(dialog), "");
  int box = 0;
  for (const char* caption : {"Sempre visibili", "Visibili solo in scarico e fatturazione",
                              "Visibili solo in operazioni di carico", "Invisibili"}) {
    const std::string name = "chkVista" + std::to_string(box++);
    EXPECT_EQ(control<QCheckBox>(dialog, name.c_str())->text().remove(QLatin1Char('&')), caption);
  }
  EXPECT_TRUE(control<QCheckBox>(dialog, "chkVista1")->isChecked());
  test::keepPicture(dialog, "importa_og3");
  QTest::keyClick(control<QCheckBox>(dialog, "chkVista0"), Qt::Key_Space);
  accept(dialog);
  EXPECT_EQ(dialog.tag(), "12310131101");
}

TEST_F(TheAccountingDialogs, EscapeFromTheOptionsReturnsNothing) {
  frmImportaOG3 dialog(readAccountingOptions("", 3), user);
  show(dialog);
  expectEscapeLeaves(dialog);
}

TEST_F(TheAccountingDialogs, ThePreviewFollowsTheCompanyAndWritesNothing) {
  AccountingRequest request;
  request.variant = accountingVariants()[2];
  request.line = "0100100";
  request.path = source;
  const std::string before = stored("COUNT(*)", "articoli");
  frmImportaOGMAProg dialog(session, settings, request);
  show(dialog);
  EXPECT_EQ(test::namelessControls(dialog), "");
  const auto* preview = control<QTableView>(dialog, "grdAnteprima");
  const auto* totals = control<QLabel>(dialog, "lblSomme");
  EXPECT_EQ(fromQt(totals->text()), "Il database \"manca.mdb\" non può essere aperto");
  EXPECT_EQ(preview->model()->rowCount(), 0);
  control<QComboBox>(dialog, "cboSelect")->setCurrentIndex(1);
  EXPECT_TRUE(fromQt(totals->text()).starts_with("Reparti: 1 nuovi, 0 invariati\nArticoli: 1 nuovi"));
  EXPECT_EQ(shownTable(*preview),
            "Esito|Codice|Titolo|Prezzo|Motivo\nnuovo|dgf7|Vasi||\nnuovo|A|Vaso|3,50|\n"
            "tralasciato|B|Fuori||reparto dgf9 mancante\n");
  test::keepPicture(dialog, "importa_ogma_prog");
  EXPECT_EQ(test::defaultButton(dialog), "Importa");
  accept(dialog);
  EXPECT_EQ(frmImportaOGMAProg::companyOf(dialog.tag()), "9");
  EXPECT_EQ(stored("COUNT(*)", "articoli"), before);
  EXPECT_FALSE(fileExists(shop + "/og.ini"));
}

TEST_F(TheAccountingDialogs, AVariantWithoutCompaniesShowsItsPreviewAlone) {
  AccountingRequest request;
  request.line = "0110100";
  request.path = source;
  request.variant = accountingVariants()[0];
  frmImportaOGMAProg dialog(session, settings, request);
  show(dialog);
  EXPECT_EQ(dialog.findChild<QComboBox*>(QStringLiteral("cboSelect")), nullptr);
  EXPECT_EQ(shownTable(*control<QTableView>(dialog, "grdAnteprima")),
            "Esito|Codice|Titolo|Prezzo|Offerta|Motivo\nnuovo|dgf7|Vasi|||\nnuovo|A|Vaso|3,50|3,50|\n"
            "tralasciato|B|Fuori|||reparto dgf9 mancante\n");
  expectEscapeLeaves(dialog);
}

class TheAccountingImportInTheWindow : public test::WiredWindow {
 protected:
  /// The window of a shop whose accounting package has one article.
  void openWithData() {
    const std::string source = root / "orsa.db";
    auto made = Database::create(source);
    ASSERT_TRUE(made && made->execute("CREATE TABLE Categoria (Id INTEGER, Nome TEXT);"
                                      "INSERT INTO Categoria VALUES (7, 'Vasi');"
                                      "CREATE TABLE Articoli (Id INTEGER, IdCategoria INTEGER, Codice TEXT,"
                                      " Descrizione TEXT, iva DOUBLE, Vendita1 DOUBLE);"
                                      "INSERT INTO Articoli VALUES (1, 7, 'A1', 'Vaso', 22, 3.5)"));
    ASSERT_TRUE(storeAccountingPath(settings, accountingVariants()[0], source));
    openWindow();
  }
  /// Presses Enter in this many dialogs, one after the other.
  void acceptNext(int dialogs) {
    if (dialogs == 0) return;
    whenShown(QStringLiteral("Korvane - Importa da Orsa Gestionale"), [this, dialogs](QWidget& dialog) {
      acceptNext(dialogs - 1);
      QTest::keyClick(&dialog, Qt::Key_F1);
      QTest::keyClick(&dialog, Qt::Key_Return);
    });
  }
};

TEST_F(TheAccountingImportInTheWindow, GoesThroughThreeDialogsAndIsOneStepOfUndo) {
  ASSERT_TRUE(saveAccountingLine(shop, accountingVariants()[0], "0100100"));
  openWithData();
  const auto counted = [this] { return window->workbench().sets().statusLine(); };
  const std::string before = counted();
  acceptNext(3);
  ASSERT_TRUE(choose("import.accounting"));
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"Importazione completata"}));
  EXPECT_EQ(opened, std::vector<std::string>(3, application + "/help/pagine/orsa.htm")) << "F1 in each of them";
  EXPECT_EQ(stored("COUNT(*)", "articoli WHERE codice = 'A1'"), "1");
  EXPECT_EQ(stored("COUNT(*)", "categorie WHERE ID = 'dgf7'"), "1");
  EXPECT_TRUE(counted().ends_with("/" + stored("COUNT(*)", "articoli"))) << counted();
  EXPECT_NE(counted(), before);
  ASSERT_TRUE(choose("undo"));
  EXPECT_EQ(counted(), before);
  EXPECT_EQ(stored("COUNT(*)", "articoli WHERE codice = 'A1'"), "0");
  EXPECT_EQ(stored("COUNT(*)", "categorie WHERE ID = 'dgf7'"), "0");
}

TEST_F(TheAccountingImportInTheWindow, EscapeFromItsPreviewChangesNothing) {
  openWithData();
  const QString title = QStringLiteral("Korvane - Importa da Orsa Gestionale");
  const std::string before =
      stored("group_concat(ID || codice || titolo)", "articoli") + stored("group_concat(ID)", "categorie");
  bool isPreview = false;
  whenShown(title, [&](QWidget& choice) {
    whenShown(title, [&](QWidget& options) {
      whenShown(title, [&](QWidget& preview) {
        isPreview = preview.findChild<QTableView*>(QStringLiteral("grdAnteprima")) != nullptr;
        QTest::keyClick(&preview, Qt::Key_Escape);
      });
      control<QComboBox>(options, "cboListino")->setCurrentIndex(0);
      QTest::keyClick(&options, Qt::Key_Return);
    });
    QTest::keyClick(&choice, Qt::Key_Return);
  });
  ignore(choose("import.accounting"), "nothing was imported");
  EXPECT_TRUE(isPreview);
  EXPECT_EQ(stored("group_concat(ID || codice || titolo)", "articoli") + stored("group_concat(ID)", "categorie"),
            before);
  EXPECT_FALSE(fileExists(shop + "/og.ini"));
  EXPECT_FALSE(window->workbench().history().canUndo());
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(TheAccountingImportInTheWindow, IsOffUntilTheDataAreFoundOnThisMachine) {
  openWindow();
  const QAction* import = window->menus().action("import.accounting");
  const QAction* search = window->menus().action("import.accountingData");
  EXPECT_FALSE(import->isEnabled());
  EXPECT_TRUE(search->isVisible());
  const QString title = QStringLiteral("Korvane - Importa da Orsa Gestionale");
  whenShown(title, [&](QWidget& dialog) {
    whenShown(title, [](QWidget& options) { QTest::keyClick(&options, Qt::Key_Escape); });
    user.folders = {shop};
    click(dialog, "cmdCartella");
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  ASSERT_TRUE(choose("import.accountingData"));
  EXPECT_EQ(accountingPath(settings, accountingVariants()[0]), shop);
  EXPECT_TRUE(import->isEnabled());
  EXPECT_FALSE(search->isVisible());
}

TEST_F(TheAccountingImportInTheWindow, IsOnForTheProgramAloneToo) {
  ASSERT_TRUE(settings.set("OGMA2002/AppPath", "AppPath", "C:\\Orsa"));
  openWindow();
  EXPECT_TRUE(window->menus().action("import.accounting")->isEnabled());
}

}  // namespace
}  // namespace kv
