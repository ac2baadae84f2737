// korvane-cli orders: what it prints of what is kept, what it asks of the host, and how it ends.
#include "shell/cli/orders_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "publish/orders/desk/order_desk.h"
#include "support/fixed_clock.h"
#include "support/order_host.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

class OrdersOnTheCommandLine : public ::testing::Test {
 protected:
  OrdersOnTheCommandLine() : shop(home / "negozio") {
    const std::string data = KORVANE_APP_DATA;
    EXPECT_TRUE(copyTree(data + "/new", shop));
    for (const char* folder : {"work", "online", "scripts", "db"}) EXPECT_TRUE(createFolders(shop + "/" + folder));
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared).value();
    EXPECT_TRUE(catalogue.execute("UPDATE generale SET URL = 'https://www.a.it', cartellaCGI = 'bo', template = 'x'"));
    parts.csv = [](std::span<const DeskOrder> orders) { return std::to_string(orders.size()) + " rows"; };
  }
  CliOutcome run(std::map<std::string, std::string, std::less<>> options = {}) {
    out.str("");
    CommandLine line;
    line.command = CliCommand::Orders;
    line.options = std::move(options);
    Environment env{user, settings, clock, random, home / "app", {}};
    return listOrders(shop, line, env, out, parts);
  }
  /// The second request knows the key that the first one has made.
  void publishKey() {
    EXPECT_EQ(run(), CliOutcome::Failed);
    EXPECT_THAT(user.texts().back(), HasSubstr("Pubblicare il negozio una volta"));
    auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared).value();
    host.access.key = asText(catalogue.scalar("SELECT chiave FROM chiave_ordini").value());
  }

  TempFolder home;
  std::string shop;
  OrderHost host;
  OrdersParts parts{host};
  ScriptedUser user;
  MemorySettings settings;
  FixedClock clock;
  FixedRandom random;
  std::ostringstream out;
};

TEST_F(OrdersOnTheCommandLine, PrintsALineForEachOrder) {
  publishKey();
  host.answers = {ordersJson(
      {{1, "2026-05-01 10:00:00", "spedito", "Ugo\\tBassi\\u009b2J\\u007f", "1234.50"}, {2, "2026-05-31 09:00:00"}},
      "c1")};
  EXPECT_EQ(run(), CliOutcome::Done);
  EXPECT_EQ(out.str(),
            "KV2\t2026-05-31 09:00:00\tAnna Neri\t25.50 EUR\tnuovo\n"
            "KV1\t2026-05-01 10:00:00\tUgo Bassi 2J \t1234.50 EUR\tspedito\n");
}

TEST_F(OrdersOnTheCommandLine, PrintsWhatIsKeptWithoutAConnection) {
  publishKey();
  host.answers = {ordersJson({{1}}, "c1")};
  EXPECT_EQ(run(), CliOutcome::Done);
  EXPECT_EQ(run(), CliOutcome::Failed);
  EXPECT_THAT(user.texts().back(), HasSubstr("Il server del negozio non risponde."));
  EXPECT_THAT(out.str(), HasSubstr("KV1\t"));
}

TEST_F(OrdersOnTheCommandLine, LeavesOutEarlierOnesAndWritesACsvFile) {
  publishKey();
  host.answers = {ordersJson({{1, "2026-05-01 10:00:00"}, {2, "2026-05-31 09:00:00"}}, "c1")};
  EXPECT_EQ(run({{"--since", "2026-05-02"}, {"--csv", home / "ordini.csv"}}), CliOutcome::Done);
  EXPECT_EQ(out.str().find("KV1"), std::string::npos);
  EXPECT_EQ(readBytes(home / "ordini.csv").value(), "1 rows");
  EXPECT_EQ(run({{"--since", "ieri"}}), CliOutcome::WrongUsage);
  EXPECT_EQ(user.texts().back(), "valore non ammesso per --since: ieri");
}

TEST_F(OrdersOnTheCommandLine, AnAddressIsNeeded) {
  auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared).value();
  EXPECT_TRUE(catalogue.execute("UPDATE generale SET URL = ''"));
  catalogue.close();
  EXPECT_EQ(run(), CliOutcome::Failed);
  EXPECT_EQ(user.texts().back(), "Indicare prima l'indirizzo del negozio nella scheda \"Internet\".");
}

}  // namespace
}  // namespace kv::test
