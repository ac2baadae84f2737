// The merchant's identity on the pages: tags that a template may name, empty in a shop that has entered nothing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

constexpr std::string_view identityPage = "[<<1-legale_sede>>|<<1-legale_piva>>|<<1-legale_registro>>]";

void enterIdentity(TempShop& shop, const std::string& values) {
  shop.sql("CREATE TABLE identita (ID INTEGER PRIMARY KEY, legale_sede TEXT, legale_piva TEXT, legale_registro TEXT)");
  shop.sql("INSERT INTO identita VALUES (1, " + values + ")");
}

TEST(IdentityTags, AreEmptyInAShopWithoutOne) {
  TempShop shop;
  shop.templateFile("index.htm", identityPage);
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"), HasSubstr("[||]"));
}

TEST(IdentityTags, HoldWhatTheMerchantEnteredOnOneLineEach) {
  TempShop shop;
  enterIdentity(shop, "'Bottega' || char(13, 10) || 'via Orto 3, Forlì', 'IT01234567890', NULL");
  shop.templateFile("index.htm", identityPage);
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"), HasSubstr("[Bottega  via Orto 3, Forlì|IT01234567890|]"));
}

TEST(IdentityTags, AreNoColumnsOfTheBuildDatabases) {
  TempShop shop;
  enterIdentity(shop, "'', 'IT01234567890', ''");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT name FROM sqlite_master WHERE name LIKE '%identita%' OR sql LIKE '%legale%'"), "");
  EXPECT_EQ(shop.tagRows("SELECT name FROM sqlite_master WHERE sql LIKE '%legale%'"), "");
}

}  // namespace
}  // namespace kv::test
