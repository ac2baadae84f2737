// The way on when no shop is open.

#include "shell/dialogs/shop_rescue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>

#include "platform/files/files.h"
#include "store/shop/backup_copies.h"
#include "store/shop/server_path.h"
#include "store/shop/session_start.h"
#include "store/shop_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

constexpr const char* corruptText = "Il database è corrotto, oppure sono stati cancellati alcuni file del programma.";

class ShopRescue : public ShopFixture {
 protected:
  ShopRescue() {
    shop = makeShop("negozio");
    write(application + "/serverpath.net", shop + "\r\n");
    ports.ask = [this](const std::string& folder) {
      asked.push_back(folder);
      if (choices.empty()) return Rescue::Leave;
      const Rescue choice = choices.front();
      choices.pop_front();
      return choice;
    };
    ports.chooseCopy = [](const std::string& folder) {
      const auto copies = backupCopies(folder);
      return copies.empty() ? std::string() : copies.front().name;
    };
  }
  ~ShopRescue() override { closeSession(session, env); }

  /// Starts, and goes the way of the choices; whether a shop is open then.
  bool open() {
    ignore(startSession(session, env), "it has told the user");
    return rescueShop(session, env, ports);
  }

  std::string shop;
  RescuePorts ports;
  std::deque<Rescue> choices;
  std::vector<std::string> asked;
};

TEST_F(ShopRescue, AShopThatOpensIsNotAskedAbout) {
  EXPECT_TRUE(open());
  EXPECT_TRUE(asked.empty());
}

TEST_F(ShopRescue, ADamagedCatalogueIsReplacedByACopy) {
  ASSERT_TRUE(keepDatedCopy(shop, env.clock).value_or(false));
  write(shop + "/catalog.mdb", "no database");
  choices = {Rescue::RestoreCopy};
  EXPECT_TRUE(open());
  EXPECT_THAT(user.texts(), ElementsAre(corruptText));
  EXPECT_THAT(asked, ElementsAre(shop));
  EXPECT_EQ(session.ShopFolder, shop);
}

TEST_F(ShopRescue, ACatalogueWithoutATableOfTheWindowIsCorrupt) {
  run(shop, "DROP TABLE opzioni");
  EXPECT_FALSE(open());
  EXPECT_THAT(user.texts(), ElementsAre(corruptText));
  EXPECT_THAT(asked, ElementsAre(shop));
}

TEST_F(ShopRescue, AnotherShopIsOpenedInsteadOfOneThatIsGone) {
  const std::string other = makeShop("altro");
  ASSERT_TRUE(renameFile(shop, shop + "-via"));
  user.answers = {Answer::No};
  user.folders = {other};
  choices = {Rescue::OpenAnother};
  EXPECT_TRUE(open());
  EXPECT_EQ(session.ShopFolder, other);
}

TEST_F(ShopRescue, ANewShopIsMade) {
  write(shop + "/catalog.mdb", "no database");
  makeShopIn(application + "/new");
  ASSERT_TRUE(createFolder(root / "nuovo"));
  user.folders = {root / "nuovo"};
  choices = {Rescue::NewShop};
  EXPECT_TRUE(open());
  EXPECT_EQ(session.ShopFolder, root / "nuovo");
}

TEST_F(ShopRescue, ItAsksAgainUntilAShopIsOpenOrTheUserLeaves) {
  write(shop + "/catalog.mdb", "no database");
  choices = {Rescue::RestoreCopy, Rescue::OpenAnother, Rescue::NewShop, Rescue::Leave};
  EXPECT_FALSE(open());
  EXPECT_THAT(asked, ElementsAre(shop, shop, shop, shop));
}

TEST_F(ShopRescue, AfterNoToTheRepairOfAReadOnlyShopItAsksToo) {
  std::filesystem::permissions(shop + "/catalog.mdb", std::filesystem::perms::owner_read);
  user.answers = {Answer::No};
  EXPECT_FALSE(open());
  EXPECT_THAT(asked, ElementsAre(shop));
}

}  // namespace
}  // namespace kv::test
