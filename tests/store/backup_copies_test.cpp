// Dated copies of the catalogue: when one is made, and how many stay.
#include "store/shop/backup_copies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "store/dated_copies_fixture.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using test::DatedCopies;

TEST_F(DatedCopies, ACopyIsNamedAfterTheTimeItWasMade) {
  EXPECT_TRUE(keep());
  EXPECT_THAT(names(), ElementsAre("catalog-20260712T071500Z.mdb"));
  EXPECT_EQ(readBytes(folder + "/backup/catalog-20260712T071500Z.mdb").value(),
            readBytes(folder + "/catalog.mdb").value());
  const BackupCopy copy = backupCopies(folder).front();
  EXPECT_EQ(copy.madeAt, static_cast<std::int64_t>(test::firstCopySecond));
  EXPECT_EQ(copy.size, std::filesystem::file_size(folder + "/catalog.mdb"));
}

TEST_F(DatedCopies, ACatalogueThatHasNotChangedIsNotCopiedAgain) {
  EXPECT_TRUE(keep());
  EXPECT_FALSE(keep());
  change("Lume");
  EXPECT_TRUE(keep());
  EXPECT_THAT(names(), ElementsAre("catalog-20260712T071700Z.mdb", "catalog-20260712T071500Z.mdb"));
}

TEST_F(DatedCopies, OnlyTheNewestCopyCountsForThat) {
  EXPECT_TRUE(keep());
  const auto before = std::filesystem::last_write_time(folder + "/catalog.mdb");
  const std::string bytes = readBytes(folder + "/catalog.mdb").value();
  change("Lume");
  EXPECT_TRUE(keep());
  write(folder + "/catalog.mdb", bytes);
  std::filesystem::last_write_time(folder + "/catalog.mdb", before);
  EXPECT_TRUE(keep());
}

TEST_F(DatedCopies, TheLastTenStay) {
  for (int i = 0; i < 13; ++i) {
    change("titolo " + std::to_string(i));
    ASSERT_TRUE(keep());
  }
  EXPECT_THAT(names(), SizeIs(10));
  EXPECT_EQ(names().front(), "catalog-20260712T072700Z.mdb");
  EXPECT_EQ(names().back(), "catalog-20260712T071800Z.mdb");
  EXPECT_EQ(title("backup/" + names().back()), "titolo 3");
}

TEST_F(DatedCopies, TwoCopiesOfOneSecondHaveNamesOfTheirOwn) {
  ASSERT_TRUE(keep());
  clock.seconds = test::firstCopySecond;
  change("Lume");
  ASSERT_TRUE(keep());
  clock.seconds = test::firstCopySecond;
  change("Lampione");
  ASSERT_TRUE(keep());
  EXPECT_THAT(names(), ElementsAre("catalog-20260712T071500Z-3.mdb", "catalog-20260712T071500Z-2.mdb",
                                   "catalog-20260712T071500Z.mdb"));
}

TEST_F(DatedCopies, ACopyMadeWithAClockThatWasSetBackIsNotTheOneThatGoes) {
  for (int i = 0; i < 10; ++i) {
    change("titolo " + std::to_string(i));
    ASSERT_TRUE(keep());
  }
  clock.seconds = 0;
  change("di ieri");
  ASSERT_TRUE(keep());
  EXPECT_THAT(names(), SizeIs(10));
  EXPECT_EQ(names().back(), "catalog-19700101T000000Z.mdb");
}

TEST_F(DatedCopies, OtherFilesInTheFolderAreNeitherListedNorDeleted) {
  const std::vector<std::string> others{"catalog-20260712T071500Z.txt",
                                        "catalog-20261399T071500Z.mdb",
                                        "catalog-prima.mdb",
                                        "catalog.mdb",
                                        "catalog-20260712T071500Z-.mdb",
                                        "note.mdb"};
  for (const std::string& name : others) write(folder + "/backup/" + name, "mio");
  for (int i = 0; i < 12; ++i) {
    change(std::to_string(i));
    ASSERT_TRUE(keep());
  }
  EXPECT_THAT(names(), SizeIs(10));
  for (const std::string& name : others) EXPECT_TRUE(fileExists(folder + "/backup/" + name)) << name;
}

TEST_F(DatedCopies, WithoutTheFolderThereIsNone) { EXPECT_THAT(names(), IsEmpty()); }

TEST_F(DatedCopies, ACatalogueInUseIsNotCopied) {
  const auto other = Database::open(folder + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  const auto kept = keepDatedCopy(folder, clock);
  ASSERT_FALSE(kept);
  EXPECT_EQ(kept.error().kind, ErrorKind::InUse);
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(DatedCopies, ADamagedCatalogueDrivesNoGoodCopyOut) {
  for (int i = 0; i < 10; ++i) {
    change(std::to_string(i));
    ASSERT_TRUE(keep());
  }
  const auto before = names();
  write(folder + "/catalog.mdb", "no database");
  const auto kept = keepDatedCopy(folder, clock);
  ASSERT_FALSE(kept);
  EXPECT_EQ(kept.error().kind, ErrorKind::Corrupt);
  EXPECT_EQ(names(), before);
}

TEST_F(DatedCopies, AMissingCatalogueIsNoCopy) {
  std::filesystem::remove(folder + "/catalog.mdb");
  EXPECT_EQ(keepDatedCopy(folder, clock).error().kind, ErrorKind::Missing);
}

TEST_F(DatedCopies, WhatAKilledWriterLeftIsUndoneBeforeTheCopy) {
  test::killInTheMiddleOfAChange(folder + "/catalog.mdb");
  EXPECT_TRUE(keep());
  EXPECT_EQ(title("backup/" + names().front()), "Lampada");
  EXPECT_EQ(title(), "Lampada");
}

TEST_F(DatedCopies, OpeningAShopMakesOneBeforeAnythingChangesTheCatalogue) {
  env.hooks.CopiaCatalogo = catalogueCopier(env);
  env.hooks.AggiornaNegozio = [this](const std::string&) { change("aggiornato"); };
  session.ShopFolder = folder;
  ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
  EXPECT_EQ(title("backup/" + names().front()), "Lampada");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(DatedCopies, AProgramWithoutTheHookMakesNone) {
  session.ShopFolder = folder;
  ASSERT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
  EXPECT_FALSE(folderExists(folder + "/backup"));
}

TEST_F(DatedCopies, AForeignCatalogueIsNotCopied) {
  run(folder, "UPDATE generale SET versione = 250");
  env.hooks.CopiaCatalogo = catalogueCopier(env);
  user.answers = {Answer::No};
  session.ShopFolder = folder;
  EXPECT_EQ(CaricaNegozio(session, env), LoadResult::Failed);
  EXPECT_FALSE(folderExists(folder + "/backup"));
}

TEST_F(DatedCopies, ACopyThatCannotBeMadeIsToldAndTheShopOpens) {
  write(folder + "/backup", "a file in the way");
  env.hooks.CopiaCatalogo = catalogueCopier(env);
  session.ShopFolder = folder;
  EXPECT_EQ(CaricaNegozio(session, env), LoadResult::Opened);
  EXPECT_THAT(user.shown,
              ElementsAre(said("Impossibile conservare una copia del catalogo nella cartella '" + folder +
                                   "/backup'.\nVerificare lo spazio libero sul disco e i permessi della cartella.",
                               Icon::Exclamation)));
}

TEST_F(DatedCopies, WhatTheOpeningTellsIsNotToldTwice) {
  write(folder + "/catalog.mdb", "no database");
  env.hooks.CopiaCatalogo = catalogueCopier(env);
  session.ShopFolder = folder;
  EXPECT_EQ(CaricaNegozio(session, env), LoadResult::Failed);
  EXPECT_THAT(user.shown, SizeIs(1));
}

TEST(ShownCopies, SizesAreRoundedToWhatIsRead) {
  EXPECT_EQ(formatSize(0), "0 KB");
  EXPECT_EQ(formatSize(1), "1 KB");
  EXPECT_EQ(formatSize(870'400), "850 KB");
  EXPECT_EQ(formatSize(1'258'291), "1,2 MB");
  EXPECT_EQ(formatSize(std::uint64_t{200} << 20U), "200,0 MB");
}

TEST(ShownCopies, TimesAreThoseOfTheMachinesZone) {
  ASSERT_EQ(setenv("TZ", "UTC-2", 1), 0);
  tzset();
  EXPECT_EQ(formatTime(static_cast<std::int64_t>(test::firstCopySecond)), "12/07/2026 09:15");
  unsetenv("TZ");
  tzset();
}

}  // namespace
}  // namespace kv
