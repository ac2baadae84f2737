// What OK of each payment module's dialog writes: each case of tests/golden/gateways is a filled dialog in a text, and
// tests/golden/oracle/accounts.py computes its wanted parts without the program.

#include <gtest/gtest.h>

#include <algorithm>

#include "commerce/commerce_shop.h"
#include "commerce/gateways/gateway_account.h"
#include "commerce/gateways/payment_modules.h"
#include "platform/text/text.h"
#include "support/txtar.h"

namespace kv::test {
namespace {

const std::string accountsFolder = std::string(KORVANE_TEST_DATA) + "/golden/gateways";

class GoldenAccount : public CommerceShop, public testing::WithParamInterface<std::string> {
 protected:
  void SetUp() override { copyModules(); }

  static const GatewayModule& moduleNamed(std::string_view folder) {
    const auto modules = gatewayModules();
    const auto found = std::ranges::find(modules, folder, &GatewayModule::folder);
    EXPECT_NE(found, modules.end()) << folder;
    return *found;
  }
  static SellaMode modeNamed(const std::string& name) {
    if (name == "crypt") return SellaMode::Crypt;
    return name == "otp" ? SellaMode::Otp : SellaMode::Compatible;
  }
  /// Fills a dialog as the case's parts `account` and `info` say.
  static void type(const Txtar& archive, GatewayAccount& account) {
    for (const auto& [key, value] : parseModuleSettings(archive.find("account")->text)) {
      if (key == "use_test") {
        account.setUsesTest(value == "1");
      } else if (key == "test") {
        account.setTestAddress(value);
      } else if (key == "mode") {
        account.setMode(modeNamed(value));
      } else {
        account.setValue(key, value);
      }
    }
    if (const TxtarPart* info = archive.find("info")) account.setValue("info", fromWindows1252(partBytes(*info)));
  }
};

TEST_P(GoldenAccount, FillsTheFilesOfItsModule) {
  const auto text = readBytes(accountsFolder + "/" + GetParam() + ".txt");
  ASSERT_TRUE(text);
  const Txtar archive = parseTxtar(*text);
  ASSERT_EQ(formatTxtar(archive), *text) << "not the form of a case";
  const GatewayModule& module = moduleNamed(parseModuleSettings(archive.find("account")->text).front().second);
  const std::string code = session.ShopFolder + "/code/";
  if (const TxtarPart* conf = archive.find("conf.ini")) {
    ASSERT_TRUE(writeBytes(code + std::string(module.folder) + "/conf.ini", partBytes(*conf)));
  }
  GatewayAccount account = GatewayAccount::load(session, module);
  type(archive, account);
  ASSERT_TRUE(account.save(session));
  int compared = 0;
  for (const TxtarPart& part : archive.parts) {
    if (!part.name.starts_with("want/")) continue;
    ++compared;
    const std::string file = part.name.substr(std::string("want/").size());
    EXPECT_EQ(readBytes(code + file).value_or("(missing)"), partBytes(part)) << file;
  }
  EXPECT_GE(compared, 2);
}

std::vector<std::string> accountCases() {
  std::vector<std::string> names;
  for (const std::string& file : listFiles(accountsFolder, "*.txt")) names.push_back(file.substr(0, file.size() - 4));
  return names;
}

INSTANTIATE_TEST_SUITE_P(Cases, GoldenAccount, testing::ValuesIn(accountCases()),
                         [](const testing::TestParamInfo<std::string>& one) { return one.param; });

TEST(TheGoldenAccounts, AreOfAllFifteenModules) {
  std::vector<std::string> modules;
  for (const std::string& name : accountCases()) {
    const Txtar archive = parseTxtar(readBytes(accountsFolder + "/" + name + ".txt").value_or(""));
    modules.push_back(parseModuleSettings(archive.find("account")->text).front().second);
  }
  for (const std::string_view module : paymentModules) EXPECT_TRUE(std::ranges::count(modules, module) > 0) << module;
}

}  // namespace
}  // namespace kv::test
