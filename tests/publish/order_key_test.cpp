// The key of a shop's orders: made once, kept by the catalogue whatever is undone, sent along with an update.

#include "publish/orders/wire/order_key.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "publish/update/database_update.h"
#include "store/schema/schema.h"
#include "store/shop/kept_order_key.h"
#include "support/fixed_clock.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

class OrderKey : public testing::Test {
 protected:
  OrderKey() {
    const std::string path = joinPath(folder.path(), "catalog.mdb");
    EXPECT_TRUE(createDatabase(path, catalogueTables()));
    session.catalogue = Database::open(path, OpenMode::Exclusive).value();
  }

  TempFolder folder;
  Session session;
  FixedRandom random;
};

TEST_F(OrderKey, AShopWithoutOneHasNoTableEither) {
  EXPECT_EQ(orderKey(session).value(), "");
  EXPECT_FALSE(session.catalogue.table("chiave_ordini").has_value());
}

TEST_F(OrderKey, IsThirtyTwoRandomBytesInHexadecimalDigits) {
  const std::string sixteen = "0123456789abcdef";
  EXPECT_EQ(makeOrderKey(session, random).value(), sixteen + sixteen + sixteen + sixteen);
  EXPECT_EQ(orderKey(session).value(), sixteen + sixteen + sixteen + sixteen);
}

TEST_F(OrderKey, IsMadeOnce) {
  const std::string first = makeOrderKey(session, random).value();
  FixedRandom other{7};
  EXPECT_EQ(makeOrderKey(session, other).value(), first);
  EXPECT_EQ(other.calls(), 0U);
}

TEST_F(OrderKey, ATextThatIsNoKeyReadsAsNoneAndIsReplaced) {
  const std::string key = makeOrderKey(session, random).value();
  for (const std::string& wrong : {std::string("abc"), std::string(64, 'g'), std::string(64, 'A')}) {
    ASSERT_TRUE(session.catalogue.execute("UPDATE chiave_ordini SET chiave = '" + wrong + "'"));
    EXPECT_EQ(orderKey(session).value(), "") << wrong;
    EXPECT_EQ(writeOrderKey(session.catalogue, wrong).error().kind, ErrorKind::Malformed) << wrong;
  }
  EXPECT_EQ(makeOrderKey(session, random).value(), key);
  EXPECT_EQ(orderKey(session).value(), key);
}

TEST_F(OrderKey, TheJobOfAnUpdateTakesItAlong) {
  ASSERT_TRUE(session.catalogue.execute("INSERT INTO generale (URL, db_security) VALUES ('www.a.it', 'abc')"));
  EXPECT_EQ(updateJobOf(session).value().orderKey, "");
  const std::string key = makeOrderKey(session, random).value();
  EXPECT_EQ(updateJobOf(session).value().orderKey, key);
}

}  // namespace
}  // namespace kv::test
