// The text of the two payment methods that need no service: one text in conf.ini and in a column of the shop.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commerce/gateways/gateway_account.h"
#include "commerce_shop.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

class TheTextOfAnOfflineMethod : public CommerceShop {
 protected:
  void SetUp() override { copyModules(); }

  GatewayAccount load(std::string_view folder) {
    const auto modules = gatewayModules();
    const auto found = std::ranges::find(modules, folder, &GatewayModule::folder);
    EXPECT_NE(found, modules.end()) << folder;
    return GatewayAccount::load(session, *found);
  }
  void save(const GatewayAccount& account) {
    const auto saved = account.save(session);
    EXPECT_TRUE(saved) << saved.error().what;
  }
  std::string read(const std::string& path) const {
    return readText(session.ShopFolder + "/code/" + path).value_or("(missing)");
  }
};

TEST_F(TheTextOfAnOfflineMethod, IsAlsoItsColumnOfLanguageOne) {
  session.currentLanguage = 2;
  GatewayAccount account = load("Contrassegno");
  EXPECT_EQ(account.value("info"), field("SELECT contrassegno FROM generale"));
  account.setValue("info", "uno\r\ndue\ntre\rquattro");
  save(account);
  EXPECT_EQ(read("Contrassegno/conf.ini"), "action=kvorder\r\ninfo=uno||due|tre|quattro\r\n");
  EXPECT_EQ(field("SELECT contrassegno FROM generale"), "uno\r\ndue\ntre\rquattro");
  EXPECT_EQ(field("SELECT contrassegno_l2 FROM generale").substr(0, 7), "You pay");
  EXPECT_EQ(load("Contrassegno").value("info"), "uno\r\ndue\r\ntre\r\nquattro");
  EXPECT_THAT(read("Contrassegno.kpg"), HasSubstr("uno\r\ndue\ntre\rquattro"));
  account = load("Pagamento anticipato");
  EXPECT_EQ(account.value("info"), field("SELECT anticipato FROM generale"));
  account.setValue("info", "IBAN");
  save(account);
  EXPECT_EQ(field("SELECT anticipato FROM generale"), "IBAN");
  EXPECT_EQ(field("SELECT contrassegno FROM generale"), "uno\r\ndue\ntre\rquattro");
}

TEST_F(TheTextOfAnOfflineMethod, IsTheOneThatWasStoredLast) {
  GatewayAccount account = load("Contrassegno");
  account.setValue("info", "dal modulo\r\ndue");
  save(account);
  EXPECT_TRUE(modulesToConfirm(session).empty());
  sql("UPDATE generale SET contrassegno = 'dalla scheda', contrassegno_l2 = 'in English'");
  EXPECT_EQ(modulesToConfirm(session), std::vector<std::string_view>{"Contrassegno"});
  account = load("Contrassegno");
  EXPECT_EQ(account.value("info"), "dalla scheda");
  save(account);
  EXPECT_EQ(read("Contrassegno/conf.ini"), "action=kvorder\r\ninfo=dalla scheda\r\n");
  EXPECT_THAT(read("Contrassegno.kpg"), HasSubstr("dalla scheda"));
  EXPECT_EQ(field("SELECT contrassegno || '|' || contrassegno_l2 FROM generale"), "dalla scheda|in English");
  EXPECT_TRUE(modulesToConfirm(session).empty());
  sql("UPDATE generale SET contrassegno = ''");
  EXPECT_EQ(load("Contrassegno").value("info"), "") << "it was emptied";
  sql("UPDATE generale SET contrassegno = NULL");
  EXPECT_EQ(load("Contrassegno").value("info"), "dalla scheda") << "it never had one";
}

}  // namespace
}  // namespace kv::test
