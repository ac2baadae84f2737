// The bulk change of prices in its window: what can be chosen, what the preview shows, what OK and Annulla do.
#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableView>

#include "captions.h"
#include "commerce/prices/frm_varia_prezzi.h"
#include "dialog_fixture.h"

namespace kv {
namespace {

using test::click;
using test::control;

class ThePricesDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    const auto filled = session.catalogue.execute(
        "DELETE FROM articoli; INSERT INTO articoli (ID, catID, codice, titolo, prezzo, offertaprezzo, prezzo2) VALUES"
        " (1, 'cat001', 'B', 'Vaso', 199900, 100000, 10000), (2, 'cat002', 'A', 'Tazza', 50000, NULL, 20000),"
        " (3, 'cat001', 'C', 'Piatto', NULL, NULL, NULL)");
    ASSERT_TRUE(filled);
  }
  void openOn(const std::string& department) {
    dialog.emplace(session, env, PriceDialogFacts{department, "Vasi", ','},
                   [this](std::string_view page) { helpOpened = page; });
    show(*dialog);
    preview = control<QTableView>(*dialog, "lstAnteprima");
    percentage = control<QComboBox>(*dialog, "cboVariazione");
  }
  void tick(const char* name) { control<QCheckBox>(*dialog, name)->setChecked(true); }
  void type(const char* text) {
    percentage->lineEdit()->selectAll();
    QTest::keyClicks(percentage->lineEdit(), QString::fromLatin1(text));
  }
  /// The rows of the preview, one a line.
  std::string shown() const {
    std::string text;
    const QAbstractItemModel& model = *preview->model();
    for (int row = 0; row < model.rowCount(); ++row) {
      for (int column = 0; column < model.columnCount(); ++column) {
        text += fromQt(model.index(row, column).data().toString()) + (column == 4 ? "\n" : "|");
      }
    }
    return text;
  }
  std::string prices() { return stored("group_concat(ifnull(prezzo, '-'))", "articoli"); }

  std::optional<frmVariaPrezzi> dialog;
  QTableView* preview = nullptr;
  QComboBox* percentage = nullptr;
  std::string helpOpened;
};

TEST_F(ThePricesDialog, OnADepartmentBeginsWithThatOneAlone) {
  openOn("cat001");
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optEstensione0")->isChecked());
  EXPECT_EQ(test::defaultButton(*dialog), "OK");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  EXPECT_EQ(test::repeatedKeys(*dialog), "");
  EXPECT_EQ(fromQt(dialog->windowTitle()), "Korvane - Variazione prezzi");
  QTest::keyClick(&*dialog, Qt::Key_F1);
  EXPECT_EQ(helpOpened, "pagine/prezzi.htm");
  EXPECT_EQ(test::missingCaptions(*dialog,
                                  {"Modifica anche il prezzo delle offerte", "Modifica anche il prezzo delle varianti",
                                   "Prezzi tondi (arrotonda ed elimina i decimali)"}),
            "");
  test::keepPicture(*dialog, "prices");
}

TEST_F(ThePricesDialog, OnNoDepartmentOffersAllOfThemAlone) {
  openOn("###");
  EXPECT_FALSE(control<QRadioButton>(*dialog, "optEstensione0")->isEnabled());
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optEstensione1")->isChecked());
}

TEST_F(ThePricesDialog, LetsOnlyAPercentageBeTyped) {
  openOn("###");
  type("a+1-0,5,5%");
  EXPECT_EQ(fromQt(percentage->currentText()), "+10,55");
}

TEST_F(ThePricesDialog, PreviewsEveryPriceThatChangesWhileThePercentageIsTyped) {
  openOn("cat001");
  tick("chkListino0");
  EXPECT_EQ(shown(), "");
  type("+10");
  EXPECT_EQ(shown(), "B|Vaso|Listino 0|19,99|21,99\nC|Piatto|Listino 0|-|0,00\n");
  control<QRadioButton>(*dialog, "optEstensione1")->setChecked(true);
  tick("chkOfferte");
  tick("chkTondi");
  EXPECT_EQ(shown(),
            "B|Vaso|Listino 0|19,99|22,00\nB|Vaso|Offerta 0|10,00|11,00\nA|Tazza|Listino 0|5,00|6,00\n"
            "A|Tazza|Offerta 0|-|0,00\nC|Piatto|Listino 0|-|0,00\nC|Piatto|Offerta 0|-|0,00\n");
  EXPECT_THAT(fromQt(control<QLabel>(*dialog, "lblAnteprima")->text()),
              testing::StartsWith("Prezzi da modificare: 6 di 6; variazione maggiore: 19,99 -> 22,00"));
}

TEST_F(ThePricesDialog, AnEmptyPreviewSaysWhyThereIsNothingToChange) {
  openOn("cat003");
  const auto* summary = control<QLabel>(*dialog, "lblAnteprima");
  type("+10");
  EXPECT_EQ(fromQt(summary->text()), "Nessun listino è selezionato.");
  tick("chkListino0");
  EXPECT_EQ(fromQt(summary->text()), "Il reparto non ha articoli propri; quelli dei sottoreparti non sono compresi.");
  control<QRadioButton>(*dialog, "optEstensione1")->setChecked(true);
  EXPECT_THAT(fromQt(summary->text()), testing::StartsWith("Prezzi da modificare: 3 di 3"));
}

TEST_F(ThePricesDialog, SortsThePreviewByAClickOnAColumn) {
  openOn("###");
  tick("chkListino0");
  tick("chkListino2");
  type("10");
  const auto clickColumn = [&](int column) {
    const int at = preview->horizontalHeader()->sectionViewportPosition(column) + 5;
    QTest::mouseClick(preview->horizontalHeader()->viewport(), Qt::LeftButton, {}, QPoint(at, 5));
  };
  clickColumn(3);
  EXPECT_THAT(shown(), testing::StartsWith("C|Piatto|Listino 0|-|0,00\nC|Piatto|Listino 2|-|0,00\n"
                                           "B|Vaso|Listino 2|1,00|1,10\n"));
  clickColumn(3);
  EXPECT_THAT(shown(), testing::StartsWith("B|Vaso|Listino 0|19,99|21,99\nA|Tazza|Listino 0|5,00|5,50\n"));
  clickColumn(0);
  EXPECT_THAT(shown(), testing::StartsWith("A|Tazza|Listino 0|"));
  type("20");
  EXPECT_THAT(shown(), testing::StartsWith("A|Tazza|Listino 0|5,00|6,00\n")) << "the order stays while typing";
}

TEST_F(ThePricesDialog, APriceBeyondTheRangeIsNamedAndComesAfterAllOthers) {
  ASSERT_TRUE(session.catalogue.execute("UPDATE articoli SET prezzo = 9000000000000000000 WHERE ID = 1"));
  openOn("###");
  tick("chkListino0");
  type("10");
  EXPECT_THAT(fromQt(control<QLabel>(*dialog, "lblAnteprima")->text()),
              testing::EndsWith("; oltre il massimo consentito: 1 (Vaso, Listino 0)"));
  preview->sortByColumn(4, Qt::AscendingOrder);
  EXPECT_EQ(shown(),
            "C|Piatto|Listino 0|-|0,00\nA|Tazza|Listino 0|5,00|5,50\n"
            "B|Vaso|Listino 0|900.000.000.000.000,00|oltre il massimo\n");
}

TEST_F(ThePricesDialog, OkWritesWhatThePreviewShows) {
  openOn("###");
  tick("chkListino0");
  type("-50");
  QTest::keyClick(percentage->lineEdit(), Qt::Key_Return);
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(prices(), "100000,25000,0");
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(ThePricesDialog, StaysAfterAPercentageThatIsNone) {
  openOn("###");
  tick("chkListino0");
  type("150");
  click(*dialog, "cmdOK");
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Percentuale non valida (deve essere compresa tra -100 e +100)"});
  EXPECT_EQ(prices(), "199900,50000,-");
}

TEST_F(ThePricesDialog, ClosesWithoutAChangeWhenTheQuestionIsAnsweredNo) {
  ASSERT_TRUE(
      session.catalogue.execute("INSERT INTO opzioni (ID, nome) VALUES (77, 'Colore');"
                                "UPDATE articoli SET opzione1 = 77, opzione1_5 = 77 WHERE ID = 1"));
  openOn("###");
  tick("chkListino0");
  tick("chkVarianti");
  type("10");
  click(*dialog, "cmdOK");
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(dialog->tag(), "");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(prices(), "199900,50000,-");
}

TEST_F(ThePricesDialog, EscapeLeavesThePricesAlone) {
  openOn("###");
  tick("chkListino0");
  type("10");
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(prices(), "199900,50000,-");
}

}  // namespace
}  // namespace kv
