// The merchant's identity, kept in a table that a shop has only once it uses it.

#include "store/catalogue/shop_identity.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

class ShopIdentityTable : public testing::Test {
 protected:
  std::string read(std::string_view column) { return readIdentity(catalogue, column).value(); }

  TempFolder folder;
  Database catalogue = Database::create(joinPath(folder.path(), "catalog.mdb")).value();
};

TEST_F(ShopIdentityTable, AShopWithoutItReadsEmptyAndHasNoTable) {
  EXPECT_EQ(read("legale_piva"), "");
  EXPECT_FALSE(catalogue.table("identita").has_value());
}

TEST_F(ShopIdentityTable, KeepsEachFieldByItself) {
  ASSERT_TRUE(prepareIdentity(catalogue));
  ASSERT_TRUE(writeIdentity(catalogue, "legale_piva", "IT01234567890"));
  ASSERT_TRUE(writeIdentity(catalogue, "legale_sede", "Bottega, Città"));
  ASSERT_TRUE(writeIdentity(catalogue, "legale_piva", "IT09876543210"));
  EXPECT_EQ(read("legale_piva"), "IT09876543210");
  EXPECT_EQ(read("legale_sede"), "Bottega, Città");
  EXPECT_EQ(read("legale_registro"), "");
}

TEST_F(ShopIdentityTable, LosesItsRowWithTheLastText) {
  ASSERT_TRUE(prepareIdentity(catalogue));
  ASSERT_TRUE(prepareIdentity(catalogue));
  ASSERT_TRUE(writeIdentity(catalogue, "legale_piva", "IT01234567890"));
  ASSERT_TRUE(writeIdentity(catalogue, "legale_piva", ""));
  auto rows = catalogue.prepare("SELECT COUNT(*) FROM identita");
  ASSERT_TRUE(rows && rows->step());
  EXPECT_EQ(rows->text(0), "0");
}

TEST_F(ShopIdentityTable, TakesNoColumnThatIsNone) {
  ASSERT_TRUE(prepareIdentity(catalogue));
  EXPECT_EQ(writeIdentity(catalogue, "ID", "2").error().kind, ErrorKind::Malformed);
  EXPECT_EQ(read("ID"), "");
}

}  // namespace
}  // namespace kv::test
