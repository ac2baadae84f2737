// Judging a folder: which shops are opened, and what is said of the others.
#include <gtest/gtest.h>

#include "shop_fixture.h"
#include "store/shop/shop_check.h"

namespace kv {
namespace {

class ShopChecking : public test::ShopFixture {
 protected:
  void expectFault(const std::string& folder, ShopFault kind, const std::string& message) {
    const ShopCheck check = validateShop(folder);
    EXPECT_FALSE(check.ok);
    EXPECT_EQ(check.kind, kind);
    EXPECT_EQ(check.message, message);
  }
  const std::string notAShop =
      "La cartella selezionata non contiene un negozio\n(oppure il negozio contenuto è corrotto)";
  const std::string unknownVersion = "Versione non riconosciuta: il negozio non può essere aperto.";
  const std::string earlier =
      "Il negozio è stato realizzato con una versione Primo\ne non può essere aperto direttamente.\n"
      "Utilizzare l'apposito comando del menu \"File\" per\nimportare tutti i dati.";
};

TEST_F(ShopChecking, AcceptsAShop) {
  const ShopCheck check = validateShop(makeShop("uno"));
  EXPECT_TRUE(check.ok);
  EXPECT_EQ(check.kind, ShopFault::None);
  EXPECT_EQ(check.message, "");
}

TEST_F(ShopChecking, AcceptsTheFirstAndTheLastVersion) {
  EXPECT_TRUE(validateShop(makeShop("uno", 1000)).ok);
  EXPECT_TRUE(validateShop(makeShop("due", 1099)).ok);
}

TEST_F(ShopChecking, RefusesAVersionBeyondTheLast) {
  expectFault(makeShop("uno", 1100), ShopFault::UnknownVersion, unknownVersion);
}

TEST_F(ShopChecking, RefusesVersionsBetweenTheProductLines) {
  expectFault(makeShop("uno", 299), ShopFault::UnknownVersion, unknownVersion);
  expectFault(makeShop("due", 999), ShopFault::UnknownVersion, unknownVersion);
}

TEST_F(ShopChecking, SendsAShopOfTheEarlierProductLineToTheImport) {
  expectFault(makeShop("uno", 298), ShopFault::EarlierProduct, earlier);
}

TEST_F(ShopChecking, ReadsANullVersionAsZero) {
  const std::string shop = makeShop("uno");
  run(shop, "UPDATE generale SET versione = NULL");
  expectFault(shop, ShopFault::EarlierProduct, earlier);
}

TEST_F(ShopChecking, RefusesAFolderWithoutOneOfItsThreeFiles) {
  for (const char* name : {"catalog.mdb", "kvftp.mdb", "source.new"}) {
    const std::string shop = makeShop(std::string("without ") + name);
    ASSERT_TRUE(deleteFile(shop + "/" + name));
    expectFault(shop, ShopFault::NotAShop, notAShop);
  }
}

TEST_F(ShopChecking, RefusesAFolderThatIsNotThere) { expectFault(root / "nowhere", ShopFault::NotAShop, notAShop); }

TEST_F(ShopChecking, MakesTheWorkingFolders) {
  const std::string shop = makeShop("uno");
  for (const char* name : {"work", "online", "scripts", "db"}) ASSERT_TRUE(removeFolder(shop + "/" + name));
  EXPECT_TRUE(validateShop(shop).ok);
  for (const char* name : {"work", "online", "scripts", "db"}) EXPECT_TRUE(folderExists(shop + "/" + name)) << name;
}

TEST_F(ShopChecking, FailsWhenAFileHasTheNameOfAWorkingFolder) {
  const std::string shop = makeShop("uno");
  ASSERT_TRUE(removeFolder(shop + "/db"));
  write(shop + "/db", "");
  expectFault(shop, ShopFault::FolderFailure, notAShop);
}

TEST_F(ShopChecking, NamesNumberAndTextOfADatabaseError) {
  const std::string shop = makeShop("uno");
  write(shop + "/catalog.mdb", "This is no database at all, but it is long enough to be read as one. ......");
  const auto opened = Database::open(shop + "/catalog.mdb", OpenMode::Shared);
  ASSERT_FALSE(opened);
  expectFault(shop, ShopFault::DatabaseFailure,
              "Impossibile aprire il database:\n" + std::to_string(opened.error().number) + " " + opened.error().what +
                  "\n\nIl database è corrotto, oppure sono stati cancellati alcuni file del programma.");
}

TEST_F(ShopChecking, ReportsACatalogueWithoutSettings) {
  const std::string shop = makeShop("uno");
  run(shop, "DELETE FROM generale");
  EXPECT_EQ(validateShop(shop).kind, ShopFault::DatabaseFailure);
}

TEST_F(ShopChecking, ReportsACatalogueThatIsCutShort) {
  const std::string shop = makeShop("uno");
  const std::string whole = readBytes(shop + "/catalog.mdb").value();
  write(shop + "/catalog.mdb", std::string_view(whole).substr(0, 3000));
  EXPECT_EQ(validateShop(shop).kind, ShopFault::DatabaseFailure);
}

TEST_F(ShopChecking, ReportsACatalogueThatSomeoneElseHolds) {
  const std::string shop = makeShop("uno");
  const auto other = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  EXPECT_EQ(validateShop(shop).kind, ShopFault::DatabaseFailure);
}

TEST_F(ShopChecking, ReadsTheCatalogueOfTheRunningSessionThroughItsHandle) {
  const std::string shop = makeShop("uno");
  auto own = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(own);
  EXPECT_TRUE(validateShop(shop, &*own).ok);
}

TEST_F(ShopChecking, AcceptsAReadOnlyCatalogueForTheRepairThatFollows) {
  const std::string shop = makeShop("uno");
  std::filesystem::permissions(shop + "/catalog.mdb", std::filesystem::perms::owner_read);
  EXPECT_TRUE(validateShop(shop).ok);
}

TEST_F(ShopChecking, ChangesNothingInTheCatalogue) {
  const std::string shop = makeShop("uno", 1050);
  const std::string before = readBytes(shop + "/catalog.mdb").value();
  EXPECT_TRUE(validateShop(shop).ok);
  EXPECT_EQ(readBytes(shop + "/catalog.mdb").value(), before);
}

}  // namespace
}  // namespace kv
