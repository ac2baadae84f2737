// The options of an export and the choice of a shop to import, in their windows.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QRadioButton>

#include "captions.h"
#include "dialog_fixture.h"
#include "platform/qt/frm_progress.h"
#include "store/exchange/frm_esporta.h"
#include "store/exchange/frm_importa_primo.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheExportDialog : public test::DialogFixture {
 protected:
  void makeDialog(const ExportOffer& offer) {
    dialog.emplace(offer);
    show(*dialog);
  }
  void accept() { QTest::keyClick(&*dialog, Qt::Key_Return); }
  bool has(const char* name) { return dialog->findChild<QWidget*>(QString::fromUtf8(name)) != nullptr; }
  std::optional<frmEsporta> dialog;
};

TEST_F(TheExportDialog, OffersTheThreeUsualOptionsOff) {
  makeDialog({});
  EXPECT_FALSE(has("chkScript") || has("txtScript") || has("optTuttiTag") || has("optTagNegozio"));
  EXPECT_EQ(test::namelessControls(*dialog), "");
  accept();
  EXPECT_EQ(dialog->tag(), "OK");
}

TEST_F(TheExportDialog, ReturnsTheCharactersOfWhatIsChosen) {
  makeDialog({true, true, {"a.php", "b.js"}});
  EXPECT_EQ(control<QPlainTextEdit>(*dialog, "txtScript")->toPlainText(), "a.php\nb.js");
  EXPECT_TRUE(control<QPlainTextEdit>(*dialog, "txtScript")->isReadOnly());
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optTuttiTag")->isChecked()) << "the first one is chosen";
  EXPECT_TRUE(control<QCheckBox>(*dialog, "chkTemplate")->hasFocus()) << "the keyboard begins at the top";
  EXPECT_EQ(
      test::missingCaptions(
          *dialog,
          {"Esporta il template utilizzato dal negozio", "Esporta i moduli linguistici utilizzati dal negozio",
           "Esporta gli script:", "(selezionare questa opzione se gli script sono stati personalizzati)",
           "Resetta le cartelle di lavoro del negozio esportato", "Esporta tutti i tag personalizzati",
           "Esporta solo i tag personalizzati relativi al negozio corrente", std::string(exportPasswordsNote).c_str()}),
      "");
  test::keepPicture(*dialog, "esporta");
  for (const char* name : {"chkTemplate", "chkLingue", "chkScript", "chkReset"}) {
    QTest::keyClick(control<QCheckBox>(*dialog, name), Qt::Key_Space);
  }
  accept();
  EXPECT_EQ(dialog->tag(), "OKTLSRP");
}

TEST_F(TheExportDialog, TheTagsOfTheShopAloneLeaveTheirCharacterOut) {
  makeDialog({false, true, {}});
  click(*dialog, "optTagNegozio");
  click(*dialog, "chkTemplate");
  accept();
  EXPECT_EQ(dialog->tag(), "OKT");
}

TEST_F(TheExportDialog, SaysThatPasswordsGoAlongAndLeavesThemOutWhenAsked) {
  makeDialog({});
  EXPECT_FALSE(control<QCheckBox>(*dialog, "chkSenzaPassword")->isChecked());
  QTest::keyClick(control<QCheckBox>(*dialog, "chkSenzaPassword"), Qt::Key_Space);
  accept();
  EXPECT_EQ(dialog->tag(), "OKW");
}

TEST_F(TheExportDialog, HasTheCaptionsOfTheOptions) {
  makeDialog({true, false, {"a.php"}});
  EXPECT_EQ(fromQt(dialog->windowTitle()), "Korvane - Impostazioni esportazione");
  EXPECT_EQ(control<QCheckBox>(*dialog, "chkScript")->text(), "Esporta gli script:");
  EXPECT_EQ(control<QCheckBox>(*dialog, "chkReset")->text(), "Resetta le cartelle di lavoro del negozio esportato");
}

TEST_F(TheExportDialog, EscapeReturnsNothing) {
  makeDialog({});
  expectEscapeLeaves(*dialog);
}

class TheImportDialog : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    source = root / "primo";
    ASSERT_TRUE(createFolders(source));
    ASSERT_TRUE(copyFile(std::string(KORVANE_APP_DATA) + "/catalog.mdb", source + "/catalog.mdb"));
    auto catalogue = Database::open(source + "/catalog.mdb", OpenMode::Shared);
    ASSERT_TRUE(catalogue && catalogue->execute("UPDATE generale SET versione = 250"));
    dialog.emplace(session, env);
    show(*dialog);
  }
  std::string preview() { return fromQt(control<QPlainTextEdit>(*dialog, "txtAnteprima")->toPlainText()); }
  std::string source;
  std::optional<frmImportaPrimo> dialog;
};

TEST_F(TheImportDialog, OkIsEnabledWithAPathAndReturnsIt) {
  EXPECT_EQ(fromQt(dialog->windowTitle()), "Korvane - Importazione da negozi Primo");
  QPushButton* ok = nullptr;
  for (auto* button : dialog->findChildren<QPushButton*>()) ok = button->isDefault() ? button : ok;
  ASSERT_NE(ok, nullptr);
  EXPECT_FALSE(ok->isEnabled());
  user.folders = {source};
  click(*dialog, "cmdSfoglia");
  EXPECT_TRUE(ok->isEnabled());
  EXPECT_EQ(user.foldersAsked[0].prompt, "Selezionare la cartella del negozio di origine:");
  EXPECT_TRUE(preview().starts_with("Versione del negozio di origine: 250\narticoli: ")) << preview();
  const auto* text = control<QPlainTextEdit>(*dialog, "txtAnteprima");
  EXPECT_EQ(text->tabStopDistance(), text->fontMetrics().horizontalAdvance(QStringLiteral("modificata  ")))
      << "columns stay apart in a font of any size";
  EXPECT_EQ(test::namelessControls(*dialog), "");
  EXPECT_EQ(test::missingCaptions(*dialog, {"- Scelta del template", "- Configurazione dei sistemi di pagamento",
                                            "- Configurazione della scheda \"Internet\""}),
            "");
  test::keepPicture(*dialog, "importa_primo");
  QTest::mouseClick(ok, Qt::LeftButton);
  EXPECT_EQ(dialog->tag(), source);
}

TEST_F(TheImportDialog, LeavingThePathUnchangedReadsTheSourceNoSecondTime) {
  user.folders = {source};
  click(*dialog, "cmdSfoglia");
  control<QPlainTextEdit>(*dialog, "txtAnteprima")->setPlainText(QStringLiteral("letta"));
  control<QLineEdit>(*dialog, "txtPercorso")->setFocus();
  QTest::keyClick(control<QLineEdit>(*dialog, "txtPercorso"), Qt::Key_Tab);
  EXPECT_EQ(preview(), "letta");
}

TEST_F(TheImportDialog, AFolderWithoutCatalogueIsToldAndNotTaken) {
  user.folders = {root / "niente"};
  click(*dialog, "cmdSfoglia");
  EXPECT_EQ(user.texts(), (std::vector<std::string>{"La cartella selezionata non contiene un negozio"}));
  EXPECT_EQ(control<QLineEdit>(*dialog, "txtPercorso")->text(), "");
}

TEST_F(TheImportDialog, EscapeReturnsNothingAndChangesNothing) {
  user.folders = {source};
  click(*dialog, "cmdSfoglia");
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(stored("versione") == "250", false);
}

TEST(TheProgressOfAWork, IsSeenAndCanBeCancelled) {
  test::ScriptedUser user;
  QWidget window;
  WatchedUser shown(user, &window, {"frmEsportazione", "Korvane", "Avanzamento"});
  EXPECT_TRUE(shown.yield()) << "before it begins there is nothing to cancel";
  shown.progress({"Esportazione in corso...", 0, 1});
  auto* progress = window.findChild<QProgressDialog*>(QStringLiteral("frmEsportazione"));
  ASSERT_NE(progress, nullptr);
  EXPECT_TRUE(progress->isVisible());
  EXPECT_EQ(progress->labelText(), "Esportazione in corso...");
  EXPECT_TRUE(QTest::qWaitFor([&] {
    shown.progress({"Esportazione in corso...", 15, 30});
    return progress->value() == 500;
  }));
  EXPECT_TRUE(shown.yield());
  test::click(*progress, "cmdAnnulla");
  EXPECT_FALSE(shown.yield());
  shown.progress({});
  EXPECT_EQ(window.findChild<QProgressDialog*>(), nullptr);
  EXPECT_TRUE(shown.yield()) << "the next work starts afresh";
  EXPECT_TRUE(user.shown.empty());
}

TEST(TheProgressOfAWork, MovesToAndFroWhileItsEndIsUnknown) {
  test::ScriptedUser user;
  QWidget window;
  WatchedUser shown(user, &window, {});
  shown.progress({"Lettura..."});
  auto* progress = window.findChild<QProgressDialog*>();
  ASSERT_NE(progress, nullptr);
  EXPECT_EQ(progress->maximum(), 0);
  shown.progress({"Confronto...", 1, 2});
  EXPECT_GT(progress->maximum(), 0);
  EXPECT_EQ(progress->labelText(), "Confronto...");
}

TEST(TheProgressOfAWork, OpensNoWindowForAShortOne) {
  test::ScriptedUser user;
  QWidget window;
  constexpr int never = 1'000'000'000;
  WatchedUser patient(user, &window, {"frmAvanzamento", "Korvane", "Avanzamento", never});
  patient.progress({"Lettura..."});
  EXPECT_EQ(window.findChild<QProgressDialog*>(), nullptr);
  EXPECT_TRUE(patient.yield());
  WatchedUser shown(user, &window, {"frmAvanzamento", "Korvane", "Avanzamento", 1});
  EXPECT_TRUE(QTest::qWaitFor([&] {
    shown.progress({"Lettura..."});
    return window.findChild<QProgressDialog*>() != nullptr;
  })) << "no window after a millisecond of work";
}

}  // namespace
}  // namespace kv
