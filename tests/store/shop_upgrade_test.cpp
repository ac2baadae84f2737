// A shop of an earlier release at its opening: the columns it gets, the files that are renewed, what is kept of it.
#include <gmock/gmock.h>

#include <filesystem>
#include <iterator>
#include <random>
#include <set>
#include <sstream>

#include "store/schema/working_copies.h"
#include "store/shop/load_shop.h"
#include "store/shop_fixture.h"
#include "store/upgrade/shop_upgrade.h"
#include "support/failing_files.h"
#include "support/test_seed.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* firstList[] = {"Cilme/form.kpg", "Contrassegno/form.kpg", "Pagamento anticipato/form.kpg",
                                     "Paypal/form.kpg"};
constexpr const char* secondList[] = {"Cilme/newform.kpg", "Bankpass/bpurlms.new"};
constexpr const char* thirdList[] = {"SysPay.kpg",           "SysPay/syspay.new",     "SysPay/syspayurlms.php",
                                     "SysPay/syspayrec.php", "SysPay/syspayback.php", "SysPay/form.kpg",
                                     "SysPay/conf.ini",      "Omnipay/omniend.new"};
constexpr const char* privacyPolicy = "ALL CUR ADM CONi PHY ONL UNI PUR COM NAV INT OUR STP";

class AnAgedShop : public ShopFixture {
 protected:
  AnAgedShop() : shop(makeShop("negozio")) {
    for (const auto& name : allFiles()) write(application + "/new/code/" + name, "nuovo " + name);
    ageFiles();
    std::filesystem::remove(shop + "/source.new");
    EXPECT_TRUE(createDatabase(shop + "/source.new", tagDatabaseTables()));
  }
  static std::vector<std::string> allFiles() {
    std::vector<std::string> names(std::begin(firstList), std::end(firstList));
    names.insert(names.end(), std::begin(secondList), std::end(secondList));
    names.insert(names.end(), std::begin(thirdList), std::end(thirdList));
    return names;
  }
  void ageFiles() {
    for (const auto& name : allFiles()) write(shop + "/code/" + name, "vecchio " + name);
  }
  void stamp(std::string_view text) { write(shop + "/code/ve.dat", text); }
  std::string stampOf(const std::string& folder) const { return readBytes(folder + "/code/ve.dat").value_or("(none)"); }
  ShopUpgrade upgrade() { return AggiornaNegozio(shop, application); }
  bool isNew(const std::string& name) const {
    return readBytes(shop + "/code/" + name).value_or("") == "nuovo " + name;
  }
  template <class List>
  int renewedOf(const List& list) const {
    return static_cast<int>(std::ranges::count_if(list, [this](const char* name) { return isNew(name); }));
  }
  std::string renewed() const {
    return std::to_string(renewedOf(firstList)) + " " + std::to_string(renewedOf(secondList)) + " " +
           std::to_string(renewedOf(thirdList));
  }
  std::string columns(const std::string& file = "catalog.mdb", const std::string& table = "generale") const {
    auto database = Database::open(shop + "/" + file, OpenMode::Shared).value();
    const auto info = database.table(table).value();
    std::string text;
    for (const ColumnInfo& column : info.columns) text += column.name + " ";
    return text;
  }

  std::string shop;
};

TEST_F(AnAgedShop, OfVersion1001WithAllColumnsIsStampedAndKeepsItsSettings) {
  run(shop, "UPDATE generale SET versione = 1001, p3p = 'NOI', showsigns = 0");
  EXPECT_TRUE(upgrade().stamped);
  EXPECT_EQ(read(shop, "SELECT versione || ' ' || p3p || ' ' || showsigns FROM generale"), "1002 NOI 0");
}

TEST_F(AnAgedShop, GetsTheMissingColumnsWithTheirFirstValues) {
  run(shop,
      "ALTER TABLE generale DROP COLUMN p3p; ALTER TABLE generale DROP COLUMN subtitleincart;"
      "ALTER TABLE generale DROP COLUMN regprices; ALTER TABLE generale DROP COLUMN singleitem_search;"
      "ALTER TABLE generale DROP COLUMN singleitem_vet; ALTER TABLE generale DROP COLUMN reglist;"
      "ALTER TABLE generale DROP COLUMN showsigns");
  EXPECT_THAT(upgrade().columns,
              ElementsAre("generale.p3p", "generale.subtitleincart", "generale.regprices", "generale.singleitem_search",
                          "generale.singleitem_vet", "generale.reglist", "generale.showsigns"));
  EXPECT_EQ(read(shop, "SELECT p3p FROM generale"), privacyPolicy);
  EXPECT_EQ(read(shop, "SELECT showsigns FROM generale"), "1");
  EXPECT_EQ(read(shop,
                 "SELECT subtitleincart IS NULL AND regprices IS NULL AND singleitem_search IS NULL"
                 " AND singleitem_vet IS NULL AND reglist IS NULL FROM generale"),
            "1");
}

TEST_F(AnAgedShop, HasItsArticlesAndDepartmentsRenumbered) {
  run(shop, "DELETE FROM articoli");
  run(shop, "DELETE FROM categorie");
  run(shop,
      "INSERT INTO articoli (ID, catID, ordinamento) VALUES (1, 'cat002', 100), (2, 'cat001', 7), (3, 'cat001', NULL)");
  run(shop, "INSERT INTO categorie (ID, livello, ordinamento) VALUES ('cat001', 2, 100), ('cat002', 1, 105)");
  upgrade();
  EXPECT_EQ(read(shop, "SELECT group_concat(ID || ':' || ordinamento) FROM (SELECT * FROM articoli ORDER BY ID)"),
            "1:110,2:105,3:100");
  EXPECT_EQ(read(shop, "SELECT group_concat(ID || ':' || ordinamento) FROM (SELECT * FROM categorie ORDER BY ID)"),
            "cat001:105,cat002:100");
}

TEST_F(AnAgedShop, HasItsNewColumnsInTheTypesOfTheSchema) {
  run(shop, "ALTER TABLE generale DROP COLUMN p3p; ALTER TABLE generale DROP COLUMN reglist");
  upgrade();
  auto catalogue = Database::open(shop + "/catalog.mdb", OpenMode::Shared).value();
  const auto table = catalogue.table("generale");
  ASSERT_TRUE(table);
  const auto typeOf = [&](const char* name) {
    return table->columns[static_cast<std::size_t>(table->columnIndex(name))].type;
  };
  EXPECT_EQ(typeOf("p3p"), ColumnType::Memo);
  EXPECT_EQ(typeOf("reglist"), ColumnType::Bool);
}

TEST_F(AnAgedShop, WithOneMissingColumnKeepsTheValuesOfTheOthers) {
  run(shop, "UPDATE generale SET p3p = 'NOI'; ALTER TABLE generale DROP COLUMN showsigns");
  EXPECT_THAT(upgrade().columns, ElementsAre("generale.showsigns"));
  EXPECT_EQ(read(shop, "SELECT p3p FROM generale"), "NOI");
}

TEST_F(AnAgedShop, GetsThePrivacyTagInItsSeed) {
  {
    auto seed = checked(Database::open(shop + "/source.new", OpenMode::Shared));
    ASSERT_TRUE(seed->execute("ALTER TABLE categoria DROP COLUMN compact_privacy_policy"));
  }
  EXPECT_THAT(upgrade().columns, ElementsAre("categoria.compact_privacy_policy"));
  EXPECT_THAT(columns("source.new", "categoria"), testing::HasSubstr("compact_privacy_policy"));
}

TEST_F(AnAgedShop, OfALaterVersionIsStampedToo) {
  for (const int version : {1003, 1099}) {
    run(shop, "UPDATE generale SET versione = " + std::to_string(version));
    upgrade();
    EXPECT_EQ(read(shop, "SELECT versione FROM generale"), "1002");
  }
}

TEST_F(AnAgedShop, WithoutAStampGetsAllFilesAndTheStamp) {
  EXPECT_EQ(upgrade().files, allFiles());
  EXPECT_EQ(renewed(), "4 2 8");
  EXPECT_EQ(stampOf(shop), "1.0.8\r\n");
}

TEST_F(AnAgedShop, GetsTheFilesOfTheGenerationsAfterItsOwn) {
  struct Case {
    const char* stamp;
    const char* renewed;
  };
  constexpr Case cases[] = {{"1.0.3\r\n", "4 2 8"},  {"1.0.4\r\n", "0 2 8"}, {"1.0.5\r\n", "0 2 8"},
                            {"1.0.6\r\n", "0 0 8"},  {"1.0.7\r\n", "0 0 8"}, {"", "4 2 8"},
                            {" 1.0.8\r\n", "4 2 8"}, {"1.0.6 \n", "0 0 8"}};
  for (const Case& each : cases) {
    ageFiles();
    stamp(each.stamp);
    upgrade();
    EXPECT_EQ(renewed(), each.renewed) << each.stamp;
    EXPECT_EQ(stampOf(shop), "1.0.8\r\n") << each.stamp;
  }
}

TEST_F(AnAgedShop, OfTheCurrentOrALaterGenerationGetsNothing) {
  for (const char* text : {"1.0.8\r\n", "1.0.8", "1.0.9\r\n", "1.1\r\n", "1.0.8 \r\n"}) {
    stamp(text);
    EXPECT_THAT(upgrade().files, IsEmpty()) << text;
    EXPECT_EQ(stampOf(shop), text);
  }
}

TEST_F(AnAgedShop, KeepsTheDescriptorsAndScriptsThatWereFilled) {
  const char* filled[] = {"Paypal.kpg",           "Cilme.kpg",        "Omnipay.kpg", "Omnipay/omniend.php",
                          "Bankpass/bpurlms.php", "SysPay/syspay.php"};
  for (const char* name : filled) write(shop + "/code/" + name, std::string("riempito ") + name);
  upgrade();
  EXPECT_EQ(renewed(), "4 2 8");
  for (const char* name : filled) {
    EXPECT_EQ(readBytes(shop + "/code/" + name).value_or("(none)"), std::string("riempito ") + name);
  }
}

TEST_F(AnAgedShop, WhoseStampCannotBeReadGetsAllFiles) {
  ASSERT_TRUE(createFolders(shop + "/code/ve.dat"));
  upgrade();
  EXPECT_EQ(renewed(), "4 2 8");
}

TEST_F(AnAgedShop, ComparesStampsAsTextsCharacterByCharacter) {
  stamp("1.0.10\r\n");
  upgrade();
  EXPECT_EQ(renewed(), "4 2 8");
  EXPECT_EQ(stampOf(shop), "1.0.8\r\n");
}

TEST_F(AnAgedShop, InTheApplicationFolderIsStampedButGetsNoFile) {
  const std::string folder = root / "APP";
  std::filesystem::rename(application, folder);
  makeShopIn(folder, 1001);
  ASSERT_TRUE(createFolders(folder + "/code/SysPay"));
  const ShopUpgrade done = AggiornaNegozio(folder, root / "app");
  EXPECT_THAT(done.files, IsEmpty());
  EXPECT_EQ(stampOf(folder), "1.0.8\r\n");
  EXPECT_FALSE(fileExists(folder + "/code/SysPay/conf.ini"));
}

TEST_F(AnAgedShop, FindsItsFilesWhateverTheCaseOfTheirNames) {
  std::filesystem::rename(shop + "/code", shop + "/Code");
  std::filesystem::rename(shop + "/Code/SysPay", shop + "/Code/SYSPAY");
  write(shop + "/Code/VE.DAT", "1.0.6\r\n");
  upgrade();
  EXPECT_EQ(readBytes(shop + "/Code/SYSPAY/conf.ini"), "nuovo SysPay/conf.ini");
  EXPECT_EQ(readBytes(shop + "/Code/VE.DAT"), "1.0.8\r\n");
  EXPECT_FALSE(folderExists(shop + "/code"));
}

TEST_F(AnAgedShop, KeepsAConfiguredModuleInItsBackup) {
  stamp("1.0.6\r\n");
  write(shop + "/code/SysPay/conf.ini", "shop=4711\r\n");
  const ShopUpgrade done = upgrade();
  EXPECT_EQ(readBytes(shop + "/backup/code/SysPay/conf.ini"), "shop=4711\r\n");
  EXPECT_THAT(done.kept, testing::Contains(shop + "/backup/code/SysPay/conf.ini"));
  EXPECT_EQ(std::filesystem::status(shop + "/backup/code/SysPay/conf.ini").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  write(shop + "/code/SysPay/conf.ini", "shop=4712\r\n");
  stamp("1.0.6\r\n");
  upgrade();
  EXPECT_EQ(readBytes(shop + "/backup/code/SysPay/conf.ini"), "shop=4711\r\n");
  EXPECT_EQ(readBytes(shop + "/backup/code/SysPay/conf.ini-2"), "shop=4712\r\n");
}

TEST_F(AnAgedShop, KeepsNothingOfFilesThatAreNewAlready) {
  for (const auto& name : allFiles()) write(shop + "/code/" + name, "nuovo " + name);
  EXPECT_THAT(upgrade().kept, IsEmpty());
  EXPECT_FALSE(folderExists(shop + "/backup"));
}

TEST_F(AnAgedShop, WhoseConfigurationCannotBeKeptStaysUnstamped) {
  write(shop + "/backup", "no folder");
  stamp("1.0.6\r\n");
  upgrade();
  EXPECT_EQ(readBytes(shop + "/code/SysPay/conf.ini"), "vecchio SysPay/conf.ini");
  EXPECT_EQ(stampOf(shop), "1.0.6\r\n");
}

TEST_F(AnAgedShop, IsTriedAgainAtTheNextOpeningWhenAFileFails) {
  stamp("1.0.6\r\n");
  {
    FailingFiles failing(1, AfterFailure::FailsToo, ENOSPC);
    failing.onlyFor("omniend.new");
    upgrade();
  }
  EXPECT_EQ(stampOf(shop), "1.0.6\r\n");
  upgrade();
  EXPECT_EQ(renewed(), "0 0 8");
  EXPECT_EQ(stampOf(shop), "1.0.8\r\n");
}

TEST_F(AnAgedShop, WhateverFileCallFailsHasWholeFilesAndIsCompletedAtTheNextOpening) {
  std::vector<std::string> names(std::begin(secondList), std::end(secondList));
  names.insert(names.end(), std::begin(thirdList), std::end(thirdList));
  // Seven at a time: another call of another file in each round.
  for (int n = 1; n < 500; n += 7) {
    ageFiles();
    std::filesystem::remove_all(shop + "/backup");
    stamp("1.0.4\r\n");
    bool failed = false;
    {
      ShopUpgrade cutOff;
      FailingFiles failing(n);
      failing.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename});
      failed = !upgradeFiles(shop, application, cutOff);
      EXPECT_EQ(failed, failing.hasFailed()) << n;
    }
    for (const std::string& name : names) {
      const std::string text = readBytes(shop + "/code/" + name).value_or("(none)");
      EXPECT_TRUE(text == "nuovo " + name || text == "vecchio " + name) << n << ": " << text;
    }
    EXPECT_EQ(stampOf(shop), failed ? "1.0.4\r\n" : "1.0.8\r\n") << n;
    ShopUpgrade completed;
    EXPECT_TRUE(upgradeFiles(shop, application, completed)) << n;
    EXPECT_EQ(renewed(), "0 2 8") << n;
    EXPECT_EQ(stampOf(shop), "1.0.8\r\n") << n;
    if (failed) continue;
    EXPECT_GT(n, 56);
    return;
  }
  ADD_FAILURE() << "no end";
}

TEST_F(AnAgedShop, ThatAnotherProgramHoldsStaysAsItIs) {
  const auto other = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  EXPECT_TRUE(upgrade().isEmpty());
  EXPECT_EQ(renewed(), "0 0 0");
}

TEST_F(AnAgedShop, LosesWhatAKilledDialogHasLeft) {
  run(shop, "CREATE TABLE temppagamento (a INTEGER); UPDATE pagamento SET nome1 = 'Contanti'");
  upgrade();
  EXPECT_EQ(read(shop, "SELECT COUNT(*) FROM sqlite_schema WHERE name = 'temppagamento'"), "0");
}

TEST_F(AnAgedShop, OpenedTwiceIsNotWrittenToAtTheSecond) {
  run(shop, "UPDATE generale SET versione = 1001; ALTER TABLE generale DROP COLUMN p3p");
  EXPECT_FALSE(upgrade().isEmpty());
  const std::string catalogue = readBytes(shop + "/catalog.mdb").value_or("(none)");
  const auto stampBefore = fileStamp(shop + "/catalog.mdb");
  EXPECT_TRUE(upgrade().isEmpty());
  EXPECT_EQ(readBytes(shop + "/catalog.mdb"), catalogue);
  EXPECT_TRUE(fileStamp(shop + "/catalog.mdb").value() == stampBefore.value());
}

TEST_F(AnAgedShop, HoweverAgedHasTheSchemaOfANewOneAndIsLeftAloneAtTheSecondOpening) {
  std::mt19937 chance(seed());
  const auto sorted = [](std::string text) {
    std::istringstream words(text);
    std::set<std::string> names{std::istream_iterator<std::string>(words), {}};
    return names;
  };
  const auto whole = sorted(columns());
  for (int round = 0; round < operationsOf(25); ++round) {
    std::string aging = "UPDATE generale SET versione = " + std::to_string(1000 + chance() % 100);
    for (const char* column :
         {"p3p", "subtitleincart", "regprices", "singleitem_search", "singleitem_vet", "reglist", "showsigns"}) {
      if (chance() % 2 == 0) aging += std::string(";ALTER TABLE generale DROP COLUMN ") + column;
    }
    run(shop, aging);
    constexpr const char* stamps[] = {"1.0.3", "1.0.4", "1.0.6", "1.0.8", "1.0.10", ""};
    stamp(stamps[chance() % 6]);
    env.hooks.AggiornaNegozio = [&](const std::string& folder) { AggiornaNegozio(folder, application); };
    session.ShopFolder = shop;
    ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
    releaseCatalogue(session, env);
    EXPECT_EQ(sorted(columns()), whole);
    EXPECT_EQ(read(shop, "SELECT versione FROM generale"), "1002");
    EXPECT_EQ(stampOf(shop).substr(0, 5), "1.0.8");
    EXPECT_TRUE(upgrade().isEmpty());
  }
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(AnAgedShop, ThatIsOnlyLookedAtIsNotTouched) {
  run(shop, "UPDATE generale SET versione = 1001; ALTER TABLE generale DROP COLUMN p3p");
  stamp("1.0.6\r\n");
  const std::string catalogue = readBytes(shop + "/catalog.mdb").value_or("(none)");
  ShopUpgrade planned;
  {
    auto opened = Database::open(shop + "/catalog.mdb", OpenMode::ReadOnly);
    ASSERT_TRUE(opened);
    planned = plannedUpgrade(*opened, shop, application);
  }
  EXPECT_EQ(readBytes(shop + "/catalog.mdb").value_or(""), catalogue);
  EXPECT_EQ(renewed(), "0 0 0");
  EXPECT_EQ(stampOf(shop), "1.0.6\r\n");
  const ShopUpgrade done = upgrade();
  EXPECT_EQ(planned.columns, done.columns);
  EXPECT_EQ(planned.files, done.files);
  EXPECT_EQ(planned.stamped, done.stamped);
}

TEST_F(AnAgedShop, OpensWithoutAQuestion) {
  run(shop, "UPDATE generale SET versione = 1001; ALTER TABLE generale DROP COLUMN showsigns");
  env.hooks.AggiornaNegozio = [&](const std::string& folder) { AggiornaNegozio(folder, application); };
  session.ShopFolder = shop;
  EXPECT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
  EXPECT_THAT(user.shown, IsEmpty());
  EXPECT_EQ(asText(session.catalogue.scalar("SELECT showsigns FROM generale").value()), "1");
}

}  // namespace
}  // namespace kv::test
