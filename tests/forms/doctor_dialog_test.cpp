// The shop doctor in its window: filters, mending, silence, and the way to the field.
#include <QCheckBox>
#include <QLineEdit>
#include <QTableView>

#include "builder/doctor/frm_controlla.h"
#include "dialog_fixture.h"
#include "forms/wired_window.h"
#include "shell/workbench/fields/editor_table.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheDoctorsDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    const auto spoilt = session.catalogue.execute(
        "UPDATE articoli SET codice = 'A' || ID, prezzo = 20000, offerta = 0, immagine0 = '', immagine1 = '',"
        " immagine2 = '', fuoricatalogo = 0;"
        "UPDATE articoli SET prezzo = 0 WHERE ID = (SELECT MIN(ID) FROM articoli);"
        "UPDATE articoli SET offerta = 1, offertaprezzo = 30000 WHERE ID = (SELECT MAX(ID) FROM articoli)");
    ASSERT_TRUE(spoilt) << spoilt.error().what;
    DoctorActions actions;
    actions.examine = [this] { return examineShop(session, application); };
    actions.mend = [this](const Finding& finding) { return mendFinding(session.catalogue, finding); };
    actions.silence = [this](const Finding& finding) { return silenceFinding(session.catalogue, finding); };
    actions.endSilence = [this] { return endSilence(session.catalogue); };
    actions.help = [this](std::string_view page) { help = page; };
    dialog.emplace(std::move(actions), user);
    show(*dialog);
    list = control<QTableView>(*dialog, "lstAvvisi");
  }
  std::string cell(int row, int column) const { return fromQt(list->model()->index(row, column).data().toString()); }
  void filter(const char* text) { control<QLineEdit>(*dialog, "txtFiltro")->setText(QString::fromUtf8(text)); }

  std::optional<frmControlla> dialog;
  QTableView* list = nullptr;
  std::string help;
};

TEST_F(TheDoctorsDialog, ShowsErrorsFirstAndSaysHowManyThereAre) {
  EXPECT_EQ(cell(0, 0), "Errore");
  EXPECT_EQ(cell(list->model()->rowCount() - 1, 0), "Avviso");
  EXPECT_NE(control<QLabel>(*dialog, "lblRiepilogo")->text().indexOf(QStringLiteral("errori, ")), -1);
  EXPECT_TRUE(list->hasFocus());
  EXPECT_EQ(test::defaultButton(*dialog), "Vai al campo");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  QTest::keyClick(&*dialog, Qt::Key_F1);
  EXPECT_EQ(help, "pagine/controllo.htm");
  EXPECT_TRUE(fileExists(std::string(KORVANE_APP_DATA) + "/help/" + help));
  test::keepPicture(*dialog, "doctor");
  expectEscapeLeaves(*dialog);
}

TEST_F(TheDoctorsDialog, NarrowsTheListBySubjectTextAndGravity) {
  const int all = list->model()->rowCount();
  control<QComboBox>(*dialog, "cboTema")->setCurrentIndex(1);
  EXPECT_EQ(cell(0, 1).rfind("Articolo ", 0), 0U);
  EXPECT_LT(list->model()->rowCount(), all);
  filter("PREZZO DI 0");
  EXPECT_EQ(list->model()->rowCount(), 1);
  filter("offerta");
  EXPECT_EQ(list->model()->rowCount(), 1);
  control<QCheckBox>(*dialog, "chkErrori")->setChecked(true);
  EXPECT_EQ(list->model()->rowCount(), 0);
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdVai")->isEnabled());
}

TEST_F(TheDoctorsDialog, MendsWhatHasOneAnswerAtAClick) {
  filter("prezzo di 0");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdCorreggi")->isEnabled());
  filter("non è inferiore");
  ASSERT_EQ(list->model()->rowCount(), 1);
  EXPECT_EQ(control<QLabel>(*dialog, "lblCorrezione")->text(), "Correzione: Togli l'offerta");
  click(*dialog, "cmdCorreggi");
  EXPECT_EQ(list->model()->rowCount(), 0);
  EXPECT_EQ(stored("SUM(offerta)", "articoli"), "0");
}

TEST_F(TheDoctorsDialog, AFindingIsSilentUntilAllAreHeardAgain) {
  filter("prezzo di 0");
  EXPECT_FALSE(control<QPushButton>(*dialog, "cmdRiattiva")->isEnabled());
  click(*dialog, "cmdSilenzia");
  EXPECT_EQ(list->model()->rowCount(), 0);
  EXPECT_TRUE(control<QLabel>(*dialog, "lblRiepilogo")->text().endsWith(QStringLiteral("; uno è silenziato")));
  click(*dialog, "cmdRiattiva");
  EXPECT_EQ(list->model()->rowCount(), 1);
}

TEST_F(TheDoctorsDialog, EnterGoesToTheField) {
  filter("prezzo di 0");
  list->setFocus();
  QTest::keyClick(list, Qt::Key_Return);
  ASSERT_TRUE(dialog->chosen());
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(dialog->chosen()->column, "prezzo");
}

}  // namespace

namespace test {
namespace {

class TheDoctorsWay : public WiredWindow {
 protected:
  /// Goes to the field of the only finding with a text, by Enter in the doctor's list.
  void goToFindingOf(const char* text) {
    whenShown(QStringLiteral("Korvane - Controlla il negozio"), [text](QWidget& dialog) {
      control<QLineEdit>(dialog, "txtFiltro")->setText(QString::fromUtf8(text));
      auto* findings = control<QTableView>(dialog, "lstAvvisi");
      EXPECT_EQ(findings->model()->rowCount(), 1) << text;
      QTest::keyClick(findings, Qt::Key_Return);
      if (dialog.isVisible()) QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    window->workbench().commands().choose(*window->workbench().commands().table().named("doctor"));
    processEvents();
  }
  std::string fieldInUse() const {
    return window->focusWidget() == nullptr ? "" : fromQt(window->focusWidget()->objectName());
  }
};

TEST_F(TheDoctorsWay, LeadsToTheFieldOfADepartment) {
  fill(
      "UPDATE categorie SET nascosto = 0, titolo = 'Reparto ' || ID;"
      "UPDATE categorie SET nascosto = 1 WHERE ID = (SELECT MAX(catID) FROM articoli)");
  openWindow();
  goToFindingOf("è nascosto, ma i suoi articoli");
  EXPECT_EQ(window->workbench().sets().department(), stored("MAX(catID)", "articoli"));
  EXPECT_EQ(window->tabs().currentIndex(), static_cast<int>(Tab::Departments));
  EXPECT_EQ(fieldInUse(), "nascosto");
}

TEST_F(TheDoctorsWay, LeadsToASettingOnItsTab) {
  fill("UPDATE generale SET email_ordini = '', hostname = ''");
  openWindow();
  for (const auto& [text, field] : {std::pair("a cui arrivano gli ordini", "email_ordini"),
                                    std::pair("manca il server a cui inviare i file", "hostname")}) {
    goTab(Tab::Articles);
    goToFindingOf(text);
    EXPECT_EQ(fieldInUse(), field);
    EXPECT_EQ(window->tabs().currentIndex(), static_cast<int>(editorOf(EditedSet::Generale, field)->tab)) << field;
  }
}

TEST_F(TheDoctorsWay, LeadsToTheFieldInItsPriceListAndUndoesAMending) {
  fill("UPDATE articoli SET prezzo = 10000, prezzo2 = 10000, offerta2 = 1, offertaprezzo2 = 20000");
  openWindow();
  whenShown(QStringLiteral("Korvane - Controlla il negozio"), [](QWidget& dialog) {
    control<QLineEdit>(dialog, "txtFiltro")->setText(QStringLiteral("non è inferiore"));
    auto* findings = control<QTableView>(dialog, "lstAvvisi");
    ASSERT_GT(findings->model()->rowCount(), 1);
    click(dialog, "cmdCorreggi");
    QTest::keyClick(findings, Qt::Key_Return);
  });
  window->workbench().commands().choose(*window->workbench().commands().table().named("doctor"));
  processEvents();
  EXPECT_EQ(window->workbench().listino(), 2);
  EXPECT_EQ(window->tabs().currentIndex(), static_cast<int>(Tab::Articles));
  ASSERT_NE(window->focusWidget(), nullptr);
  EXPECT_EQ(window->focusWidget()->objectName(), "offertaprezzo");
  EXPECT_EQ(window->workbench().history().undoName(), "Correggi: Togli l'offerta");
}

}  // namespace
}  // namespace test
}  // namespace kv
