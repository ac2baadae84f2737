// The rules of the fifteen payment dialogs: what is read of conf.ini, what is written, what is told.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "commerce/gateways/gateway_account.h"
#include "commerce/gateways/payment_modules.h"
#include "commerce_shop.h"
#include "support/failing_files.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class TheGateways : public CommerceShop {
 protected:
  void SetUp() override { copyModules(); }

  static const GatewayModule& moduleOf(std::string_view folder) {
    for (const GatewayModule& module : gatewayModules()) {
      if (module.folder == folder) return module;
    }
    ADD_FAILURE() << folder;
    return gatewayModules()[0];
  }
  GatewayAccount load(std::string_view folder) { return GatewayAccount::load(session, moduleOf(folder)); }
  void save(const GatewayAccount& account) {
    const auto saved = account.save(session);
    EXPECT_TRUE(saved) << saved.error().what;
  }
  std::string code(const std::string& path) const { return session.ShopFolder + "/code/" + path; }
  std::string read(const std::string& path) const {
    const auto text = readText(code(path));
    return text ? *text : "(missing)";
  }
  void write(const std::string& path, std::string_view text) const { ASSERT_TRUE(writeText(code(path), text)); }
  static bool isTyped(const AccountKey& key) {
    return key.role == KeyRole::Text || key.role == KeyRole::Secret || key.role == KeyRole::Lines;
  }
  static unsigned modeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
  }
};

TEST_F(TheGateways, KeptLinesComeFirstAndTheAccountKeysInTheirOrder) {
  write("Bankpass/conf.ini",
        "mid=vecchio\r\nphp(default)=bankpass\r\nsenza uguale\r\nval=1\r\nphp=bpurlms\r\nphp(sel)=mio\r\njava=x\r\n");
  GatewayAccount account = load("Bankpass");
  account.setValue("mid", "nuovo");
  account.setValue("ss1", "a=b=c");
  account.setValue("con", "D");
  save(account);
  EXPECT_EQ(read("Bankpass/conf.ini"),
            "php(default)=bankpass\r\nphp=bpurlms\r\nphp(sel)=mio\r\nmid=nuovo\r\nval=978\r\n"
            "url=https://pagamenti.bankpass.example/avvio\r\njava=importo = Math.round(importo1 * 100);\r\n"
            "ss1=a=b=c\r\nss2=\r\ncon=D\r\naut=D\r\ncod=0\r\ntest=\r\n");
}

TEST_F(TheGateways, AValueWithAnEqualsSignSurvivesLoadAndSave) {
  for (int round = 0; round < 2; ++round) {
    GatewayAccount account = load("Omnipay");
    if (round == 0) account.setValue("key", "=x==y=");
    EXPECT_EQ(account.value("key"), "=x==y=");
    save(account);
  }
  EXPECT_THAT(read("Omnipay/conf.ini"), HasSubstr("key==x==y=\r\n"));
}

TEST_F(TheGateways, AModuleKeyAddedByHandSurvivesAndTheConstantsAreRewritten) {
  write("Cilme/conf.ini", "action=kvorder\r\nmia=1\r\nmid=7\r\nval=LIT\r\njava=niente\r\nalias=x\r\nnewsys=0\r\n");
  save(load("Cilme"));
  EXPECT_EQ(read("Cilme/conf.ini"),
            "action=kvorder\r\nmia=1\r\nmid=7\r\nval=EUR\r\njava=importo = Math.round(importo1 * 100);\r\nalias=x\r\n"
            "newsys=0\r\n");
}

TEST_F(TheGateways, KeysCompareExactly) {
  write("AuthorizeNet/conf.ini", "action=kvorder\r\nMID=grande\r\nmid=piccolo\r\n");
  GatewayAccount account = load("AuthorizeNet");
  EXPECT_EQ(account.value("mid"), "piccolo");
  save(account);
  EXPECT_EQ(read("AuthorizeNet/conf.ini"), "action=kvorder\r\nMID=grande\r\nmid=piccolo\r\n");
}

TEST_F(TheGateways, EmptyFieldsLeaveNothingWhereThePlaceholdersWere) {
  for (const GatewayModule& module : gatewayModules()) {
    GatewayAccount account = GatewayAccount::load(session, module);
    for (const AccountKey& key : module.keys) account.setValue(key.key, "");
    save(account);
    std::vector<std::string> files{std::string(module.folder) + ".kpg"};
    for (const std::string_view name : module.scripts) {
      files.push_back(std::string(module.folder).append("/").append(name) + ".php");
    }
    for (const std::string& file : files) {
      const std::string filled = read(file);
      EXPECT_NE(filled, "(missing)") << file;
      for (const std::string_view key : module.placeholders) {
        EXPECT_THAT(filled, Not(HasSubstr("\n#" + std::string(key) + "\r\n"))) << file;
      }
    }
    const std::string settings = read(std::string(module.folder) + "/conf.ini");
    for (const AccountKey& key : module.keys) {
      if (!isTyped(key)) continue;
      EXPECT_THAT(settings, HasSubstr("\n" + std::string(key.key) + "=\r\n")) << module.folder;
    }
  }
}

TEST_F(TheGateways, OfAModuleThatWasNeverConfiguredHaveTheShippedDescriptorWithoutAccountData) {
  for (const GatewayModule& module : gatewayModules()) {
    const std::string descriptor = std::string(module.folder) + ".kpg";
    const std::string shipped = read(descriptor);
    GatewayAccount empty = GatewayAccount::load(session, module);
    for (const AccountKey& key : module.keys) {
      if (isTyped(key)) empty.setValue(key.key, "");
    }
    save(empty);
    EXPECT_EQ(shipped, read(descriptor)) << module.folder;
  }
}

TEST_F(TheGateways, DescriptorAndScriptsAreFilled) {
  GatewayAccount account = load("Cartafacile");
  account.setValue("mid", "NEG1");
  account.setValue("ss1", "primo");
  account.setValue("ss2", "secondo");
  save(account);
  EXPECT_THAT(read("Cartafacile.kpg"), HasSubstr("    importo = Math.round(importo1 * 100);\r\n"));
  EXPECT_THAT(read("Cartafacile/cartafacile.php"),
              HasSubstr("\r\nNEG1\r\n978\r\nhttps://pagamenti.cartafacile.example/avvio\r\nprimo\r\n0\r\n"));
  EXPECT_THAT(read("Cartafacile/cfurlms.php"), HasSubstr("\r\nNEG1\r\n978\r\nsecondo\r\n"));
}

TEST_F(TheGateways, CilmeTakesItsDescriptorFromTheTemplateOfItsSystem) {
  GatewayAccount account = load("Cilme");
  save(account);
  EXPECT_THAT(read("Cilme.kpg"), HasSubstr("Cilme, first system"));
  account.setValue("newsys", "1");
  save(account);
  EXPECT_THAT(read("Cilme.kpg"), HasSubstr("Cilme, new system"));
}

TEST_F(TheGateways, TheServicesAddressIsThatOfProductionUnlessTheTestIsOn) {
  GatewayAccount account = load("Bankpass");
  EXPECT_FALSE(account.usesTest());
  account.setTestAddress("https://prova.bankpass.example/altro");
  account.setUsesTest(true);
  save(account);
  EXPECT_THAT(read("Bankpass/conf.ini"), HasSubstr("url=https://prova.bankpass.example/altro\r\n"));
  EXPECT_THAT(read("Bankpass/conf.ini"), HasSubstr("test=https://prova.bankpass.example/altro\r\n"));
  account = load("Bankpass");
  EXPECT_TRUE(account.usesTest());
  EXPECT_EQ(account.testAddress(), "https://prova.bankpass.example/altro");
  account.setUsesTest(false);
  save(account);
  EXPECT_THAT(read("Bankpass/conf.ini"), HasSubstr("url=https://pagamenti.bankpass.example/avvio\r\n"));
  account = load("Bankpass");
  EXPECT_FALSE(account.usesTest());
  EXPECT_EQ(account.testAddress(), "https://prova.bankpass.example/altro");
}

TEST_F(TheGateways, AnOldTestAddressShowsAsThePresentOneAndIsStoredByOk) {
  write("Telepay Light/conf.ini", "php=x\r\nurl=https://test.telepay.example/vecchio\r\n");
  GatewayAccount account = load("Telepay Light");
  EXPECT_TRUE(account.usesTest());
  EXPECT_EQ(account.testAddress(), "https://prova.telepay.example/avvio");
  EXPECT_THAT(read("Telepay Light/conf.ini"), HasSubstr("vecchio"));
  save(account);
  EXPECT_THAT(read("Telepay Light/conf.ini"), HasSubstr("url=https://prova.telepay.example/avvio\r\n"));
  // The stored address of a test that is off, too.
  write("Bankpass/conf.ini",
        "url=https://pagamenti.bankpass.example/avvio\r\ntest=https://test.bankpass.example/vecchio\r\n");
  account = load("Bankpass");
  EXPECT_FALSE(account.usesTest());
  EXPECT_EQ(account.testAddress(), "https://prova.bankpass.example/avvio");
  save(account);
  EXPECT_THAT(read("Bankpass/conf.ini"), HasSubstr("test=https://prova.bankpass.example/avvio\r\n"));
}

TEST_F(TheGateways, TheTextBeforeTheOrdersCodeIsOffOnAnotherTestServer) {
  GatewayAccount account = load("Bankpass");
  account.setValue("cod", "1");
  EXPECT_TRUE(account.canPrefixOrder());
  account.setUsesTest(true);
  account.setTestAddress("https://prova.bankpass.example/x");
  EXPECT_TRUE(account.canPrefixOrder());
  for (const char* other : {"https://prova.bankpass.example.altrove/x", "http://localhost/", ""}) {
    account.setTestAddress(other);
    EXPECT_FALSE(account.canPrefixOrder()) << other;
    save(account);
    EXPECT_THAT(read("Bankpass/conf.ini"), HasSubstr("cod=0\r\n"));
  }
}

TEST_F(TheGateways, MomentsAreKnownByTheirFirstCharacter) {
  write("Bankpass/conf.ini", "con=immediata\r\naut=Differita\r\n");
  GatewayAccount account = load("Bankpass");
  EXPECT_EQ(account.value("con") + account.value("aut"), "ID");
  save(account);
  EXPECT_THAT(read("Bankpass/conf.ini"), HasSubstr("con=I\r\naut=D\r\n"));
}

TEST_F(TheGateways, EachSecurityModeHasItsModuleKeysInFrontOfTheAccountKeys) {
  write("Banca Sella/conf.ini",
        "php(default)=gestpaycomp\r\nmia=1\r\npwd=segreta\r\nphp=s2scomp\r\nval=1\r\nmid=M\r\ntid=\r\n");
  GatewayAccount account = load("Banca Sella");
  EXPECT_EQ(account.mode(), SellaMode::Compatible);
  EXPECT_EQ(account.value("tid"), "1");
  account.setMode(SellaMode::Otp);
  account.setValue("lan", "1");
  account.setValue("tid", "  3 ");
  save(account);
  EXPECT_EQ(read("Banca Sella/conf.ini"),
            "mia=1\r\nphp(default)=gestpayotp\r\nphp=s2sotp\r\nmid=M\r\nval=242\r\nlan=idlan=1\r\ntid=3\r\n");
  account = load("Banca Sella");
  EXPECT_EQ(account.mode(), SellaMode::Otp);
  EXPECT_EQ(account.value("lan"), "1");
}

TEST_F(TheGateways, OnlyTheModesWithATemplateFillAScript) {
  GatewayAccount account = load("Banca Sella");
  account.setValue("mid", "M#tid");
  save(account);
  EXPECT_EQ(read("Banca Sella/s2scrypt.php").find("M#tid"), std::string::npos);
  account.setMode(SellaMode::Crypt);
  save(account);
  EXPECT_THAT(read("Banca Sella/s2scrypt.php"), HasSubstr("\r\nM#tid\r\n"));
  EXPECT_THAT(read("Banca Sella.kpg"), HasSubstr("\r\nM1\r\n1\r\n242\r\n\r\n"));
}

TEST_F(TheGateways, TheAddressesForTheBankFollowTheMode) {
  GatewayAccount account = load("Banca Sella");
  account.setMode(SellaMode::Crypt);
  SellaAddresses addresses = account.addresses("http://bottega.example/shop");
  EXPECT_EQ(addresses.server, "http://bottega.example/shop/s2scrypt.php");
  EXPECT_EQ(addresses.success, "http://bottega.example/shop/s2scrypt.php?c=payok");
  EXPECT_EQ(addresses.failure, "http://bottega.example/shop/s2scrypt.php?c=payerr");
  account.setMode(SellaMode::Otp);
  EXPECT_EQ(account.addresses("http://bottega.example/").server, "http://bottega.example/s2sotp.php");
  account.setMode(SellaMode::Compatible);
  addresses = account.addresses("http://bottega.example");
  EXPECT_EQ(addresses.server, "");
  EXPECT_THAT(addresses.success, HasSubstr("/s2scomp.php"));
}

TEST_F(TheGateways, TheEndpointsOfSysPayComeInWhenAbsent) {
  write("SysPay/conf.ini", "php(default)=syspay\r\nmid=1\r\nurl=https://proprio.example/\r\n");
  save(load("SysPay"));
  EXPECT_EQ(read("SysPay/conf.ini"),
            "php(default)=syspay\r\nmid=1\r\nrec=\r\nurl=https://proprio.example/\r\n"
            "dev=https://prova.syspay.example/avvio\r\n");
}

TEST_F(TheGateways, PaypalOffersFiveCurrencies) {
  GatewayAccount account = load("Paypal");
  EXPECT_EQ(account.value("val"), "EUR");
  account.setValue("val", "JPY");
  save(account);
  EXPECT_EQ(load("Paypal").value("val"), "JPY");
  EXPECT_EQ(std::size(paypalCurrencies), 5U);
}

TEST_F(TheGateways, EmptyingTheSecretsLeavesTheRest) {
  GatewayAccount account = load("Telepay Light");
  account.setValue("mid", "M");
  account.setValue("ss1", "a");
  account.setValue("ss2", "b");
  EXPECT_TRUE(account.module().canEmptySecrets());
  account.emptySecrets();
  EXPECT_EQ(account.value("mid") + account.value("ss1") + account.value("ss2"), "M");
}

TEST_F(TheGateways, AMissingTemplateEndsTheWritingThereWithoutAWord) {
  ASSERT_TRUE(deleteFile(code("Cariverona/form.kpg")));
  const std::string descriptor = read("Cariverona.kpg");
  const std::string script = read("Cariverona/cariverona.php");
  GatewayAccount account = load("Cariverona");
  account.setValue("ncom", "1234");
  save(account);
  EXPECT_THAT(read("Cariverona/conf.ini"), HasSubstr("ncom=1234\r\n"));
  EXPECT_EQ(read("Cariverona.kpg"), descriptor);
  EXPECT_EQ(read("Cariverona/cariverona.php"), script);
}

TEST_F(TheGateways, AMissingDescriptorOrScriptIsWrittenFromItsTemplate) {
  ASSERT_TRUE(deleteFile(code("Omnipay.kpg")));
  ASSERT_TRUE(deleteFile(code("Omnipay/omniend.php")));
  GatewayAccount account = load("Omnipay");
  account.setValue("sto", "NEG1");
  save(account);
  EXPECT_THAT(read("Omnipay.kpg"), HasSubstr("NEG1"));
  EXPECT_THAT(read("Omnipay/omniend.php"), HasSubstr("NEG1"));
}

TEST_F(TheGateways, AMissingConfIniLeavesTheModuleAlone) {
  ASSERT_TRUE(deleteFile(code("Omnipay/conf.ini")));
  const std::string descriptor = read("Omnipay.kpg");
  GatewayAccount account = load("Omnipay");
  EXPECT_EQ(account.value("sto"), "");
  account.setValue("sto", "1");
  save(account);
  EXPECT_EQ(read("Omnipay/conf.ini"), "(missing)");
  EXPECT_EQ(read("Omnipay.kpg"), descriptor);
}

TEST_F(TheGateways, WhateverFileCallFailsTheFilesAreAllOldOrAllNew) {
  const auto state = [this] { return read("Omnipay/conf.ini") + read("Omnipay.kpg") + read("Omnipay/omniend.php"); };
  const std::string before = state();
  for (int n = 1; n < 200; ++n) {
    GatewayAccount account = load("Omnipay");
    account.setValue("sto", "NUOVO");
    FailingFiles files(n);
    files.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename});
    const auto saved = account.save(session);
    if (!files.hasFailed()) {
      EXPECT_TRUE(saved);
      EXPECT_GT(n, 9);
      return;
    }
    EXPECT_FALSE(saved) << n;
    EXPECT_EQ(state(), before) << n;
  }
  ADD_FAILURE() << "no end";
}

TEST_F(TheGateways, AColumnThatCannotBeStoredLeavesTheFiles) {
  const std::string before = read("Contrassegno/conf.ini") + read("Contrassegno.kpg");
  GatewayAccount account = load("Contrassegno");
  account.setValue("info", "nuovo");
  FailingStore store(1);
  store.onlyFor("UPDATE");
  EXPECT_FALSE(account.save(session));
  EXPECT_EQ(read("Contrassegno/conf.ini") + read("Contrassegno.kpg"), before);
}

TEST_F(TheGateways, FilesWithAccountDataAreTheirOwnersAlone) {
  save(load("Cariverona"));
  for (const char* path : {"Cariverona/conf.ini", "Cariverona.kpg", "Cariverona/cariverona.php"}) {
    EXPECT_EQ(modeOf(code(path)), 0600U) << path;
  }
}

TEST_F(TheGateways, TheButtonsTellHowFarEachModuleIs) {
  std::vector<GatewayState> states = gatewayStates(session);
  ASSERT_EQ(states.size(), 15U);
  EXPECT_EQ(gatewayStateText(states[4]), "in uso, da configurare");
  EXPECT_EQ(gatewayStateText(states[9]), "da configurare");
  GatewayAccount account = load("Contrassegno");
  save(account);
  account = load("Paypal");
  account.setValue("mid", "negozio@bottega.example");
  EXPECT_TRUE(account.isComplete());
  save(account);
  states = gatewayStates(session);
  EXPECT_EQ(gatewayStateText(states[4]), "configurato");
  EXPECT_EQ(gatewayStateText(states[9]), "configurato");
  EXPECT_FALSE(load("Shopla").isComplete());
}

TEST_F(TheGateways, AModuleWhoseTemplateWasRenewedWantsAnOk) {
  EXPECT_TRUE(modulesToConfirm(session).empty());
  GatewayAccount account = load("Omnipay");
  account.setValue("sto", "1");
  account.setValue("key", "2");
  save(account);
  EXPECT_TRUE(modulesToConfirm(session).empty());
  write("Omnipay/omniend.new", "<?php // nuovo #sto");
  write("Shopla/form.kpg", "nuovo #mid");
  EXPECT_EQ(modulesToConfirm(session), std::vector<std::string_view>{"Omnipay"});
  save(load("Omnipay"));
  EXPECT_TRUE(modulesToConfirm(session).empty());
  EXPECT_EQ(read("Omnipay/omniend.php"), "<?php // nuovo 1");
}

}  // namespace
}  // namespace kv::test
