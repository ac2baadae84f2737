// Dated copies of the catalogue: when one is made, how many stay, and how one is put back.
#include "store/shop/backup_copies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>

#include "platform/files/file_gate.h"
#include "shop_fixture.h"
#include "store/shop/compact.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
#include "support/failing_files.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr double firstSecond = 1783840500;  // 2026-07-12 07:15:00 UTC

class DatedCopies : public test::ShopFixture {
 protected:
  DatedCopies() {
    folder = makeShop("uno");
    clock.seconds = firstSecond;
  }

  /// A change of the catalogue that shows in its size and time.
  void change(const std::string& title) {
    run(folder, "UPDATE articoli SET titolo = '" + title + "'");
    // Two changes may fall into one tick of the disk's clock.
    const auto now = std::filesystem::last_write_time(folder + "/catalog.mdb");
    std::filesystem::last_write_time(folder + "/catalog.mdb", now + std::chrono::seconds(++changes_));
  }
  bool keep() {
    const auto kept = keepDatedCopy(folder, clock);
    EXPECT_TRUE(kept) << kept.error().what;
    clock.seconds += 60;
    return kept.value_or(false);
  }
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const BackupCopy& copy : backupCopies(folder)) found.push_back(copy.name);
    return found;
  }
  std::string title(const std::string& file = "catalog.mdb") const {
    auto catalogue = Database::open(folder + "/" + file, OpenMode::ReadOnly);
    if (!catalogue) return catalogue.error().what;
    const auto value = catalogue->scalar("SELECT titolo FROM articoli");
    return value ? asText(*value) : value.error().what;
  }

  std::string folder;

 private:
  int changes_ = 0;
};

TEST_F(DatedCopies, ACopyIsNamedAfterTheTimeItWasMade) {
  EXPECT_TRUE(keep());
  EXPECT_THAT(names(), ElementsAre("catalog-20260712T071500Z.mdb"));
  EXPECT_EQ(readBytes(folder + "/backup/catalog-20260712T071500Z.mdb").value(),
            readBytes(folder + "/catalog.mdb").value());
  const BackupCopy copy = backupCopies(folder).front();
  EXPECT_EQ(copy.madeAt, static_cast<std::int64_t>(firstSecond));
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
  clock.seconds = firstSecond;
  change("Lume");
  ASSERT_TRUE(keep());
  clock.seconds = firstSecond;
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

/// Leaves a catalogue whose writer was killed in the middle of a change that had reached the disk.
void killInTheMiddleOfAChange(const std::string& catalogue) {
  const pid_t child = fork();
  if (child == 0) {
    auto database = Database::open(catalogue, OpenMode::Exclusive);
    if (!database) std::_Exit(1);
    ignore(database->execute("PRAGMA cache_size=1"), "the process is killed soon");
    ignore(database->begin(), "the process is killed soon");
    ignore(database->execute("UPDATE articoli SET titolo = 'a meta'"), "the process is killed soon");
    ignore(database->execute("INSERT INTO articoli (titolo) WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
                             "FROM n WHERE i < 2000) "
                             "SELECT 'riga ' || i FROM n"),
           "the process is killed soon");
    std::_Exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
  ASSERT_GT(std::filesystem::file_size(catalogue + "-journal"), 0U);
}

TEST_F(DatedCopies, WhatAKilledWriterLeftIsUndoneBeforeTheCopy) {
  killInTheMiddleOfAChange(folder + "/catalog.mdb");
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

class RestoringACopy : public DatedCopies {
 protected:
  RestoringACopy() {
    keep();
    change("Lume");
  }
  std::string oldest() const { return names().back(); }
};

TEST_F(RestoringACopy, PutsItInPlaceAndKeepsTheOneItReplaces) {
  const auto restored = restoreCopy(folder, oldest(), clock);
  ASSERT_TRUE(restored) << restored.error().what;
  EXPECT_EQ(title(), "Lampada");
  EXPECT_THAT(names(), SizeIs(2));
  EXPECT_EQ(title("backup/" + names().front()), "Lume");
  EXPECT_EQ(std::filesystem::last_write_time(folder + "/catalog.mdb"),
            std::filesystem::last_write_time(folder + "/backup/" + oldest()));
}

TEST_F(RestoringACopy, WorksForTheOldestOfTenAlthoughAnEleventhIsMade) {
  for (int i = 0; i < 9; ++i) {
    change(std::to_string(i));
    keep();
  }
  change("ultimo");
  ASSERT_EQ(title("backup/" + oldest()), "Lampada");
  ASSERT_TRUE(restoreCopy(folder, oldest(), clock));
  EXPECT_EQ(title(), "Lampada");
  EXPECT_THAT(names(), SizeIs(10));
  EXPECT_EQ(title("backup/" + names().front()), "ultimo");
}

TEST_F(RestoringACopy, ReplacesADamagedCatalogueAndKeepsItToo) {
  write(folder + "/catalog.mdb", "no database");
  ASSERT_TRUE(restoreCopy(folder, oldest(), clock));
  EXPECT_EQ(title(), "Lampada");
  EXPECT_EQ(readBytes(folder + "/backup/" + names().front()).value(), "no database");
}

TEST_F(RestoringACopy, ReplacesAMissingCatalogue) {
  std::filesystem::remove(folder + "/catalog.mdb");
  ASSERT_TRUE(restoreCopy(folder, oldest(), clock));
  EXPECT_EQ(title(), "Lampada");
}

TEST_F(RestoringACopy, LetsNoJournalOfTheReplacedCatalogueLoose) {
  killInTheMiddleOfAChange(folder + "/catalog.mdb");
  ASSERT_TRUE(restoreCopy(folder, oldest(), clock));
  EXPECT_FALSE(fileExists(folder + "/catalog.mdb-journal"));
  EXPECT_EQ(title(), "Lampada");
  EXPECT_EQ(title("backup/" + names().front()), "Lume");
}

TEST_F(RestoringACopy, RefusesADamagedCopy) {
  write(folder + "/backup/" + oldest(), "no database");
  const auto restored = restoreCopy(folder, oldest(), clock);
  ASSERT_FALSE(restored);
  EXPECT_EQ(restored.error().kind, ErrorKind::Corrupt);
  EXPECT_EQ(title(), "Lume");
  EXPECT_THAT(names(), SizeIs(1));
}

TEST_F(RestoringACopy, RefusesWhatIsNotInTheList) {
  for (const char* name : {"catalog-20200101T000000Z.mdb", "../catalog.mdb", ""}) {
    const auto restored = restoreCopy(folder, name, clock);
    ASSERT_FALSE(restored) << name;
    EXPECT_EQ(restored.error().kind, ErrorKind::Missing);
  }
  EXPECT_EQ(title(), "Lume");
}

TEST_F(RestoringACopy, RefusesWhileAnotherProgramHasTheShopOpen) {
  const auto other = Database::open(folder + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  const auto restored = restoreCopy(folder, oldest(), clock);
  ASSERT_FALSE(restored);
  EXPECT_EQ(restored.error().kind, ErrorKind::InUse);
}

/// Another program that tries to open a catalogue at each renaming of files.
class OpenerAtRenames final : public FileGate {
 public:
  explicit OpenerAtRenames(std::string catalogue) : catalogue_(std::move(catalogue)), before_(setFileGate(this)) {}
  OpenerAtRenames(const OpenerAtRenames&) = delete;
  OpenerAtRenames& operator=(const OpenerAtRenames&) = delete;
  ~OpenerAtRenames() override { setFileGate(before_); }
  int refusal(FileStep step, const std::string& path) override {
    const bool isExchange = step == FileStep::Rename && path.ends_with("catalog.tmp");
    if (!isExchange) return 0;
    const auto opened = Database::open(catalogue_, OpenMode::Exclusive);
    found.push_back(opened ? ErrorKind::Other : opened.error().kind);
    return 0;
  }
  std::vector<ErrorKind> found;

 private:
  std::string catalogue_;
  FileGate* before_;
};

TEST_F(RestoringACopy, HoldsTheCatalogueUntilItHasBeenExchanged) {
  OpenerAtRenames other(folder + "/catalog.mdb");
  ASSERT_TRUE(restoreCopy(folder, oldest(), clock));
  EXPECT_THAT(other.found, ElementsAre(ErrorKind::InUse));
}

TEST_F(RestoringACopy, AFailureAtAnyCallLeavesOneOfTheTwoCatalogues) {
  const std::string wanted = oldest();
  for (std::int64_t call = 1;; ++call) {
    test::FailingFiles files(call);
    const auto restored = restoreCopy(folder, wanted, clock);
    if (!files.hasFailed()) break;
    recoverCatalogue(folder);
    EXPECT_EQ(title(), restored ? "Lampada" : "Lume") << call;
    if (restored) change("Lume");
  }
}

TEST_F(RestoringACopy, TheSessionRestartsOnIt) {
  write(application + "/serverpath.net", folder + "\r\n");
  ASSERT_EQ(loadSession(session, env), LoadResult::Opened);
  int bound = 0;
  env.hooks.bind = [&bound](Session&) { ++bound; };
  EXPECT_TRUE(RipristinaCopia(session, env, oldest()));
  EXPECT_EQ(bound, 1);
  ASSERT_TRUE(session.catalogue.isOpen());
  EXPECT_EQ(asText(*session.catalogue.scalar("SELECT titolo FROM articoli")), "Lampada");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(RestoringACopy, AFailureIsToldAndTheSessionGoesOnWithTheCatalogueAsItIs) {
  write(application + "/serverpath.net", folder + "\r\n");
  ASSERT_EQ(loadSession(session, env), LoadResult::Opened);
  EXPECT_FALSE(RipristinaCopia(session, env, "catalog-20200101T000000Z.mdb"));
  ASSERT_THAT(user.shown, SizeIs(1));
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
  ASSERT_TRUE(session.catalogue.isOpen());
  EXPECT_EQ(asText(*session.catalogue.scalar("SELECT titolo FROM articoli")), "Lume");
}

TEST_F(RestoringACopy, IsAskedWithNoAsTheDefault) {
  const Question question = restoreQuestion(backupCopies(folder).front());
  EXPECT_EQ(question.buttons, Buttons::YesNo);
  EXPECT_EQ(question.preset, Answer::No);
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
  EXPECT_EQ(formatTime(static_cast<std::int64_t>(firstSecond)), "12/07/2026 09:15");
  unsetenv("TZ");
  tzset();
}

}  // namespace
}  // namespace kv
