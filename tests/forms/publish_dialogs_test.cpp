// The windows of publishing that ask: what is sent, and the way to the server.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <set>

#include "dialog_fixture.h"
#include "publish/settings/frm_firewall.h"
#include "publish/settings/frm_imposta_ftp.h"

namespace kv {
namespace {

using test::click;
using test::control;

class PublishDialog : public test::DialogFixture {
 protected:
  std::string file(const std::string& name) const {
    const auto bytes = readBytes(shop + "/" + name);
    return bytes ? *bytes : "(missing)";
  }
};

class TheSendingDialog : public PublishDialog {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    ASSERT_TRUE(writeBytes(shop + "/kvftp.dat", "#\r\n"));
  }
  void start() {
    dialog.emplace(session, env, lock);
    show(*dialog);
  }
  /// Chooses a box or a choice, wherever its caption ends in the row it fills.
  void choose(const char* name) { control<QAbstractButton>(*dialog, name)->click(); }
  bool isOn(const char* name) const { return control<QAbstractButton>(*dialog, name)->isChecked(); }
  bool isEnabled(const char* name) const { return control<QWidget>(*dialog, name)->isEnabled(); }

  LockStatements lock;
  std::optional<frmImpostaFTP> dialog;
};

TEST_F(TheSendingDialog, ShowsTheDefaultsOfAnUntouchedShop) {
  start();
  for (const char* name : {"chkModificati", "chkNegozio", "optAbilitato", "optTutti", "optMySql3", "chkTipo1"}) {
    EXPECT_TRUE(isOn(name)) << name;
  }
  for (const char* name : {"chkImpo", "chkOttimizza", "chkSicuro"}) EXPECT_FALSE(isOn(name)) << name;
  EXPECT_FALSE(isEnabled("chkTipo1"));
  EXPECT_FALSE(isEnabled("optSoloModificati")) << "there is no base for a difference";
  EXPECT_EQ(test::defaultButton(*dialog), "OK");
  EXPECT_EQ(test::namelessControls(*dialog), "");
  test::keepPicture(*dialog, "publish_options");
}

TEST_F(TheSendingDialog, FitsALowScreenWithLargerText) {
  start();
  QFont larger = dialog->font();
  larger.setPointSizeF(larger.pointSizeF() * 1.25);
  dialog->setFont(larger);
  QApplication::processEvents();
  const QSize least = dialog->minimumSizeHint();
  EXPECT_LE(least.height(), 680) << "of 768, with a panel and the frame";
  EXPECT_LE(least.width(), 1240);
}

TEST_F(TheSendingDialog, OkWithDefaultsLeavesNoFile) {
  ASSERT_TRUE(writeBytes(shop + "/kvftp.ini", "MODE: 1\r\n"));
  start();
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(file("kvftp.ini"), "(missing)");
}

TEST_F(TheSendingDialog, OkWritesWhatIsShown) {
  start();
  choose("chkImpo");
  EXPECT_TRUE(isEnabled("chkTipo1"));
  for (const char* name : {"chkTipo1", "chkTipo4", "chkModificati", "optMySql4"}) choose(name);
  click(*dialog, "cmdOK");
  EXPECT_EQ(file("kvftp.ini"),
            "MODE: 0\r\nSHOP: 1\r\nTYPE: .gif.jpg.jpeg.png.bmp.mdb.csv.sql.\r\nOPDB: -1\r\nDISA: 0\r\nOPTM: 0\r\n"
            "LOCK: 0\r\n");
}

TEST_F(TheSendingDialog, WhatWasWrittenIsShownAgain) {
  ASSERT_TRUE(writeBytes(shop + "/kvftp.ini", "MODE: 0\r\nTYPE: .pl.asp.php.\r\nDISA: -1\r\nOPTM: 1\r\nSAFE: 1\r\n"));
  start();
  for (const char* name : {"chkImpo", "chkTipo4", "optNonAbilitato", "chkOttimizza", "chkSicuro"}) {
    EXPECT_TRUE(isOn(name)) << name;
  }
  EXPECT_FALSE(isOn("chkModificati") || isOn("chkTipo1"));
}

TEST_F(TheSendingDialog, WithoutFtpTheFilesCannotBeChosen) {
  start();
  choose("chkImpo");
  choose("optNonAbilitato");
  for (const char* name : {"chkModificati", "chkNegozio", "chkImpo", "chkTipo1"}) EXPECT_FALSE(isEnabled(name)) << name;
  EXPECT_TRUE(isEnabled("optTutti"));
  choose("optAbilitato");
  for (const char* name : {"chkModificati", "chkNegozio", "chkImpo", "chkTipo1"}) EXPECT_TRUE(isEnabled(name)) << name;
}

TEST_F(TheSendingDialog, TheResetBringsTheDefaultsBack) {
  start();
  for (const char* name : {"chkModificati", "chkImpo", "chkTipo2", "optNonAbilitato"}) {
    choose(name);
  }
  click(*dialog, "cmdReset");
  EXPECT_TRUE(isOn("chkModificati") && isOn("chkTipo2") && isOn("optAbilitato"));
  EXPECT_FALSE(isOn("chkImpo") || isEnabled("chkTipo2"));
}

TEST_F(TheSendingDialog, TheAdviceIsOneButton) {
  start();
  click(*dialog, "cmdConsigliate");
  EXPECT_TRUE(isOn("chkSicuro") && isOn("chkContenuto") && isOn("chkRiprova"));
  click(*dialog, "cmdOK");
  EXPECT_TRUE(file("kvftp.ini").ends_with("LOCK: -1\r\nSAFE: 1\r\nHASH: 1\r\nRETR: 1\r\nCONN: 3\r\n"));
}

TEST_F(TheSendingDialog, TheFirstPublishOfAShopPointsAtTheAdvice) {
  start();
  EXPECT_EQ(fromQt(control<QLabel>(*dialog, "lblPrimoInvio")->text()),
            "È il primo invio di questo negozio: \"Impostazioni consigliate\" lo rende più sicuro e più rapido.");
  for (const char* trace : {"kvftp1.log", "kvftp.ini"}) {
    ASSERT_TRUE(writeBytes(shop + "/" + trace, ""));
    start();
    EXPECT_EQ(dialog->findChild<QLabel*>(QStringLiteral("lblPrimoInvio")), nullptr) << trace;
    ASSERT_TRUE(deleteFile(shop + "/" + trace));
  }
}

TEST_F(TheSendingDialog, TheConnectionsAndTheCleanUpAreWrittenAndShownAgain) {
  start();
  auto* connections = control<QComboBox>(*dialog, "cboConnessioni");
  EXPECT_EQ(fromQt(connections->currentText()), "1");
  EXPECT_FALSE(isOn("chkPulizia"));
  connections->setCurrentIndex(connections->findText("4"));
  choose("chkPulizia");
  click(*dialog, "cmdOK");
  EXPECT_TRUE(file("kvftp.ini").ends_with("LOCK: -1\r\nCONN: 4\r\nPULI: 1\r\n")) << file("kvftp.ini");
  start();
  EXPECT_EQ(fromQt(control<QComboBox>(*dialog, "cboConnessioni")->currentText()), "4");
  EXPECT_TRUE(isOn("chkPulizia"));
}

TEST_F(TheSendingDialog, TheAdviceLeavesTheCleanUpToTheMerchant) {
  start();
  click(*dialog, "cmdConsigliate");
  EXPECT_FALSE(isOn("chkPulizia"));
  EXPECT_EQ(fromQt(control<QComboBox>(*dialog, "cboConnessioni")->currentText()), "3");
}

TEST_F(TheSendingDialog, AnotherHostIsAskedAboutOnce) {
  ASSERT_TRUE(writeBytes(shop + "/db/sql.mdb", "x"));
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET hostname = 'ftp.b.it'"));
  const auto now = readPublishedShop(session.catalogue);
  ASSERT_TRUE(now);
  PublishedShop before = *now;
  before.hostname = "ftp.a.it";
  ASSERT_TRUE(writeBytes(session.onlineFolder + "/" + now->db_security + ".sc", "2\r\n"));
  ASSERT_TRUE(keepLastRun(shop, before, 2));
  user.answers = {Answer::Yes};
  start();
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_TRUE(isEnabled("optSoloModificati"));
}

TEST_F(TheSendingDialog, AShopThatIsNotBuiltIsToldAndNothingIsShown) {
  ASSERT_TRUE(deleteFile(shop + "/kvftp.dat"));
  frmImpostaFTP early(session, env, lock);
  early.exec();
  EXPECT_EQ(user.texts(), std::vector<std::string>{"E' necessario costruire il negozio prima di aggiornare il sito"});
  EXPECT_EQ(early.tag(), "");
}

TEST_F(TheSendingDialog, AFailureToWriteIsToldAndTheDialogStays) {
  start();
  ASSERT_TRUE(createFolder(shop + "/kvftp.ini"));
  choose("chkModificati");
  click(*dialog, "cmdOK");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_TRUE(user.shown[0].text.starts_with("Errore: "));
  EXPECT_TRUE(dialog->isVisible());
}

TEST_F(TheSendingDialog, EscapeLeavesTheFileAlone) {
  ASSERT_TRUE(writeBytes(shop + "/kvftp.ini", "MODE: 0\r\n"));
  start();
  choose("chkModificati");
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(file("kvftp.ini"), "MODE: 0\r\n");
}

class TheConnectionDialog : public PublishDialog {
 protected:
  void start() {
    dialog.emplace(shop, user);
    show(*dialog);
  }
  void type(const char* name, const char* text) { control<QLineEdit>(*dialog, name)->setText(QString::fromUtf8(text)); }
  std::optional<frmFirewall> dialog;
};

TEST_F(TheConnectionDialog, ShowsADirectPassiveConnectionFirst) {
  start();
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optPassiva")->isChecked());
  EXPECT_EQ(control<QLineEdit>(*dialog, "txtPortaFTP")->text(), "21");
  const auto* kinds = control<QComboBox>(*dialog, "cboTipo");
  QStringList names;
  for (int i = 0; i < kinds->count(); ++i) names << kinds->itemText(i);
  EXPECT_EQ(fromQt(names.join("|")),
            "Nessun firewall|Socks 4|Socks 5|Proxy USER|Proxy SITE|Proxy PROXY|Proxy OPEN|Simple Pipe");
  EXPECT_FALSE(control<QLineEdit>(*dialog, "txtHost")->isEnabled());
  EXPECT_EQ(control<QLineEdit>(*dialog, "txtPassword")->echoMode(), QLineEdit::Password);
  EXPECT_EQ(test::namelessControls(*dialog), "");
  test::keepPicture(*dialog, "firewall");
}

TEST_F(TheConnectionDialog, OkWritesTheFile) {
  start();
  control<QComboBox>(*dialog, "cboTipo")->setCurrentIndex(2);
  EXPECT_TRUE(control<QLineEdit>(*dialog, "txtHost")->isEnabled());
  type("txtHost", " fw ");
  type("txtPorta", "1080");
  type("txtUser", "ada");
  type("txtPassword", "segreta");
  control<QComboBox>(*dialog, "cboTLS")->setCurrentIndex(2);
  click(*dialog, "optAttiva");
  click(*dialog, "cmdOK");
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(file("firewall.net"),
            "MODE: 0\r\nHOST: fw\r\nTYPE: 2\r\nPORT: 1080\r\nFPRT: 21\r\nUSER: ada\r\nPASS: segreta\r\nDISC: 0\r\n"
            "TLSM: 2\r\n");
}

TEST_F(TheConnectionDialog, SftpHasAPortOfItsOwnAndNothingThatOnlyFtpHas) {
  start();
  auto* protocol = control<QComboBox>(*dialog, "cboProtocollo");
  auto* kinds = control<QComboBox>(*dialog, "cboTipo");
  kinds->setCurrentIndex(3);
  protocol->setFocus();
  QTest::keyClick(protocol, Qt::Key_Down);
  EXPECT_EQ(fromQt(protocol->currentText()), "SFTP (SSH)");
  EXPECT_EQ(fromQt(control<QLineEdit>(*dialog, "txtPortaFTP")->text()), "22");
  EXPECT_EQ(kinds->currentIndex(), 0) << "a proxy of FTP carries no SFTP";
  for (const char* name : {"optPassiva", "optAttiva", "cboTLS"}) {
    EXPECT_FALSE(control<QWidget>(*dialog, name)->isEnabled()) << name;
  }
  test::keepPicture(*dialog, "firewall_sftp");
  click(*dialog, "cmdOK");
  EXPECT_NE(file("firewall.net").find("FPRT: 22\r\n"), std::string::npos);
  EXPECT_TRUE(file("firewall.net").ends_with("PROT: 1\r\n"));
  start();
  EXPECT_EQ(control<QComboBox>(*dialog, "cboProtocollo")->currentIndex(), 1);
}

TEST_F(TheConnectionDialog, TlsFromTheFirstByteHasAPortOfItsOwn) {
  start();
  auto* tls = control<QComboBox>(*dialog, "cboTLS");
  tls->setFocus();
  QTest::keyClick(tls, Qt::Key_End);
  EXPECT_EQ(fromQt(control<QLineEdit>(*dialog, "txtPortaFTP")->text()), "990");
  click(*dialog, "cmdOK");
  EXPECT_NE(file("firewall.net").find("FPRT: 990\r\n"), std::string::npos);
  EXPECT_TRUE(file("firewall.net").ends_with("TLSM: 3\r\n"));
}

TEST_F(TheConnectionDialog, TabGoesRoundAllOfItsControls) {
  dialog.emplace(shop, user, [](const FirewallSettings&) {});
  show(*dialog);
  std::set<std::string> reached;
  for (int i = 0; i < 20; ++i) {
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
    reached.insert(fromQt(dialog->focusWidget()->objectName()));
  }
  EXPECT_EQ(reached, (std::set<std::string>{"cboProtocollo", "optPassiva", "txtPortaFTP", "cboTLS", "chkDisc",
                                            "cboTipo", "cmdReset", "cmdVerifica", "cmdOK", "cmdAnnulla"}));
}

TEST_F(TheConnectionDialog, TheResetDeletesTheFileOnlyOnOk) {
  ASSERT_TRUE(writeBytes(shop + "/firewall.net", "MODE: 0\r\nHOST: fw\r\nTYPE: 1\r\n"));
  start();
  click(*dialog, "cmdReset");
  EXPECT_NE(file("firewall.net"), "(missing)");
  EXPECT_EQ(control<QLineEdit>(*dialog, "txtHost")->text(), "fw");
  user.answers = {Answer::Ok};
  click(*dialog, "cmdReset");
  EXPECT_EQ(file("firewall.net"), "(missing)");
  EXPECT_EQ(control<QLineEdit>(*dialog, "txtHost")->text(), "");
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optPassiva")->isChecked());
}

TEST_F(TheConnectionDialog, TheConnectionIsTriedAsShown) {
  FirewallSettings tried;
  dialog.emplace(shop, user, [&](const FirewallSettings& shown) { tried = shown; });
  show(*dialog);
  type("txtPortaFTP", "2121");
  click(*dialog, "cmdVerifica");
  EXPECT_EQ(tried.ftpPort, "2121");
  EXPECT_EQ(file("firewall.net"), "(missing)");
  EXPECT_TRUE(dialog->isVisible());
}

TEST_F(TheConnectionDialog, EscapeWritesNothing) {
  start();
  click(*dialog, "optAttiva");
  expectEscapeLeaves(*dialog);
  EXPECT_EQ(file("firewall.net"), "(missing)");
}

}  // namespace
}  // namespace kv
