// Shops of chance, of an earlier release and of this one: the first opening brings them up to date without a word, the
// second one leaves every file of theirs as it was.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>

#include "commerce/gateways/payment_modules.h"
#include "store/shop/load_shop.h"
#include "store/shop_fixture.h"
#include "store/upgrade/shop_upgrade.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

/// The files of a folder: what they hold, and when they were written.
using Files = std::map<std::string, std::pair<std::string, std::filesystem::file_time_type>>;

class RandomOpenings : public ShopFixture {
 protected:
  RandomOpenings() {
    const auto copied = copyTree(std::string(KORVANE_APP_DATA) + "/new", application + "/new");
    EXPECT_TRUE(copied) << copied.error().what;
    env.hooks.CompletaGateway = [this](const std::string& folder) { CompletaGateway(folder, application); };
    env.hooks.AggiornaNegozio = [this](const std::string& folder) { AggiornaNegozio(folder, application); };
  }

  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(chance); }

  /// A number that rows may share, or none at all.
  std::string order() { return below(4) == 0 ? "NULL" : std::to_string(below(12) * 5 - 10); }

  /// Departments and articles in any order, some of no department.
  std::string rows() {
    std::string sql;
    const int departments = below(5);
    for (int n = 1; n <= departments; ++n) {
      const std::string ID = "'cat00" + std::to_string(n) + "'";
      sql += "INSERT INTO categorie (ID, pagina, contatore, livello, ordinamento) VALUES (" + ID + ", " + ID + ", " +
             std::to_string(n) + ", " + std::to_string(1 + below(3)) + ", " + order() + ");";
    }
    for (int n = below(12); n > 0; --n) {
      const std::string department = below(6) == 0 ? "NULL" : "'cat00" + std::to_string(1 + below(5)) + "'";
      sql += "INSERT INTO articoli (catID, titolo, ordinamento) VALUES (" + department + ", 'T', " + order() + ");";
    }
    return sql;
  }

  /// What a catalogue of an earlier release lacks, and what a killed dialog leaves.
  std::string aging() {
    std::string sql;
    for (const char* column :
         {"p3p", "subtitleincart", "regprices", "singleitem_search", "singleitem_vet", "reglist", "showsigns"}) {
      if (below(3) == 0) sql += std::string("ALTER TABLE generale DROP COLUMN ") + column + ";";
    }
    if (below(4) == 0) sql += "CREATE TABLE tempopzioni (ID INTEGER PRIMARY KEY, nome TEXT);";
    return sql;
  }

  /// Files of some modules, of another generation than the shop's or its own.
  void ageFiles(const std::string& folder) {
    constexpr const char* stamps[] = {"1.0.3\r\n", "1.0.4\r\n", "1.0.6\n", "1.0.8\r\n", "1.0.8", "1.0.10\r\n", ""};
    const int stamp = below(8);
    if (stamp < 7) write(folder + "/code/ve.dat", stamps[stamp]);
    // Without waiting for the disk, as the program's own copies do.
    const auto all = std::filesystem::copy_options::recursive | std::filesystem::copy_options::skip_existing;
    std::filesystem::copy(application + "/new/code", folder + "/code", all);
    for (const char* module : {"SysPay", "Cilme", "Omnipay"}) {
      const std::string path = folder + "/code/" + module;
      const int fate = below(3);
      if (fate == 0) std::filesystem::remove_all(path);
      if (fate == 1) std::ofstream(path + "/conf.ini", std::ios::binary) << "mid=4711\r\n";
    }
    if (below(2) == 0) std::filesystem::remove(folder + "/code/Paypal.kpg");
  }

  std::string shopOfChance() {
    const std::string folder = root / "negozio";
    std::filesystem::remove_all(folder);
    makeShopIn(folder, 1000 + below(100));
    run(folder, rows() + aging());
    std::filesystem::remove(folder + "/source.new");
    EXPECT_TRUE(createDatabase(folder + "/source.new", tagDatabaseTables()));
    if (below(2) == 0) {
      auto tags = Database::open(folder + "/source.new", OpenMode::Shared);
      EXPECT_TRUE(tags && tags->execute("ALTER TABLE categoria DROP COLUMN compact_privacy_policy"));
    }
    ageFiles(folder);
    return folder;
  }

  void openAndClose(const std::string& folder) {
    session.ShopFolder = folder;
    ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
    releaseCatalogue(session, env);
  }

  static Files filesOf(const std::string& folder) {
    Files files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      const std::string path = entry.path().string();
      if (entry.is_regular_file()) files[path] = {readBytes(path).value_or("?"), entry.last_write_time()};
    }
    return files;
  }

  std::mt19937 chance{seed()};
};

TEST_F(RandomOpenings, LeaveAShopAloneThatWasOpenedBefore) {
  int changed = 0;
  for (int round = 0; round < operationsOf(20); ++round) {
    const std::string shop = shopOfChance();
    const Files old = filesOf(shop);
    openAndClose(shop);
    const Files opened = filesOf(shop);
    changed += opened == old ? 0 : 1;
    openAndClose(shop);
    const Files again = filesOf(shop);
    ASSERT_EQ(again.size(), opened.size()) << round;
    for (const auto& [path, file] : opened) {
      ASSERT_TRUE(again.contains(path) && again.at(path) == file) << round << ": " << path;
    }
    ASSERT_TRUE(user.shown.empty()) << round << ": " << asText(user.shown.front());
  }
  EXPECT_GT(changed, 0);
}

}  // namespace
}  // namespace kv::test
