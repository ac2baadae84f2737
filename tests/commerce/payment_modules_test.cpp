// The payment modules of a shop: what is read of their files, and how a shop comes to those it lacks.

#include "commerce/gateways/payment_modules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "commerce/gateways/gateway_table.h"
#include "platform/files/files.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

class PaymentModules : public ::testing::Test {
 protected:
  void write(const std::string& path, std::string_view text) {
    const std::string full = root / path;
    ASSERT_TRUE(createFolders(std::string(folderOf(full))));
    ASSERT_TRUE(writeText(full, text));
  }
  std::string read(const std::string& path) const {
    const auto text = readText(root / path);
    return text ? *text : "(missing)";
  }

  TempFolder root;
  std::string shop = root / "negozio";
  std::string application = root / "programma";
};

TEST_F(PaymentModules, AreFifteenInTheOrderOfTheirNumbers) {
  EXPECT_THAT(paymentModules,
              ElementsAre("Telepay Light", "Banca Sella", "AuthorizeNet", "Planet Payment", "Contrassegno",
                          "Pagamento anticipato", "Cilme", "Cartafacile", "Omnipay", "Paypal", "Consorzio Triveneto",
                          "Shopla", "Cariverona", "Bankpass", "SysPay"));
}

TEST_F(PaymentModules, HaveTheirDialogsInTheSameOrder) {
  ASSERT_EQ(gatewayModules().size(), paymentModules.size());
  for (std::size_t i = 0; i < paymentModules.size(); ++i) EXPECT_EQ(gatewayModules()[i].folder, paymentModules[i]);
  EXPECT_EQ(gatewayModules()[3].dialog, "frmPG_PlanetPayment");
  EXPECT_EQ(gatewayModules()[9].dialog, "frmPG_PayPal");
}

TEST_F(PaymentModules, ASettingIsCutAtItsFirstEqualsSignAlone) {
  EXPECT_THAT(
      parseModuleSettings("java=importo = Math.round(importo1 * 100);\r\nurl=https://x.example/?a=1&b=2\r\n"),
      ElementsAre(Pair("java", "importo = Math.round(importo1 * 100);"), Pair("url", "https://x.example/?a=1&b=2")));
}

TEST_F(PaymentModules, ALineWithoutAnEqualsSignIsLeftOut) {
  EXPECT_THAT(parseModuleSettings("commento\r\n\r\nmid=7\r\n[sezione]\r\ncod="),
              ElementsAre(Pair("mid", "7"), Pair("cod", "")));
}

TEST_F(PaymentModules, TheDescriptorIsReadWithItsBytesAndLineEnds) {
  write("negozio/code/Bankpass.kpg", "<form>è\r\n</form>\r\n");
  EXPECT_EQ(ReadKpg(shop, "Bankpass"), "<form>è\r\n</form>\r\n");
}

TEST_F(PaymentModules, ANameOfSpacesGivesAnEmptyDescriptorAndNoAction) {
  EXPECT_EQ(ReadKpg(shop, ""), "");
  EXPECT_EQ(ReadKpg(shop, "  "), "");
  EXPECT_EQ(ReadKpgAction(shop, "", ""), "");
  EXPECT_TRUE(moduleScripts(shop, " ").empty());
}

TEST_F(PaymentModules, AMissingDescriptorGivesTheMarkOfAnError) { EXPECT_EQ(ReadKpg(shop, "Cilme"), "###ERRORE###"); }

TEST_F(PaymentModules, AreFoundWhateverTheCaseOfTheirName) {
  write("negozio/code/Paypal.KPG", "x");
  write("negozio/code/Paypal/CONF.INI", "action=vai\r\n");
  EXPECT_EQ(ReadKpg(shop, "PayPal"), "x");
  EXPECT_EQ(ReadKpgAction(shop, "PAYPAL", ""), "vai.php");
}

TEST_F(PaymentModules, ANameNeverLeadsOutOfTheCodeFolder) {
  write("negozio/segreto.kpg", "x");
  write("negozio/altro/conf.ini", "php=segreto\r\naction=segreto\r\n");
  ASSERT_TRUE(createFolders(shop + "/code"));
  EXPECT_EQ(ReadKpg(shop, "../segreto"), "###ERRORE###");
  EXPECT_EQ(ReadKpgAction(shop, "../altro", ""), "");
  EXPECT_TRUE(moduleScripts(shop, "../altro").empty());
}

TEST_F(PaymentModules, TheActionIsTheFirstLineOfEitherKeyWithTheLanguageSuffix) {
  write("negozio/code/Uno/conf.ini", "php=altro\r\nphp(default)=bankpass\r\naction=dopo\r\n");
  write("negozio/code/Due/conf.ini", "mid=1\r\naction=vai\r\nphp(default)=dopo\r\n");
  EXPECT_EQ(ReadKpgAction(shop, "Uno", ""), "bankpass.php");
  EXPECT_EQ(ReadKpgAction(shop, "Uno", "_l3"), "bankpass_l3.php");
  EXPECT_EQ(ReadKpgAction(shop, "Due", "_l2"), "vai_l2.php");
}

TEST_F(PaymentModules, WithoutAScriptOrWithoutSettingsThereIsNoAction) {
  write("negozio/code/Uno/conf.ini", "mid=1\r\nphp=altro\r\n");
  EXPECT_EQ(ReadKpgAction(shop, "Uno", ""), "");
  EXPECT_EQ(ReadKpgAction(shop, "Manca", ""), "");
}

TEST_F(PaymentModules, TheScriptsAreThoseOfTheThreeKeysInTheOrderOfTheirLines) {
  write("negozio/code/Sella/conf.ini", "php(sel)=c\r\naction=no\r\nphp(default)=a\r\nPHP=no\r\nphp=b\r\n");
  write("negozio/code/Sella/A.PHP", "");
  std::vector<std::string> names, paths;
  for (const ModuleScript& script : moduleScripts(shop, "Sella")) {
    names.push_back(script.name);
    paths.push_back(script.path);
  }
  EXPECT_THAT(names, ElementsAre("c", "a", "b"));
  EXPECT_EQ(paths[1], shop + "/code/Sella/A.PHP");
  EXPECT_EQ(paths[2], shop + "/code/Sella/b.php");
}

TEST_F(PaymentModules, AScriptThatWouldLeadOutOfItsFolderIsNotUsable) {
  write("negozio/code/M/conf.ini", "php=../../index\r\nphp=..\\x\r\nphp=buono\r\n");
  const auto scripts = moduleScripts(shop, "M");
  ASSERT_EQ(scripts.size(), 3U);
  EXPECT_FALSE(scripts[0].usable);
  EXPECT_FALSE(scripts[1].usable);
  EXPECT_TRUE(scripts[2].usable);
}

TEST_F(PaymentModules, AShopThatLacksAModuleGetsItsFolderAndItsDescriptor) {
  write("programma/new/code/Paypal/conf.ini", "mid=\r\n");
  write("programma/new/code/Paypal/form.kpg", "#mid");
  write("programma/new/code/Paypal.kpg", "pronto");
  CompletaGateway(shop, application);
  EXPECT_EQ(read("negozio/code/Paypal/conf.ini"), "mid=\r\n");
  EXPECT_EQ(read("negozio/code/Paypal/form.kpg"), "#mid");
  EXPECT_EQ(read("negozio/code/Paypal.kpg"), "pronto");
}

TEST_F(PaymentModules, AModuleThatHasAnyFileIsLeftUnchanged) {
  write("programma/new/code/Cilme/conf.ini", "mid=\r\n");
  write("programma/new/code/Cilme.kpg", "pronto");
  write("negozio/code/Cilme/note.txt", "del negoziante");
  write("negozio/code/Cilme.kpg", "mio");
  CompletaGateway(shop, application);
  EXPECT_EQ(read("negozio/code/Cilme/conf.ini"), "(missing)");
  EXPECT_EQ(read("negozio/code/Cilme.kpg"), "mio");
}

TEST_F(PaymentModules, AModuleFolderThatCantBeListedKeepsTheMerchantsAccount) {
  write("programma/new/code/Cilme/conf.ini", "mid=\r\n");
  write("programma/new/code/Cilme.kpg", "pronto");
  write("negozio/code/Cilme/conf.ini", "mid=mio\r\n");
  write("negozio/code/Cilme.kpg", "mio");
  {
    test::FailingFiles files(1);
    files.onlyAt({FileStep::List});
    files.onlyFor("/negozio/code/Cilme");
    CompletaGateway(shop, application);
    EXPECT_TRUE(files.hasFailed());
  }
  EXPECT_EQ(read("negozio/code/Cilme/conf.ini"), "mid=mio\r\n");
  EXPECT_EQ(read("negozio/code/Cilme.kpg"), "mio");
}

TEST_F(PaymentModules, TheAccountDataOfAnOlderShopAreTakenFromOtherUsers) {
  const std::vector<std::string> withAccounts{"negozio/code/Omnipay/Conf.ini", "negozio/code/Omnipay/omniend.php",
                                              "negozio/code/Omnipay.kpg"};
  write("negozio/code/Omnipay/omniend.new", "modello");
  for (const std::string& path : withAccounts) write(path, "key=segreta\r\n");
  CompletaGateway(shop, application);
  using std::filesystem::perms;
  for (const std::string& path : withAccounts) {
    EXPECT_EQ(std::filesystem::status(root / path).permissions() & (perms::group_all | perms::others_all), perms::none);
    EXPECT_EQ(read(path), "key=segreta\r\n");
  }
}

TEST_F(PaymentModules, AnEmptyModuleFolderIsFilled) {
  write("programma/new/code/SysPay/conf.ini", "mid=\r\n");
  write("programma/new/code/SysPay.kpg", "pronto");
  ASSERT_TRUE(createFolders(shop + "/code/syspay"));
  CompletaGateway(shop, application);
  EXPECT_EQ(read("negozio/code/syspay/conf.ini"), "mid=\r\n");
  EXPECT_FALSE(folderExists(shop + "/code/SysPay"));
}

TEST_F(PaymentModules, AModuleWhoseCopyWasCutOffIsCompletedTheNextTime) {
  write("programma/new/code/Cilme/conf.ini", "mid=\r\n");
  write("programma/new/code/Cilme/form.kpg", "#mid");
  write("programma/new/code/Cilme.kpg", "pronto");
  // Killed after the descriptor and the first file of the folder.
  write("negozio/code/Cilme.kpg", "pronto");
  write("negozio/code/.Cilme.kvtmp/conf.ini", "mi");
  CompletaGateway(shop, application);
  EXPECT_EQ(read("negozio/code/Cilme/conf.ini"), "mid=\r\n");
  EXPECT_EQ(read("negozio/code/Cilme/form.kpg"), "#mid");
  EXPECT_EQ(read("negozio/code/Cilme.kpg"), "pronto");
  EXPECT_FALSE(folderExists(shop + "/code/.Cilme.kvtmp"));
}

TEST_F(PaymentModules, AModuleFolderThatHoldsOnlyFoldersIsFilled) {
  write("programma/new/code/Cilme/conf.ini", "mid=\r\n");
  write("programma/new/code/Cilme.kpg", "pronto");
  ASSERT_TRUE(createFolders(shop + "/code/Cilme/vecchi"));
  CompletaGateway(shop, application);
  EXPECT_EQ(read("negozio/code/Cilme/conf.ini"), "mid=\r\n");
}

TEST_F(PaymentModules, OnlyTheFifteenModulesAreCompleted) {
  write("programma/new/code/Altro/conf.ini", "mid=\r\n");
  CompletaGateway(shop, application);
  EXPECT_FALSE(folderExists(shop + "/code/Altro"));
}

TEST_F(PaymentModules, EachOfTheFifteenComesWithTheProgram) {
  CompletaGateway(shop, KORVANE_APP_DATA);
  for (const std::string_view name : paymentModules) {
    EXPECT_NE(ReadKpg(shop, name), "###ERRORE###") << name;
    EXPECT_FALSE(moduleSettings(shop, name).empty()) << name;
    for (const ModuleScript& script : moduleScripts(shop, name)) EXPECT_TRUE(fileExists(script.path)) << script.path;
  }
}

// Names that nobody can own. Source: RFC 2606, section 2.
TEST_F(PaymentModules, NameNoHostThatCouldAnswer) {
  int addresses = 0;
  const auto check = [&](std::string_view address) {
    if (!address.starts_with("http")) return;
    ++addresses;
    const std::string_view host = address.substr(address.find("//") + 2);
    EXPECT_TRUE(host.substr(0, host.find('/')).ends_with(".example")) << address;
  };
  for (const GatewayModule& module : gatewayModules()) {
    for (const std::string_view address : {module.production, module.testServer, module.oldServer}) check(address);
    for (const AccountKey& key : module.keys) check(key.constant);
  }
  EXPECT_GE(addresses, 9);
}

}  // namespace
}  // namespace kv::test
