// The shipping dialog, driven as a merchant drives it.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>

#include "captions.h"
#include "commerce/shipping/frm_spedizione.h"
#include "dialog_fixture.h"
#include "platform/qt/frm_field_mark.h"
#include "support/failing_store.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheShippingDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    ASSERT_TRUE(copyTree(std::string(KORVANE_APP_DATA) + "/new/code", shop + "/code"));
    openDialog();
  }
  void openDialog() {
    ShippingHooks hooks;
    hooks.configure = [this] { ++configured; };
    dialog.emplace(session, env, hooks);
    show(*dialog);
    pages = control<QTabWidget>(*dialog, "tabSpedizione");
  }
  QLineEdit* line(const char* column) const { return control<QLineEdit>(*dialog, column); }
  /// Types over a field as somebody who came with Tab, and leaves it with Tab.
  static void type(QWidget* field, const char* text) {
    field->setFocus(Qt::TabFocusReason);
    QTest::keyClicks(field, QString::fromUtf8(text));
    QTest::keyClick(field, Qt::Key_Tab);
  }
  void goToCosts() const { pages->setCurrentIndex(2); }

  int configured = 0;
  std::optional<frmSpedizione> dialog;
  QTabWidget* pages = nullptr;
};

TEST_F(TheShippingDialog, NamesEveryControlAndHasOkAsItsDefault) {
  EXPECT_EQ(fromQt(dialog->windowTitle()), "Korvane - Spese di spedizione");
  EXPECT_EQ(test::defaultButton(*dialog), "OK");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  EXPECT_EQ(test::missingCaptions(
                *dialog, {"Importo dell'ordine", "Peso", "Gli ordini provenienti da questa zona sono soggetti ad IVA",
                          "Ordina alfabeticamente nel negozio", "IVA spese  (%):", "Ordini fino a", "Peso fino a",
                          "Importo spese", "Oltre:",
                          "Dopo aver selezionato i metodi di pagamento, affinché funzionino è necessario configurarli "
                          "nell'apposita schermata."}),
            "");
  for (int page = 0; page < pages->count(); ++page) {
    pages->setCurrentIndex(page);
    EXPECT_EQ(test::repeatedKeys(*dialog), "") << page;
    test::keepPicture(*dialog, "shipping" + std::to_string(page));
  }
}

TEST_F(TheShippingDialog, ShowsTheFourMethodsAndEnablesTheActiveOnes) {
  auto* modules = control<QComboBox>(*dialog, "cboMetodo1");
  EXPECT_EQ(modules->count(), 15);
  EXPECT_EQ(modules->currentText(), "Contrassegno");
  EXPECT_EQ(line("txtNome2")->text(), "Bonifico anticipato");
  EXPECT_TRUE(control<QComboBox>(*dialog, "cboMetodo2")->isEnabled());
  EXPECT_FALSE(control<QComboBox>(*dialog, "cboMetodo3")->isEnabled());
  EXPECT_FALSE(line("txtNome3")->isEnabled());
  EXPECT_TRUE(line("m1imp1")->isEnabled());
  EXPECT_FALSE(line("m3imp1")->isEnabled());
}

TEST_F(TheShippingDialog, TickingAMethodEnablesItAndBringsItsNameTheFocus) {
  QTest::keyClick(control<QCheckBox>(*dialog, "chkMetodo3"), Qt::Key_Space);
  EXPECT_TRUE(line("txtNome3")->isEnabled());
  EXPECT_TRUE(line("txtNome3")->hasFocus());
  EXPECT_TRUE(line("m3imp1")->isEnabled());
  EXPECT_EQ(control<QComboBox>(*dialog, "cboPagamento")->count(), 3);
  EXPECT_EQ(stored("attivo3", "pagamento"), "1");
}

TEST_F(TheShippingDialog, ARefusedUntickingLeavesTheBoxTicked) {
  auto* box = control<QCheckBox>(*dialog, "chkMetodo2");
  QTest::keyClick(box, Qt::Key_Space);
  EXPECT_TRUE(box->isChecked());
  EXPECT_EQ(user.texts(),
            std::vector<std::string>{"Questo metodo di pagamento è preselezionato e non può essere eliminato"});
  EXPECT_EQ(stored("attivo2", "pagamento"), "1");
}

TEST_F(TheShippingDialog, AnEmptiedNameBecomesThatOfTheModule) {
  auto* name = line("txtNome1");
  name->setFocus();
  name->selectAll();
  QTest::keyClick(name, Qt::Key_Delete);
  QTest::keyClick(name, Qt::Key_Tab);
  EXPECT_EQ(name->text(), "Contrassegno");
  type(name, "Alla consegna");
  EXPECT_EQ(stored("nome1", "pagamento"), "Alla consegna");
}

TEST_F(TheShippingDialog, ConfiguringIsAButtonAway) {
  click(*dialog, "cmdConfigura");
  EXPECT_EQ(configured, 1);
}

TEST_F(TheShippingDialog, EnterInTheListOfCountriesAddsAndKeepsTheDialogOpen) {
  pages->setCurrentIndex(1);
  auto* box = control<QComboBox>(*dialog, "cboAggiungi");
  auto* grid = control<QTableWidget>(*dialog, "grdPaesi");
  const int before = grid->rowCount();
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdAggiungi")->isEnabled());
  QTest::keyClicks(box->lineEdit(), "Atlantide");
  EXPECT_TRUE(control<QPushButton>(*dialog, "cmdAggiungi")->isEnabled());
  QTest::keyClick(box->lineEdit(), Qt::Key_Return);
  EXPECT_TRUE(dialog->isVisible());
  ASSERT_EQ(grid->rowCount(), before + 1);
  EXPECT_EQ(grid->currentRow(), before);
  EXPECT_EQ(grid->item(before, 0)->text(), "Atlantide");
  EXPECT_EQ(box->currentText(), "");
  EXPECT_EQ(fromQt(box->toolTip()), "Premere il tasto \"Invio\" per aggiungere questo paese alla lista");
}

TEST_F(TheShippingDialog, ACountryIsDeletedAndTheNextOneIsCurrent) {
  pages->setCurrentIndex(1);
  auto* grid = control<QTableWidget>(*dialog, "grdPaesi");
  grid->setCurrentCell(1, 1);
  click(*dialog, "cmdElimina");
  EXPECT_EQ(grid->item(grid->currentRow(), 0)->text(), "Belgio");
  grid->setCurrentCell(grid->rowCount() - 1, 1);
  click(*dialog, "cmdElimina");
  EXPECT_EQ(grid->currentRow(), grid->rowCount() - 1);
}

TEST_F(TheShippingDialog, TheZoneOfACountryIsChosenInItsCell) {
  pages->setCurrentIndex(1);
  auto* grid = control<QTableWidget>(*dialog, "grdPaesi");
  grid->setFocus();
  grid->setCurrentCell(1, 1);
  QTest::keyClick(grid, Qt::Key_F2);
  auto* zone = control<QComboBox>(*dialog, "cboZona");
  EXPECT_EQ(zone->currentText(), "2 - Unione Europea");
  zone->setCurrentIndex(4);
  QTest::keyClick(zone, Qt::Key_Return);
  QApplication::processEvents();
  EXPECT_EQ(stored("zona", "paesi WHERE ID = 2"), "5");
  EXPECT_TRUE(dialog->isVisible());
}

TEST_F(TheShippingDialog, ACostTakesTheCharactersOfANumberAloneAndIsStoredWhenLeft) {
  goToCosts();
  type(line("m1sp1"), "1a2,-5");
  EXPECT_EQ(line("m1sp1")->text(), "12,5");
  EXPECT_EQ(stored("m1sp1", "zona1"), "12.5");
  type(line("m1sp1"), "1,2,3");
  EXPECT_EQ(line("m1sp1")->text(), "12,5");
}

TEST_F(TheShippingDialog, APastedCostIsReadInEitherNotationAndSaysWhatIsUncertain) {
  goToCosts();
  auto* cost = line("m1sp1");
  const auto paste = [&](const char* text) {
    QApplication::clipboard()->setText(QString::fromUtf8(text));
    cost->setFocus(Qt::TabFocusReason);
    cost->selectAll();
    QTest::keyClick(cost, Qt::Key_V, Qt::ControlModifier);
    const auto* mark = cost->findChild<FieldMark*>();
    const std::string said = mark == nullptr ? std::string() : fromQt(mark->reason());
    QTest::keyClick(cost, Qt::Key_Tab);
    return stored("m1sp1", "zona1") + "|" + said;
  };
  EXPECT_EQ(paste("12.50"), "12.5|");
  EXPECT_EQ(paste("€ 1,234.50\n"), "1234.5|");
  EXPECT_EQ(paste("1.250"), "1250|\"1.250\" è stato letto come 1250. Se era 1,250, correggerlo.");
  EXPECT_FALSE(cost->findChild<FieldMark*>()->reason().isEmpty()) << "it stays until the field is changed";
  EXPECT_EQ(paste("12 pezzi"), "1250|\"12 pezzi\" non è un numero: è rimasto il valore precedente.");
  EXPECT_EQ(paste("1,2,3"), "1250|\"1,2,3\" non è un numero: è rimasto il valore precedente.");
  EXPECT_EQ(paste("7,5"), "7.5|");
}

TEST_F(TheShippingDialog, ThePointOfTheKeypadTypesTheDecimalSeparator) {
  goToCosts();
  auto* cost = line("m1sp1");
  cost->setFocus(Qt::TabFocusReason);
  QTest::keyClick(cost, Qt::Key_7);
  QTest::keyClick(cost, Qt::Key_Period, Qt::KeypadModifier);
  QTest::keyClick(cost, Qt::Key_5);
  QTest::keyClick(cost, Qt::Key_Tab);
  EXPECT_EQ(cost->text(), "7,5");
  EXPECT_EQ(stored("m1sp1", "zona1"), "7.5");
}

TEST_F(TheShippingDialog, WhatIsTypedBelongsToTheZoneThatWasShown) {
  goToCosts();
  auto* tabs = control<QTabBar>(*dialog, "tabZone");
  line("m2sp1")->setFocus(Qt::TabFocusReason);
  QTest::keyClicks(line("m2sp1"), "3,5");
  tabs->setCurrentIndex(1);
  EXPECT_EQ(stored("m2sp1", "zona1"), "3.5");
  EXPECT_EQ(stored("m2sp1", "zona2"), "16.5");
  EXPECT_EQ(line("m2sp1")->text(), "16,5");
  EXPECT_TRUE(control<QCheckBox>(*dialog, "chkIvaOk2")->isVisibleTo(dialog.operator->()));
  EXPECT_FALSE(control<QCheckBox>(*dialog, "chkIvaOk1")->isVisibleTo(dialog.operator->()));
}

TEST_F(TheShippingDialog, TheBasisOfTheCostsChoosesThePanel) {
  goToCosts();
  EXPECT_TRUE(line("m1imp1")->isVisible());
  QTest::keyClick(control<QRadioButton>(*dialog, "optImpPeso1"), Qt::Key_Space);
  EXPECT_TRUE(line("m1peso9")->isVisible());
  EXPECT_FALSE(line("m1imp1")->isVisible());
  EXPECT_EQ(stored("imppeso", "pagamento"), "1");
  test::keepPicture(*dialog, "shipping_weight");
}

TEST_F(TheShippingDialog, OkStaysOnTheTabOfTheZoneThatLacksTheMethod) {
  ASSERT_TRUE(session.catalogue.execute("UPDATE pagamento SET paesesel = 2, selezionato = 1"));
  click(*dialog, "cmdOK");
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(pages->currentIndex(), 2);
  EXPECT_EQ(control<QTabBar>(*dialog, "tabZone")->currentIndex(), 1);
  EXPECT_EQ(line("m2sp1")->text(), "16,5");
}

TEST_F(TheShippingDialog, AnOrderIsTriedWithTheTablesAsTheyAreTyped) {
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET ivacompresa = 1, valuta1 = '€', decimali1 = 1"));
  goToCosts();
  type(line("m2sp1"), "5");
  pages->setCurrentIndex(3);
  EXPECT_EQ(control<QComboBox>(*dialog, "cboProvaMetodo")->currentText(), "Bonifico anticipato");
  EXPECT_EQ(control<QComboBox>(*dialog, "cboProvaPaese")->currentText(), "Italia");
  type(line("txtProvaImporto"), "10");
  EXPECT_EQ(fromQt(line("txtProva")->text()), "Spese: € 6,10, totale: € 6,10");
  auto* country = control<QComboBox>(*dialog, "cboProvaPaese");
  country->setFocus();
  auto* method = control<QComboBox>(*dialog, "cboProvaMetodo");
  method->setFocus();
  QTest::keyClick(method, Qt::Key_Home);
  QTest::keyClick(country, Qt::Key_Down);
  EXPECT_EQ(fromQt(line("txtProva")->text()), "Questo metodo non è ammesso per il paese scelto");
  test::keepPicture(*dialog, "shipping_trial");
}

TEST_F(TheShippingDialog, GapsOfTheTablesAreNamedBesideTheTrial) {
  auto* gaps = control<QListWidget>(*dialog, "lstAvvisi");
  pages->setCurrentIndex(3);
  EXPECT_EQ(gaps->count(), 0);
  goToCosts();
  ASSERT_TRUE(session.catalogue.execute("UPDATE zona3 SET pag2 = 0"));
  pages->setCurrentIndex(3);
  ASSERT_EQ(gaps->count(), 1);
  EXPECT_EQ(fromQt(gaps->item(0)->text()), "Zona 3: nessun metodo è ammesso");
}

TEST_F(TheShippingDialog, EnterStoresTheFieldAndCloses) {
  goToCosts();
  line("m1sp3")->setFocus(Qt::TabFocusReason);
  QTest::keyClicks(line("m1sp3"), "7");
  QTest::keyClick(line("m1sp3"), Qt::Key_Return);
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(stored("m1sp3", "zona1"), "7");
}

TEST_F(TheShippingDialog, EscapeLeavesWithoutTheZoneOfTheCountry) {
  auto* country = control<QComboBox>(*dialog, "cboPaese");
  country->setFocus();
  QTest::keyClick(country, Qt::Key_Down);
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(stored("paesesel", "pagamento"), "2");
  EXPECT_EQ(stored("zonasel", "pagamento"), "1");
}

TEST_F(TheShippingDialog, WhatTheDiskDoesNotTakeStaysInItsFieldMarkedAndIsStoredByTheNextOk) {
  const auto reason = [](const QWidget* field) { return fromQt(field->findChild<FieldMark*>()->reason()); };
  const std::string before = stored("nome1", "pagamento"), cost = stored("m1sp1", "zona1");
  {
    test::FailingStore full(1, test::AfterFailure::FailsToo, test::FailingStore::fullDisk);
    full.onlyFor("UPDATE");
    QLineEdit* name = line("txtNome1");
    name->setFocus();
    name->selectAll();
    type(name, "Corriere veloce");
    EXPECT_EQ(name->text(), "Corriere veloce");
    EXPECT_TRUE(reason(name).starts_with("Non salvato. Il disco è pieno")) << reason(name);
    EXPECT_EQ(user.shown.size(), 1U);
    goToCosts();
    type(line("m1sp1"), "77,5");
    EXPECT_EQ(line("m1sp1")->text(), "77,5");
    EXPECT_TRUE(reason(line("m1sp1")).starts_with("Non salvato. ")) << reason(line("m1sp1"));
    control<QTabBar>(*dialog, "tabZone")->setCurrentIndex(1);
    EXPECT_EQ(control<QTabBar>(*dialog, "tabZone")->currentIndex(), 0) << "the zone of what is not stored stays";
    EXPECT_EQ(line("m1sp1")->text(), "77,5");
    click(*dialog, "cmdOK");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(pages->currentIndex(), 0) << "where the first of them is";
    EXPECT_EQ(user.shown.size(), 1U) << "told once";
  }
  EXPECT_EQ(stored("nome1", "pagamento"), before);
  EXPECT_EQ(stored("m1sp1", "zona1"), cost);
  click(*dialog, "cmdOK");
  EXPECT_EQ(stored("nome1", "pagamento"), "Corriere veloce");
  EXPECT_EQ(stored("m1sp1", "zona1"), "77.5");
  EXPECT_EQ(reason(line("txtNome1")) + reason(line("m1sp1")), "");
}

}  // namespace
}  // namespace kv
