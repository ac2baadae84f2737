// The notice of new orders in the status line, from the start of the shop until they have been looked at.
#include <QToolButton>

#include "forms/wired_window.h"
#include "publish/orders/desk/order_desk.h"
#include "publish/orders/wire/order_key.h"
#include "shell/program/frm_orders_dialogs.h"
#include "support/order_host.h"

namespace kv::test {
namespace {

class TheNoticeOfOrders : public WiredWindow {
 protected:
  /// A shop that has received two orders nobody has looked at, and whose server can't be reached now.
  void SetUp() override {
    openWindow();
    // Nothing answers at this port.
    ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET URL = 'http://127.0.0.1:1', cartellaCGI = 'bo'"));
    EXPECT_FALSE(orderAccess(session, random)) << "the key is made, and has to be published first";
    const auto access = orderAccess(session, random);
    ASSERT_TRUE(access);
    OrderHost host;
    host.access = *access;
    host.answers = {ordersJson({{1}, {2}}, "c1")};
    OrderStore store(shop);
    ASSERT_TRUE(fetchOrders(store, *access, {host, clock, random, [] { return true; }}));
  }
  QToolButton* notice() const { return window->findChild<QToolButton*>(QStringLiteral("cmdOrdiniNuovi")); }
  /// Announces as a start does; false when no notice comes.
  bool isAnnounced() {
    announceOrders(*window, session, env);
    return QTest::qWaitFor([this] { return notice() != nullptr && notice()->isVisible(); }, 60'000);
  }
};

TEST_F(TheNoticeOfOrders, SaysHowManyThereAreAndLeadsToTheirWindow) {
  ASSERT_TRUE(isAnnounced()) << "no notice after a minute";
  EXPECT_EQ(notice()->text(), "2 ordini nuovi");
  EXPECT_LT(notice()->x(), window->findChild<QToolButton*>(QStringLiteral("cmdVedi"))->x())
      << "before the button that is always there";
  EXPECT_NE(notice()->focusPolicy() & Qt::TabFocus, 0) << "the keyboard reaches it";
  bool isShown = false;
  whenShown(QStringLiteral("Korvane - Ordini"), [&isShown](QWidget& dialog) {
    isShown = true;
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  QTest::mouseClick(notice(), Qt::LeftButton);
  EXPECT_TRUE(isShown);
  EXPECT_FALSE(notice()->isVisible()) << "they have been looked at";
}

TEST_F(TheNoticeOfOrders, IsTakenAwayByAnotherShop) {
  ASSERT_TRUE(isAnnounced()) << "no notice after a minute";
  ASSERT_TRUE(session.catalogue.execute("UPDATE generale SET URL = ''"));
  announceOrders(*window, session, env);
  EXPECT_FALSE(notice()->isVisible());
}

TEST_F(TheNoticeOfOrders, DoesNotComeWhereTheBoxIsOff) {
  OrderStore store(shop);
  ASSERT_TRUE(store.open());
  ASSERT_TRUE(store.setNotifiesAtStart(false));
  announceOrders(*window, session, env);
  processEvents();
  EXPECT_TRUE(notice() == nullptr || !notice()->isVisible());
}

}  // namespace
}  // namespace kv::test
