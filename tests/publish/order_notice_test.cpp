// When a shop says at its start how many orders are new, and what it asks for that.
#include "publish/orders/desk/order_notice.h"

#include <gmock/gmock.h>

#include "platform/files/files.h"
#include "publish/orders/desk/order_desk.h"
#include "publish/orders/wire/order_key.h"
#include "support/fixed_clock.h"
#include "support/order_host.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

class TheOrderNotice : public ::testing::Test {
 protected:
  OrderMeans means() {
    return {host, clock, random, [this] { return !cancelled; }};
  }
  /// A shop with a key and an address, whose first orders have been looked at.
  void fill() {
    shop.sql("UPDATE generale SET URL = 'https://www.a.it', cartellaCGI = 'bo'");
    ASSERT_FALSE(orderAccess(shop.session, random));
    auto access = orderAccess(shop.session, random);
    ASSERT_TRUE(access);
    host.access = *access;
    host.answers = {ordersJson({{1}}, "c1")};
    OrderStore store(shop.folder());
    ASSERT_TRUE(fetchOrders(store, host.access, means()));
    ASSERT_TRUE(store.markSeen());
  }

  TempShop shop;
  OrderHost host;
  FixedClock clock;
  FixedRandom random;
  bool cancelled = false;
};

TEST_F(TheOrderNotice, AsksNobodyForAShopThatHasReceivedNone) {
  EXPECT_FALSE(accessForNotice(shop.session));
  shop.sql("UPDATE generale SET URL = 'https://www.a.it', cartellaCGI = 'bo'");
  EXPECT_FALSE(accessForNotice(shop.session));
  EXPECT_FALSE(orderAccess(shop.session, random));
  EXPECT_FALSE(accessForNotice(shop.session)) << "a key alone is no order";
}

TEST_F(TheOrderNotice, SaysHowManyOrdersAreNew) {
  fill();
  const auto access = accessForNotice(shop.session);
  ASSERT_TRUE(access);
  EXPECT_EQ(access->address, "https://www.a.it/bo/remoto.php");
  host.answers = {ordersJson({{1}, {2}, {3}}, "c2")};
  EXPECT_EQ(newOrdersNotice(shop.folder(), *access, means()), "2 ordini nuovi");
  EXPECT_EQ(newOrdersNotice(shop.folder(), *access, means()), "2 ordini nuovi") << "without an answer";
  cancelled = true;
  EXPECT_EQ(newOrdersNotice(shop.folder(), *access, means()), "");
}

TEST_F(TheOrderNotice, IsOffByTheBox) {
  fill();
  OrderStore store(shop.folder());
  ASSERT_TRUE(store.open());
  ASSERT_TRUE(store.setNotifiesAtStart(false));
  EXPECT_FALSE(accessForNotice(shop.session));
}

TEST_F(TheOrderNotice, AFreshKeyHasToBePublishedFirst) {
  shop.sql("UPDATE generale SET URL = ''");
  EXPECT_EQ(orderAccess(shop.session, random).error().what,
            "Indicare prima l'indirizzo del negozio nella scheda \"Internet\".");
  EXPECT_EQ(orderKey(shop.session).value(), "") << "no key for a shop without an address";
  shop.sql("UPDATE generale SET URL = 'www.a.it'");
  EXPECT_THAT(orderAccess(shop.session, random).error().what, HasSubstr("Pubblicare il negozio una volta"));
  const auto access = orderAccess(shop.session, random);
  ASSERT_TRUE(access);
  EXPECT_EQ(access->key, orderKey(shop.session).value());
  EXPECT_EQ(access->key.size(), 64U);
}

}  // namespace
}  // namespace kv::test
