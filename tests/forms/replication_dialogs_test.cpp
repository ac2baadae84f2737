// Replication of languages and of price lists in their windows.
#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

#include "captions.h"
#include "commerce/replication/frm_replica.h"
#include "commerce/replication/frm_replica_listini.h"
#include "dialog_fixture.h"

namespace kv {
namespace {

using test::click;
using test::control;

std::string itemsOf(const QComboBox& box) {
  std::string text;
  for (int i = 0; i < box.count(); ++i) text += fromQt(box.itemText(i)) + ";";
  return text;
}

class TheReplicationDialogs : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    session.languageCount = 3;
    session.languageNames = {"italiano", "inglese", "francese", ""};
    const auto filled = session.catalogue.execute(
        "DELETE FROM articoli; INSERT INTO articoli (ID, titolo, titolo_l2, prezzo) VALUES"
        " (1, 'Vaso', 'Vase', 199900), (2, 'Tazza', NULL, 50000)");
    ASSERT_TRUE(filled);
  }
  static void tick(const FormDialog& dialog, const char* name) { control<QCheckBox>(dialog, name)->setChecked(true); }
  static std::string count(const FormDialog& dialog) { return fromQt(control<QLabel>(dialog, "lblConteggio")->text()); }
};

TEST_F(TheReplicationDialogs, OfferAllLanguagesButTheSourceAndKeepTheDestination) {
  frmReplica dialog(session, env, {});
  show(dialog);
  auto* source = control<QComboBox>(dialog, "cboOrigine");
  auto* destination = control<QComboBox>(dialog, "cboDestinazione");
  EXPECT_EQ(itemsOf(*source), "Lingua 1 (italiano);Lingua 2 (inglese);Lingua 3 (francese);");
  EXPECT_EQ(itemsOf(*destination), "Lingua 2 (inglese);Lingua 3 (francese);");
  destination->setCurrentIndex(1);
  source->setCurrentIndex(1);
  EXPECT_EQ(itemsOf(*destination), "Lingua 1 (italiano);Lingua 3 (francese);");
  EXPECT_EQ(fromQt(destination->currentText()), "Lingua 3 (francese)");
  source->setCurrentIndex(2);
  EXPECT_EQ(fromQt(destination->currentText()), "Lingua 1 (italiano)");
  EXPECT_EQ(test::namelessControls(dialog), "");
  EXPECT_EQ(test::repeatedKeys(dialog), "");
  EXPECT_EQ(test::defaultButton(dialog), "OK");
  EXPECT_EQ(fromQt(dialog.windowTitle()), "Korvane - Replica lingue");
  EXPECT_EQ(test::missingCaptions(dialog, {"Impostazioni generali del negozio e del sito", "Reparti", "Articoli",
                                           "Varianti", "Aggiorna tutti i campi", "Aggiorna solo i campi vuoti"}),
            "");
  test::keepPicture(dialog, "replicate-languages");
}

TEST_F(TheReplicationDialogs, CountWhatALanguageWouldGet) {
  frmReplica dialog(session, env, {});
  show(dialog);
  EXPECT_EQ(count(dialog), "Campi da scrivere: 0, in 0 righe");
  tick(dialog, "chkCopy2");
  EXPECT_EQ(count(dialog), "Campi da scrivere: 2, in 2 righe");
  control<QRadioButton>(dialog, "optCopy1")->setChecked(true);
  EXPECT_EQ(count(dialog), "Campi da scrivere: 1, in 1 riga");
}

TEST_F(TheReplicationDialogs, CopyALanguageAfterYesAndStayAfterNo) {
  frmReplica dialog(session, env, {});
  show(dialog);
  click(dialog, "cmdOK");
  EXPECT_EQ(user.texts().back(), "E' necessario selezionare le informazioni da replicare");
  tick(dialog, "chkCopy2");
  click(dialog, "cmdOK");
  EXPECT_TRUE(dialog.isVisible());
  EXPECT_EQ(stored("group_concat(ifnull(titolo_l2, '-'))", "articoli"), "Vase,-");
  user.answers = {Answer::Yes};
  click(dialog, "cmdOK");
  EXPECT_EQ(dialog.tag(), "OK");
  EXPECT_EQ(stored("group_concat(titolo_l2)", "articoli"), "Vaso,Tazza");
}

TEST_F(TheReplicationDialogs, LeaveByEscapeWithNothingCopied) {
  frmReplica languages(session, env, {});
  show(languages);
  tick(languages, "chkCopy2");
  expectEscapeLeaves(languages);
  frmReplicaListini lists(session, env, ',', {});
  show(lists);
  tick(lists, "chkListino3");
  expectEscapeLeaves(lists);
  EXPECT_EQ(stored("group_concat(ifnull(titolo_l2, '-'))", "articoli"), "Vase,-");
  EXPECT_EQ(stored("count(prezzo3)", "articoli"), "0");
}

TEST_F(TheReplicationDialogs, CopyAPriceListWithItsPercentage) {
  frmReplicaListini dialog(session, env, ',', {});
  show(dialog);
  EXPECT_EQ(test::namelessControls(dialog), "");
  EXPECT_EQ(test::repeatedKeys(dialog), "");
  EXPECT_EQ(fromQt(dialog.windowTitle()), "Korvane - Replica listini");
  EXPECT_EQ(test::missingCaptions(dialog,
                                  {"Replica gli sconti dei reparti", "Replica le restrizioni (reparti inaccessibili)"}),
            "");
  test::keepPicture(dialog, "replicate-lists");
  auto* percentage = control<QComboBox>(dialog, "cboVariazione")->lineEdit();
  EXPECT_EQ(fromQt(percentage->text()), "0");
  click(dialog, "cmdOK");
  EXPECT_EQ(user.texts().back(), "E' necessario selezionare almeno un listino di destinazione");
  tick(dialog, "chkListino3");
  EXPECT_EQ(count(dialog), "Campi da scrivere: 2, in 2 righe");
  percentage->selectAll();
  QTest::keyClicks(percentage, "+1x0");
  tick(dialog, "chkTondi");
  click(dialog, "cmdOK");
  EXPECT_EQ(dialog.tag(), "OK");
  EXPECT_EQ(stored("group_concat(prezzo3)", "articoli"), "220000,60000");
}

TEST_F(TheReplicationDialogs, TakeEveryBoxOfThePriceLists) {
  ASSERT_TRUE(
      session.catalogue.execute("UPDATE articoli SET offerta2 = 1, offertaprezzo2 = 70000, scq2 = 1, opzione2_2 = 9;"
                                "UPDATE categorie SET sconto2 = 4, inaccessibile2 = 1"));
  frmReplicaListini dialog(session, env, ',', {});
  show(dialog);
  control<QComboBox>(dialog, "cboListino")->setCurrentIndex(2);
  for (const char* name : {"chkListino0", "chkOfferte", "chkScq", "chkVarianti", "chkScRep", "chkRestr"}) {
    tick(dialog, name);
  }
  click(dialog, "cmdOK");
  EXPECT_EQ(stored("offerta || ' ' || offertaprezzo || ' ' || scq || ' ' || opzione2", "articoli"), "1 70000 1 9");
  EXPECT_EQ(stored("sconto || ' ' || inaccessibile", "categorie"), "4.0 1");
}

}  // namespace
}  // namespace kv
