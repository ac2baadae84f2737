// Shipping and variants opened from the main window: one step of undo, and Annulla restores the tables.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include "commerce/variants/frm_variant_grid.h"
#include "forms/wired_window.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

class SalesInTheWindow : public WiredWindow {
 protected:
  /// Rows of these tables as text, and the last automatic numbers.
  std::string rowsOf(const std::vector<std::string>& tables) {
    std::string text;
    for (const std::string& table : tables) {
      auto rows = checked(session.catalogue.prepare("SELECT * FROM " + table + " ORDER BY 1"));
      EXPECT_TRUE(rows) << table;
      for (auto more = rows->step(); more && *more; more = rows->step()) {
        for (int i = 0; i < rows->columnCount(); ++i) text += std::string(rows->text(i)) + "|";
        text += "\n";
      }
    }
    return text;
  }
  void openSite() {
    openWindow();
    goTab(Tab::Site);
  }
  void openArticle() {
    openWindow();
    window->workbench().MostraArticolo(1);
    processEvents();
  }
  void inShipping(std::function<void(QWidget&)> act) {
    whenShown(QStringLiteral("Korvane - Spese di spedizione"), std::move(act));
  }
  /// Acts in the menu that opens next.
  static void whenPopup(const std::function<void(QMenu&)>& act) {
    QTimer::singleShot(0, qApp, [act] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      act(*menu);
    });
  }
  void inVariants(std::function<void(QWidget&)> act) {
    whenShown(QStringLiteral("Korvane - Varianti articolo"), std::move(act));
  }
  std::string shipping() {
    return rowsOf({"paesi", "pagamento", "zona1", "zona2", "zona3", "zona4", "zone", "sqlite_sequence"});
  }
  std::string variantTablesText() { return rowsOf({"opzioni", "dettagliop", "sqlite_sequence"}); }
  std::string temporary() {
    const auto count = session.catalogue.scalar("SELECT COUNT(*) FROM sqlite_master WHERE substr(name, 1, 4) = 'temp'");
    return count ? asText(*count) : "failed";
  }
  static void type(QWidget& dialog, const char* name, const char* text) {
    auto* field = control<QLineEdit>(dialog, name);
    field->setFocus(Qt::TabFocusReason);
    field->selectAll();
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Tab);
  }
};

TEST_F(SalesInTheWindow, AnnullaOfShippingRestoresAllButTheZonesFiveToEight) {
  openSite();
  const std::string before = shipping();
  inShipping([this](QWidget& dialog) {
    EXPECT_EQ(temporary(), "7");
    control<QTabWidget>(dialog, "tabSpedizione")->setCurrentIndex(2);
    type(dialog, "m1sp1", "77");
    control<QTabBar>(dialog, "tabZone")->setCurrentIndex(5);
    type(dialog, "m1sp1", "66");
    control<QComboBox>(dialog, "cboAggiungi")->setEditText("Atlantide");
    click(dialog, "cmdAggiungi");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  ASSERT_TRUE(choose("shipping"));
  EXPECT_EQ(shipping(), before);
  EXPECT_EQ(stored("m1sp1", "zona6"), "66");
  EXPECT_EQ(temporary(), "0");
  EXPECT_EQ(window->workbench().history().undoName(), "Spese di spedizione");
  ASSERT_TRUE(choose("undo"));
  EXPECT_EQ(stored("m1sp1", "zona6"), "0");
}

TEST_F(SalesInTheWindow, AnnullaWithoutAChangeIsNoStep) {
  openSite();
  inShipping([](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
  ASSERT_TRUE(choose("shipping"));
  EXPECT_FALSE(window->workbench().history().canUndo());
}

TEST_F(SalesInTheWindow, OkOfShippingIsOneStepThatIsUndoneAndRedone) {
  openSite();
  const std::string before = shipping();
  inShipping([](QWidget& dialog) {
    control<QTabWidget>(dialog, "tabSpedizione")->setCurrentIndex(2);
    type(dialog, "m1sp1", "77");
    type(dialog, "m1sp2", "78");
    QTest::keyClick(control<QCheckBox>(dialog, "chkAlfabetico"), Qt::Key_Space);
    click(dialog, "cmdOK");
  });
  ASSERT_TRUE(choose("shipping"));
  const std::string after = shipping();
  EXPECT_NE(after, before);
  EXPECT_EQ(temporary(), "0");
  ASSERT_TRUE(choose("undo"));
  EXPECT_EQ(shipping(), before);
  ASSERT_TRUE(choose("redo"));
  EXPECT_EQ(shipping(), after);
}

TEST_F(SalesInTheWindow, APaymentSystemConfiguredFromShippingStaysAfterAnnullaAsOneStep) {
  openSite();
  const auto conf = [this] { return readBytes(shop + "/code/Omnipay/conf.ini").value_or("(missing)"); };
  const std::string before = shipping(), accounts = conf();
  inShipping([this](QWidget& dialog) {
    control<QTabWidget>(dialog, "tabSpedizione")->setCurrentIndex(2);
    type(dialog, "m1sp1", "77");
    whenShown(QStringLiteral("Korvane - Configurazione sistemi di pagamento"), [this](QWidget& systems) {
      whenShown(QStringLiteral("Korvane - Omnipay"), [](QWidget& account) {
        control<QLineEdit>(account, "txt_sto")->setText(QStringLiteral("4711"));
        click(account, "cmdOK");
      });
      click(systems, "cmdConfigura8");
      click(systems, "cmdChiudi");
    });
    click(dialog, "cmdConfigura");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  ASSERT_TRUE(choose("shipping"));
  EXPECT_EQ(shipping(), before);
  const std::string configured = conf();
  EXPECT_NE(configured.find("sto=4711"), std::string::npos);
  EXPECT_EQ(window->workbench().history().undoName(), "Spese di spedizione");
  ASSERT_TRUE(choose("undo"));
  EXPECT_EQ(conf(), accounts);
  ASSERT_TRUE(choose("redo"));
  EXPECT_EQ(conf(), configured);
}

TEST_F(SalesInTheWindow, OkOfVariantsIsOneStepThatIsUndoneAndRedone) {
  openArticle();
  const auto rows = [this] { return rowsOf({"opzioni", "dettagliop"}); };
  const std::string before = rows();
  inVariants([](QWidget& dialog) {
    QTest::keyClick(control<QTableWidget>(dialog, "DBGrid1"), Qt::Key_D, Qt::ControlModifier);
    QTest::keyClick(control<QTableWidget>(dialog, "DBGrid2"), Qt::Key_Insert);
    control<QCheckBox>(dialog, "chkNoDiff")->toggle();
    click(dialog, "cmdOK");
  });
  const std::string setting = stored("nodiff");
  run("article.variant1");
  const std::string after = rows(), chosen = stored("opzione1", "articoli WHERE ID = 1");
  EXPECT_NE(after, before);
  EXPECT_NE(stored("nodiff"), setting);
  ASSERT_TRUE(choose("undo"));
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(stored("nodiff"), setting);
  EXPECT_FALSE(window->workbench().history().canUndo()) << "rows, settings and slot are one step";
  ASSERT_TRUE(choose("redo"));
  EXPECT_EQ(rows(), after);
  EXPECT_EQ(stored("opzione1", "articoli WHERE ID = 1"), chosen);
}

TEST_F(SalesInTheWindow, AnnullaOfVariantsRestoresRowsAndSerialNumbers) {
  openArticle();
  const std::string before = variantTablesText();
  const std::string slot = stored("opzione1", "articoli WHERE ID = 1");
  inVariants([](QWidget& dialog) {
    auto* grid = control<QTableWidget>(dialog, "DBGrid1");
    QTest::keyClick(grid, Qt::Key_Insert);
    QTest::keyClick(control<QTableWidget>(dialog, "DBGrid2"), Qt::Key_Insert);
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  run("article.variant1");
  EXPECT_EQ(variantTablesText(), before);
  EXPECT_EQ(stored("opzione1", "articoli WHERE ID = 1"), slot);
  EXPECT_FALSE(window->workbench().history().canUndo());
}

TEST_F(SalesInTheWindow, TheVariantChosenGoesIntoTheSlotOfThePriceListShown) {
  openArticle();
  window->workbench().selectListino(3);
  inVariants([](QWidget& dialog) {
    auto* grid = control<QTableWidget>(dialog, "DBGrid1");
    grid->setCurrentCell(4, 0);
    click(dialog, "cmdOK");
  });
  run("article.variant2");
  EXPECT_EQ(stored("opzione2_3", "articoli WHERE ID = 1"), "5");
  EXPECT_EQ(window->workbench().history().undoName(), "Definisci variante");
  ASSERT_TRUE(choose("undo"));
  EXPECT_NE(stored("opzione2_3", "articoli WHERE ID = 1"), "5");
}

TEST_F(SalesInTheWindow, TheListOfUsesLeadsToTheArticleAndLeavesTheSlots) {
  fill("UPDATE articoli SET opzione4_9 = 3 WHERE ID = (SELECT MAX(ID) FROM articoli)");
  openArticle();
  const std::string used = stored("MAX(ID)", "articoli");
  const std::string before = rowsOf({"articoli"});
  inVariants([](QWidget& dialog) {
    auto* grid = control<QTableWidget>(dialog, "DBGrid1");
    grid->setCurrentCell(2, 0);
    whenPopup([](QMenu& menu) {
      menu.setActiveAction(menu.actions().back());
      QTest::keyClick(&menu, Qt::Key_Return);
    });
    QTest::keyClick(control<QPushButton>(dialog, "cmdUso"), Qt::Key_Space);
  });
  run("article.variant1");
  EXPECT_EQ(window->workbench().tab(), Tab::Articles);
  EXPECT_EQ(std::to_string(window->workbench().sets().article()), used);
  EXPECT_EQ(fromQt(qobject_cast<QLineEdit*>(window->page(Tab::Articles).binding(EditedSet::Articoli, "titolo")->field())
                       ->text()),
            stored("titolo", "articoli WHERE ID = " + used));
  EXPECT_EQ(rowsOf({"articoli"}), before);
}

/// What somebody does who gets a shop ready to sell, one dialog after the other.
class SellingSetUp : public SalesInTheWindow {
 protected:
  void weighThreeCountries() {
    goTab(Tab::Site);
    inShipping([](QWidget& dialog) {
      auto* pages = control<QTabWidget>(dialog, "tabSpedizione");
      pages->setCurrentIndex(1);
      for (const char* name : {"Atlantide", "Lemuria", "Thule"}) {
        control<QComboBox>(dialog, "cboAggiungi")->setEditText(QString::fromLatin1(name));
        click(dialog, "cmdAggiungi");
      }
      pages->setCurrentIndex(2);
      QTest::keyClick(control<QRadioButton>(dialog, "optImpPeso1"), Qt::Key_Space);
      type(dialog, "m2peso1", "2,5");
      type(dialog, "m2spp1", "7");
      click(dialog, "cmdOK");
    });
    EXPECT_TRUE(choose("shipping"));
  }
  void enterAccount() {
    whenShown(QStringLiteral("Korvane - Configurazione sistemi di pagamento"), [this](QWidget& systems) {
      whenShown(QStringLiteral("Korvane - Paypal"), [](QWidget& account) {
        control<QLineEdit>(account, "txt_mid")->setText(QStringLiteral("cassa@bottega.example"));
        click(account, "cmdOK");
      });
      click(systems, "cmdConfigura9");
      click(systems, "cmdChiudi");
    });
    EXPECT_TRUE(choose("payment"));
  }
  void makeVariant(const char* command, const char* name, const char* options) {
    inVariants([&](QWidget& dialog) {
      auto* grid = control<QTableWidget>(dialog, "DBGrid1");
      QTest::keyClick(grid, Qt::Key_Insert);
      QTest::keyClick(grid, Qt::Key_F2);
      auto* cell = grid->findChild<QLineEdit*>(QStringLiteral("celCella"));
      ASSERT_NE(cell, nullptr);
      cell->setText(QString::fromLatin1(name));
      QTest::keyClick(cell, Qt::Key_Return);
      processEvents();
      QApplication::clipboard()->setText(QString::fromLatin1(options));
      QTest::keyClick(control<QTableWidget>(dialog, "DBGrid2"), Qt::Key_V, Qt::ControlModifier);
      click(dialog, "cmdOK");
    });
    run(command);
  }
  void raiseTwoLists() {
    whenShown(QStringLiteral("Korvane - Variazione prezzi"), [](QWidget& dialog) {
      for (const char* list : {"chkListino0", "chkListino1"}) control<QCheckBox>(dialog, list)->setChecked(true);
      control<QRadioButton>(dialog, "optEstensione1")->setChecked(true);
      control<QComboBox>(dialog, "cboVariazione")->setEditText(QStringLiteral("+10"));
      click(dialog, "cmdOK");
    });
    EXPECT_TRUE(choose("prices.change"));
  }
  void fillEnglish() {
    user.answers = {Answer::Yes};
    whenShown(QStringLiteral("Korvane - Replica lingue"), [](QWidget& dialog) {
      for (const char* part : {"chkCopy0", "chkCopy1", "chkCopy2", "chkCopy3"}) {
        control<QCheckBox>(dialog, part)->setChecked(true);
      }
      control<QRadioButton>(dialog, "optCopy1")->setChecked(true);
      click(dialog, "cmdOK");
    });
    EXPECT_TRUE(choose("languages.replicate"));
  }
  /// What the steps change, but for the serial numbers, which are not given twice.
  std::string state() {
    return rowsOf({"paesi", "pagamento", "zona1", "opzioni", "dettagliop", "articoli", "categorie", "generale"}) +
           readBytes(shop + "/code/Paypal/conf.ini").value_or("(missing)") +
           readBytes(shop + "/code/Paypal.kpg").value_or("(missing)");
  }
};

TEST_F(SellingSetUp, IsUndoneAndDoneAgainStepByStepAndBuilt) {
  openArticle();
  std::vector<std::string> states{state()};
  const std::vector<std::function<void()>> steps{
      [this] { weighThreeCountries(); },
      [this] { enterAccount(); },
      [this] {
        goTab(Tab::Articles);
        makeVariant("article.variant3", "Taglia", "S\tpiccola\nM\tmedia\t1,5\nL\tgrande\t3\n");
      },
      [this] { makeVariant("article.variant4", "Tinta", "R\trosso\nB\tblu\n"); },
      [this] { raiseTwoLists(); },
      [this] { fillEnglish(); }};
  for (const auto& step : steps) {
    step();
    states.push_back(state());
    EXPECT_NE(states.back(), states[states.size() - 2]) << states.size();
  }
  for (std::size_t i = states.size() - 1; i-- > 0;) {
    ASSERT_TRUE(choose("undo"));
    EXPECT_TRUE(state() == states[i]) << i;
  }
  EXPECT_FALSE(window->workbench().history().canUndo());
  for (std::size_t i = 1; i < states.size(); ++i) {
    ASSERT_TRUE(choose("redo"));
    EXPECT_TRUE(state() == states[i]) << i;
  }
  std::string said;
  whenFinished(said);
  run("build");
  EXPECT_EQ(said.substr(0, 35), "Creazione del negozio terminata. Ag");
  EXPECT_NE(readBytes(shop + "/online/order.php").value_or("").find("Thule"), std::string::npos);
}

}  // namespace
}  // namespace kv::test
