// Numbered backups of the catalogue: which number is next, and that none is ever overwritten.
#include "store/shop/numbered_backup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shop_fixture.h"
#include "store/shop/backup_copies.h"
#include "store/shop/load_shop.h"
#include "support/failing_files.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::ElementsAre;

class NumberedBackups : public test::ShopFixture {
 protected:
  NumberedBackups() { folder = makeShop("uno"); }
  void present(const std::string& name) { write(folder + "/" + name, "prima"); }
  std::string folder;
};

TEST_F(NumberedBackups, TheFirstIs000) {
  EXPECT_EQ(CreaBackup(session, folder), "catalog.000");
  EXPECT_EQ(readBytes(folder + "/catalog.000").value(), readBytes(folder + "/catalog.mdb").value());
}

TEST_F(NumberedBackups, TheNextIsOneAfterTheLast) {
  present("catalog.000");
  present("catalog.007");
  present("catalog.old");
  present("catalog.tm0");
  present("catalog.0099");
  EXPECT_EQ(CreaBackup(session, folder), "catalog.008");
  EXPECT_THAT(numberedBackups(folder), ElementsAre("catalog.000", "catalog.007", "catalog.008"));
}

TEST_F(NumberedBackups, After999ThereIsNone) {
  present("catalog.999");
  EXPECT_EQ(CreaBackup(session, folder), "");
  EXPECT_FALSE(fileExists(folder + "/catalog.1000"));
  EXPECT_EQ(readBytes(folder + "/catalog.999").value(), "prima");
}

TEST_F(NumberedBackups, ANameThatIsTakenIsNeverOverwritten) {
  present("catalog.old.004");
  present("catalog.005");
  EXPECT_EQ(CreaBackup(session, folder), "catalog.006") << "005 would follow the last of the sorted list";
  EXPECT_EQ(readBytes(folder + "/catalog.005").value(), "prima");
}

TEST_F(NumberedBackups, AnOpenCatalogueIsCopiedAndKeepsItsLock) {
  session.ShopFolder = folder;
  ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
  ASSERT_TRUE(session.catalogue.execute("UPDATE articoli SET titolo = 'Nuova'"));
  EXPECT_EQ(CreaBackup(session, folder), "catalog.000");
  EXPECT_EQ(Database::open(folder + "/catalog.mdb", OpenMode::Shared).error().kind, ErrorKind::InUse);
  auto copy = Database::open(folder + "/catalog.000", OpenMode::ReadOnly);
  ASSERT_TRUE(copy);
  EXPECT_EQ(asText(test::valueOf(copy->scalar("SELECT titolo FROM articoli"))), "Nuova");
}

TEST_F(NumberedBackups, WhatAKilledProgramLeftOfACopyIsNoBackupAndNoHindrance) {
  present("catalog.tm0");
  session.ShopFolder = folder;
  ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
  EXPECT_EQ(CreaBackup(session, folder), "catalog.000");
  EXPECT_TRUE(Database::open(folder + "/catalog.000", OpenMode::ReadOnly));
  EXPECT_FALSE(fileExists(folder + "/catalog.tm0"));
}

TEST_F(NumberedBackups, OneCanBeRestoredLikeADatedCopy) {
  ASSERT_EQ(CreaBackup(session, folder), "catalog.000");
  run(folder, "UPDATE articoli SET titolo = 'Nuova'");
  ASSERT_EQ(restorableCopies(folder).size(), 1U);
  EXPECT_EQ(restorableCopies(folder).front().name, "catalog.000");
  const auto restored = restoreCopy(folder, "catalog.000", clock);
  ASSERT_TRUE(restored) << restored.error().what;
  EXPECT_EQ(read(folder, "SELECT titolo FROM articoli"), "Lampada");
  EXPECT_TRUE(fileExists(folder + "/catalog.000")) << "it stays";
  EXPECT_EQ(backupCopies(folder).size(), 1U) << "the catalogue of before is kept as a dated copy";
}

TEST_F(NumberedBackups, DatedCopiesAndNumberedOnesAreListedByTheirTimes) {
  write(folder + "/backup/catalog-20260712T071500Z.mdb", "x");
  write(folder + "/backup/catalog-20100712T071500Z.mdb", "x");
  present("catalog.003");
  std::filesystem::last_write_time(
      folder + "/catalog.003",
      std::chrono::file_clock::from_sys(std::chrono::sys_seconds(std::chrono::seconds(1500000000))));
  std::vector<std::string> names;
  for (const BackupCopy& copy : restorableCopies(folder)) names.push_back(copy.name);
  EXPECT_THAT(names, ElementsAre("catalog-20260712T071500Z.mdb", "catalog.003", "catalog-20100712T071500Z.mdb"));
}

TEST_F(NumberedBackups, AFullDiskAtAnyWriteGivesNoNameAndLeavesNoFile) {
  const auto count = [this] { return std::distance(std::filesystem::directory_iterator(folder), {}); };
  const auto before = count();
  int refused = 0;
  for (std::int64_t failing = 1;; ++failing) {
    test::FailingFiles gate(failing, test::AfterFailure::Works, ENOSPC);
    gate.onlyAt({FileStep::Create, FileStep::Write, FileStep::Close, FileStep::Rename});
    const std::string name = CreaBackup(session, folder);
    if (!gate.hasFailed()) break;
    ++refused;
    EXPECT_EQ(name, "") << failing;
    EXPECT_EQ(count(), before) << failing;
  }
  EXPECT_GE(refused, 3) << "it is made, written and closed";
  EXPECT_EQ(numberedBackups(folder).size(), 1U) << "the disk has room again";
}

}  // namespace
}  // namespace kv
