// The small dialogs of the shop's looks and of the build in their windows.
#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

#include "builder/run/frm_impostazioni.h"
#include "captions.h"
#include "commerce/settings/frm_email.h"
#include "commerce/settings/frm_obbligatori.h"
#include "commerce/settings/frm_p3p.h"
#include "commerce/settings/frm_vetrina.h"
#include "dialog_fixture.h"
#include "platform/qt/frm_field_mark.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheSmallDialogs : public test::DialogFixture {
 protected:
  void sql(const char* statements) { ASSERT_TRUE(session.catalogue.execute(statements)); }
  static void expectReadable(FormDialog& dialog, const char* title) {
    EXPECT_EQ(fromQt(dialog.windowTitle()), title);
    EXPECT_EQ(test::namelessControls(dialog), "");
    EXPECT_EQ(test::repeatedKeys(dialog), "");
    EXPECT_EQ(test::defaultButton(dialog), "OK");
    test::keepPicture(dialog, title);
  }
};

TEST_F(TheSmallDialogs, ShowcaseShowsAndStoresItsSettings) {
  sql("UPDATE generale SET vetalign = 'left', vetalignstyle = 'style=\"float: left\"', vetopzioni = 9, vetsize = 2,"
      " colonnevetrina = 3, singleitem_vet = 1");
  frmVetrina dialog(session, env, {});
  show(dialog);
  EXPECT_EQ(
      test::missingCaptions(dialog, {"Mostra solo l'articolo in vetrina", "Mostra tutti gli articoli del reparto",
                                     "Immagine piccola (obbligatorio)", "immagine a sinistra", "immagine a destra"}),
      "");
  expectReadable(dialog, "Korvane - Impostazioni vetrina");
  EXPECT_TRUE(control<QRadioButton>(dialog, "optAllineamento3")->isChecked());
  EXPECT_TRUE(control<QCheckBox>(dialog, "chkCampo0")->isChecked());
  EXPECT_FALSE(control<QCheckBox>(dialog, "chkCampo1")->isChecked());
  EXPECT_TRUE(control<QCheckBox>(dialog, "chkCampo3")->isChecked());
  EXPECT_EQ(fromQt(control<QComboBox>(dialog, "cboFont")->currentText()), "2");
  EXPECT_TRUE(control<QRadioButton>(dialog, "optLink1")->isChecked());
  control<QRadioButton>(dialog, "optAllineamento4")->setChecked(true);
  control<QCheckBox>(dialog, "chkCampo4")->setChecked(true);
  control<QComboBox>(dialog, "cboColonne")->setCurrentIndex(9);
  control<QRadioButton>(dialog, "optLink0")->setChecked(true);
  click(dialog, "cmdOK");
  EXPECT_EQ(dialog.tag(), "OK");
  EXPECT_EQ(stored("vetalign || vetalignstyle || ' ' || vetopzioni || ' ' || vetsize || ' ' || colonnevetrina || ' ' "
                   "|| singleitem_vet"),
            "rightstyle=\"float: right\" 25 2 10 0");
}

TEST_F(TheSmallDialogs, ShowcaseReopensThePictureOnTheRightAsTheRightAndOkEmptiesItsStyle) {
  sql("UPDATE generale SET vetalign = 'right', vetalignstyle = 'style=\"float: right\"', colonnevetrina = 40");
  frmVetrina dialog(session, env, {});
  show(dialog);
  EXPECT_TRUE(control<QRadioButton>(dialog, "optAllineamento2")->isChecked());
  EXPECT_EQ(fromQt(control<QComboBox>(dialog, "cboColonne")->currentText()), "40");
  click(dialog, "cmdOK");
  EXPECT_EQ(stored("vetalign || '.' || vetalignstyle || '.' || colonnevetrina"), "right..40");
}

TEST_F(TheSmallDialogs, ShowcaseLeftByEscapeKeepsWhatIsStored) {
  sql("UPDATE generale SET vetalign = 'left', vetopzioni = 1");
  frmVetrina dialog(session, env, {});
  show(dialog);
  control<QRadioButton>(dialog, "optAllineamento2")->setChecked(true);
  expectEscapeLeaves(dialog);
  EXPECT_EQ(stored("vetalign"), "left");
}

TEST_F(TheSmallDialogs, RequiredFieldsAreStoredByOkAloneAfterAReset) {
  sql("UPDATE generale SET campi_obbligatori = '7'");
  frmObbligatori dialog(session, env, {});
  show(dialog);
  EXPECT_EQ(
      test::missingCaptions(
          dialog,
          {"Per alcuni campi del modulo d'ordine è possibile specificare se renderli obbligatori. Nel caso del campo "
           "\"Maggiorenne\", se si sceglie di non renderlo obbligatorio gli ordini saranno inviati anche se l'utente "
           "non ha selezionato l'apposita checkbox sul modulo d'ordine.",
           "Ripristina la configurazione di default"}),
      "");
  expectReadable(dialog, "Korvane - Campi obbligatori");
  click(dialog, "cmdReset");
  EXPECT_FALSE(control<QCheckBox>(dialog, "chkCampo0")->isChecked());
  EXPECT_TRUE(control<QCheckBox>(dialog, "chkCampo3")->isChecked());
  EXPECT_EQ(stored("campi_obbligatori"), "7");
  click(dialog, "cmdOK");
  EXPECT_EQ(stored("campi_obbligatori"), "8");
}

TEST_F(TheSmallDialogs, RequiredFieldsLeftAfterAResetStay) {
  sql("UPDATE generale SET campi_obbligatori = '7'");
  frmObbligatori dialog(session, env, {});
  show(dialog);
  click(dialog, "cmdReset");
  expectEscapeLeaves(dialog);
  EXPECT_EQ(stored("campi_obbligatori"), "7");
}

TEST_F(TheSmallDialogs, PrivacyPolicyIsResetStoredAndExplained) {
  sql("UPDATE generale SET p3p = 'NOI'");
  std::vector<std::string> opened;
  frmP3P dialog(session, env, [&](const std::string& address) { opened.push_back(address); });
  show(dialog);
  EXPECT_EQ(test::missingCaptions(
                dialog,
                {"Alcuni browser recenti possono essere impostati in modo da accettare i cookie solo dai siti che "
                 "possiedono una \"Compact Privacy Policy\": una serie di dati che specificano il modo in cui vengono "
                 "trattate le informazioni personali."}),
            "");
  expectReadable(dialog, "Korvane - Compact Privacy Policy");
  EXPECT_EQ(fromQt(control<QLineEdit>(dialog, "txtP3P")->text()), "NOI");
  click(dialog, "lblIndirizzo0");
  click(dialog, "lblIndirizzo1");
  EXPECT_EQ(opened, (std::vector<std::string>{"https://www.w3.org/P3P/", "https://www.w3.org/TR/P3P/"}));
  click(dialog, "cmdReset");
  EXPECT_EQ(stored("p3p"), "NOI");
  click(dialog, "cmdOK");
  EXPECT_EQ(stored("p3p"), "ALL CUR ADM CONi PHY ONL UNI PUR COM NAV INT OUR STP");
}

TEST_F(TheSmallDialogs, MailTakesTagsAtTheCursorAndNoQuotes) {
  frmEmail dialog("Gentile cliente", {});
  show(dialog);
  EXPECT_EQ(
      test::missingCaptions(
          dialog,
          {"Inserire il contenuto dell'e-mail di conferma inviata dal negozio all'acquirente. L'e-mail sarà inviata in "
           "formato testo, pertanto al suo interno non è consentito inserire codici HTML (o applicare qualsiasi "
           "formattazione al testo).",
           "I tag \"<<importo>>\", \"<<codice>>\" e \"<<riepilogo>>\" saranno sostituiti, all'invio dell'e-mail, "
           "rispettivamente con l'importo totale, il codice identificativo e il riepilogo dell'ordine."}),
      "");
  expectReadable(dialog, "Korvane - Testo e-mail di conferma");
  auto* field = control<QPlainTextEdit>(dialog, "txtTesto");
  QTextCursor cursor = field->textCursor();
  cursor.setPosition(8);
  cursor.setPosition(15, QTextCursor::KeepAnchor);
  field->setTextCursor(cursor);
  click(dialog, "cmdTag1");
  EXPECT_EQ(dialog.text(), "Gentile <<codice>>cliente");
  EXPECT_EQ(field->textCursor().position(), 18);
  EXPECT_FALSE(field->textCursor().hasSelection());
  EXPECT_TRUE(field->hasFocus());
  QTest::keyClicks(field, "a\"|b[]");
  QApplication::clipboard()->setText(QStringLiteral("\"x\"|y\nz"));
  field->paste();
  EXPECT_EQ(dialog.text(), "Gentile <<codice>>abxy\nzcliente");
  EXPECT_EQ(fromQt(field->findChild<FieldMark*>()->reason()),
            "I caratteri \"\"\", \"|\" non sono ammessi in questo campo: sono stati tolti.");
  QInputMethodEvent composed;
  composed.setCommitString(QStringLiteral("\"è|[é]"));
  QApplication::sendEvent(field, &composed);
  EXPECT_EQ(dialog.text(), "Gentile <<codice>>abxy\nzèécliente");
  click(dialog, "cmdOK");
  EXPECT_EQ(dialog.tag(), "OK");
}

TEST_F(TheSmallDialogs, BuildSettingsCountAtOnceAndNormaliseTheExtension) {
  sql("UPDATE generale SET estensione = '.htm'");
  frmImpostazioni dialog(session, env);
  show(dialog);
  EXPECT_EQ(test::missingCaptions(dialog, {"Utilizza costruzione selettiva"}), "");
  expectReadable(dialog, "Korvane - Impostazioni costruzione negozio");
  EXPECT_EQ(control<QCheckBox>(dialog, "chkSelettiva")->isChecked(), session.smartBuild);
  control<QCheckBox>(dialog, "chkSelettiva")->setChecked(false);
  control<QLineEdit>(dialog, "txtEstensione")->setText(QStringLiteral(" HTML5 x"));
  click(dialog, "cmdOK");
  EXPECT_FALSE(session.smartBuild);
  EXPECT_EQ(settings.get("AppIni", "smartbuild"), "0");
  EXPECT_EQ(stored("estensione"), ".html5");
}

TEST_F(TheSmallDialogs, BuildSettingsKeepTheExtensionWhenTheBuildsOwnIsTyped) {
  sql("UPDATE generale SET estensione = '.htm'");
  frmImpostazioni dialog(session, env);
  show(dialog);
  control<QLineEdit>(dialog, "txtEstensione")->setText(QStringLiteral("PHP"));
  click(dialog, "cmdOK");
  EXPECT_EQ(stored("estensione"), ".htm");
}

TEST_F(TheSmallDialogs, LightPicturesAreOffUntilTheyAreAskedFor) {
  {
    frmImpostazioni dialog(session, env);
    show(dialog);
    EXPECT_FALSE(control<QCheckBox>(dialog, "chkLeggere")->isChecked());
    control<QCheckBox>(dialog, "chkLeggere")->click();
    click(dialog, "cmdOK");
  }
  frmImpostazioni dialog(session, env);
  show(dialog);
  EXPECT_TRUE(control<QCheckBox>(dialog, "chkLeggere")->isChecked());
  EXPECT_TRUE(fileExists(shop + "/costruzione.ini"));
}

TEST_F(TheSmallDialogs, BuildSettingsAreResetWithoutBeingStored) {
  sql("UPDATE generale SET estensione = '.asp'");
  session.smartBuild = false;
  frmImpostazioni dialog(session, env);
  show(dialog);
  click(dialog, "cmdReset");
  EXPECT_TRUE(control<QCheckBox>(dialog, "chkSelettiva")->isChecked());
  EXPECT_EQ(fromQt(control<QLineEdit>(dialog, "txtEstensione")->text()), ".htm");
  expectEscapeLeaves(dialog);
  EXPECT_EQ(stored("estensione"), ".asp");
  EXPECT_FALSE(session.smartBuild);
}

}  // namespace
}  // namespace kv
