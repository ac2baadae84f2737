#pragma once
// A desk for orders over a server that answers from a list and a user who does, in a folder of its own.

#include <gtest/gtest.h>

#include "publish/orders/desk/order_desk.h"
#include "support/fixed_clock.h"
#include "support/order_host.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {

class OrderDeskCase : public ::testing::Test {
 protected:
  TempFolder folder;
  OrderHost host;
  FixedClock clock;
  FixedRandom random;
  ScriptedUser user;
  OrderStore store{folder.path()};
  OrderDesk desk{store,
                 {[this] { return Result<OrderAccess>(host.access); },
                  {host, clock, random, [this] { return user.yield(); }},
                  user}};
};

}  // namespace kv::test
