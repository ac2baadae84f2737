// The window of the payment systems and the dialog of each of them.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

#include "captions.h"
#include "commerce/gateways/frm_configura_pg.h"
#include "dialog_fixture.h"

namespace kv {
namespace {

using test::click;
using test::control;

class TheGatewayDialogs : public test::DialogFixture {
 protected:
  void SetUp() override {
    DialogFixture::SetUp();
    ASSERT_TRUE(copyTree(std::string(KORVANE_APP_DATA) + "/new/code", shop + "/code"));
    hooks.shopAddress = "http://bottega.example/negozio";
  }
  void openModule(std::size_t index) {
    dialog.emplace(session, env, gatewayModules()[index], hooks);
    show(*dialog);
  }
  std::string conf(const std::string& folder) const {
    const auto text = readText(shop + "/code/" + folder + "/conf.ini");
    return text ? *text : "(missing)";
  }
  QLineEdit* line(const char* name) const { return control<QLineEdit>(*dialog, name); }

  GatewayHooks hooks;
  std::optional<frmPG> dialog;
};

TEST_F(TheGatewayDialogs, EachModuleHasItsDialogWithEveryControlNamed) {
  for (std::size_t i = 0; i < gatewayModules().size(); ++i) {
    openModule(i);
    EXPECT_EQ(fromQt(dialog->objectName()), gatewayModules()[i].dialog);
    EXPECT_EQ(test::defaultButton(*dialog), "OK");
    EXPECT_EQ(test::namelessControls(*dialog), "") << gatewayModules()[i].dialog;
    EXPECT_EQ(test::repeatedKeys(*dialog), "") << gatewayModules()[i].dialog;
    const std::string before = conf(std::string(gatewayModules()[i].folder));
    test::keepPicture(*dialog, "gateway" + std::to_string(i));
    expectEscapeLeaves(*dialog);
    EXPECT_EQ(conf(std::string(gatewayModules()[i].folder)), before);
  }
}

TEST_F(TheGatewayDialogs, TheSwitchesHaveTheirCaptions) {
  std::string captions;
  for (std::size_t i = 0; i < gatewayModules().size(); ++i) {
    openModule(i);
    captions += fromQt(test::captionsOf(*dialog));
  }
  for (const char* caption : {"Codice ordine preceduto da un testo", "Usa il server di test", "Invia dati lingua",
                              "Immediata", "Differita"}) {
    EXPECT_NE(captions.find(caption), std::string::npos) << caption;
  }
}

TEST_F(TheGatewayDialogs, WhatIsTypedIsWrittenByOk) {
  openModule(12);
  QTest::keyClicks(line("txt_ncom"), "12=34");
  QTest::keyClicks(line("txt_segr"), "chiave");
  QTest::keyClick(line("txt_segr"), Qt::Key_Return);
  EXPECT_EQ(dialog->tag(), "OK");
  EXPECT_EQ(conf("Cariverona"), "php(default)=cariverona\r\nncom=12=34\r\nncto=\r\nuser=\r\npass=\r\nsegr=chiave\r\n");
}

TEST_F(TheGatewayDialogs, SecretsAreHiddenUntilTheSwitchIsOn) {
  openModule(13);
  EXPECT_EQ(line("txt_ss1")->echoMode(), QLineEdit::Password);
  QTest::keyClick(control<QCheckBox>(*dialog, "chkMostra"), Qt::Key_Space);
  EXPECT_EQ(line("txt_ss1")->echoMode(), QLineEdit::Normal);
  EXPECT_EQ(line("txt_mid")->echoMode(), QLineEdit::Normal);
}

TEST_F(TheGatewayDialogs, TheTestFieldFollowsItsSwitch) {
  openModule(13);
  auto* prefix = control<QCheckBox>(*dialog, "chk_cod");
  prefix->setChecked(true);
  EXPECT_FALSE(line("txtTest")->isEnabled());
  QTest::keyClick(control<QCheckBox>(*dialog, "chkTest"), Qt::Key_Space);
  EXPECT_TRUE(line("txtTest")->isEnabled());
  QTest::keyClicks(line("txtTest"), "http://localhost/prova");
  EXPECT_FALSE(prefix->isEnabled());
  EXPECT_FALSE(prefix->isChecked());
  line("txtTest")->setText("https://prova.bankpass.example/avvio");
  EXPECT_TRUE(prefix->isEnabled());
  QTest::keyClick(control<QRadioButton>(*dialog, "opt_conD"), Qt::Key_Space);
  click(*dialog, "cmdOK");
  EXPECT_EQ(conf("Bankpass"),
            "php(default)=bankpass\r\nphp=bpurlms\r\nmid=\r\nval=978\r\nurl=https://prova.bankpass.example/avvio\r\n"
            "java=importo = Math.round(importo1 * 100);\r\nss1=\r\nss2=\r\ncon=D\r\naut=I\r\ncod=0\r\n"
            "test=https://prova.bankpass.example/avvio\r\n");
}

TEST_F(TheGatewayDialogs, TheButtonEmptiesBothSecretKeys) {
  openModule(0);
  line("txt_ss1")->setText("a");
  line("txt_ss2")->setText("b");
  click(*dialog, "cmdSvuota");
  EXPECT_EQ(line("txt_ss1")->text() + line("txt_ss2")->text(), "");
}

TEST_F(TheGatewayDialogs, TheAddressesFollowTheSecurityMode) {
  openModule(1);
  EXPECT_TRUE(control<QRadioButton>(*dialog, "optModo2")->isChecked());
  EXPECT_EQ(line("txtNotifica")->text(), "");
  QTest::keyClick(control<QRadioButton>(*dialog, "optModo1"), Qt::Key_Space);
  EXPECT_EQ(line("txtNotifica")->text(), "http://bottega.example/negozio/s2sotp.php");
  EXPECT_EQ(line("txtRispostaErr")->text(), "http://bottega.example/negozio/s2sotp.php?c=payerr");
  EXPECT_TRUE(line("txtNotifica")->isReadOnly());
  EXPECT_EQ(line("txt_tid")->text(), "1");
}

TEST_F(TheGatewayDialogs, TheListOfPasswordsAndWhatIsToldOfTheLanguageAreHooks) {
  openModule(1);
  for (const char* button : {"cmdPwd", "cmdLingua"}) EXPECT_FALSE(control<QPushButton>(*dialog, button)->isEnabled());
  int opened = 0, told = 0;
  hooks.passwords = [&opened] { ++opened; };
  hooks.language = [&told] { ++told; };
  openModule(1);
  click(*dialog, "cmdPwd");
  EXPECT_EQ(opened, 1);
  click(*dialog, "cmdLingua");
  EXPECT_EQ(told, 1);
  EXPECT_TRUE(user.shown.empty());
}

TEST_F(TheGatewayDialogs, TheTextOfAnOfflineMethodHasItsLines) {
  openModule(4);
  auto* text = control<QPlainTextEdit>(*dialog, "txt_info");
  text->setPlainText("uno\ndue");
  click(*dialog, "cmdOK");
  EXPECT_EQ(conf("Contrassegno"), "action=kvorder\r\ninfo=uno||due\r\n");
  EXPECT_EQ(stored("contrassegno"), "uno\r\ndue");
}

TEST_F(TheGatewayDialogs, AFailureToWriteIsToldAndTheDialogStays) {
  openModule(9);
  line("txt_mid")->setText("conto");
  ASSERT_TRUE(deleteFile(shop + "/code/Paypal.kpg"));
  ASSERT_TRUE(createFolder(shop + "/code/Paypal.kpg"));
  const std::string before = conf("Paypal");
  click(*dialog, "cmdOK");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Exclamation);
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(line("txt_mid")->text(), "conto");
  EXPECT_EQ(conf("Paypal"), before);
}

TEST_F(TheGatewayDialogs, TheWindowHasAButtonWithTheStateOfEachModule) {
  frmConfiguraPG window(session, env, hooks);
  show(window);
  EXPECT_EQ(fromQt(window.windowTitle()), "Korvane - Configurazione sistemi di pagamento");
  EXPECT_EQ(control<QPushButton>(window, "cmdConfigura4")->text(), "Contrassegno: in uso, da configurare");
  EXPECT_EQ(control<QPushButton>(window, "cmdConfigura14")->text(), "SysPay: da configurare");
  EXPECT_EQ(test::namelessControls(window), "");
  test::keepPicture(window, "gateways");
  test::whenModal([](QWidget& modal) {
    EXPECT_EQ(fromQt(modal.objectName()), "frmPG_PayPal");
    control<QLineEdit>(modal, "txt_mid")->setText("conto@bottega.example");
    control<QComboBox>(modal, "cbo_val")->setCurrentText("GBP");
    click(modal, "cmdOK");
  });
  QTest::keyClick(control<QPushButton>(window, "cmdConfigura9"), Qt::Key_Space);
  EXPECT_EQ(control<QPushButton>(window, "cmdConfigura9")->text(), "Paypal: configurato");
  EXPECT_EQ(conf("Paypal"), "action=kvorder\r\nmid=conto@bottega.example\r\nval=GBP\r\n");
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_EQ(window.tag(), "OK");
}

TEST_F(TheGatewayDialogs, TheWindowNamesTheModulesThatWantAnOk) {
  openModule(11);
  line("txt_mid")->setText("7");
  click(*dialog, "cmdOK");
  ASSERT_TRUE(writeText(shop + "/code/Shopla/form.kpg", "nuovo #mid"));
  frmConfiguraPG window(session, env, hooks);
  show(window);
  EXPECT_TRUE(control<QLabel>(window, "lblConferma")->isVisible());
  EXPECT_TRUE(control<QLabel>(window, "lblConferma")->text().endsWith(": Shopla"));
}

TEST_F(TheGatewayDialogs, TheWindowLeftAloneHasNoResult) {
  frmConfiguraPG window(session, env, hooks);
  show(window);
  expectEscapeLeaves(window);
}

}  // namespace
}  // namespace kv
