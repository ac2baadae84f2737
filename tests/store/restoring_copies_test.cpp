// Dated copies of the catalogue: how one is put back.

#include <gmock/gmock.h>

#include "platform/files/file_gate.h"
#include "store/dated_copies_fixture.h"
#include "store/shop/compact.h"
#include "store/shop/kept_order_key.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
#include "support/failing_files.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class RestoringACopy : public test::DatedCopies {
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
  test::killInTheMiddleOfAChange(folder + "/catalog.mdb");
  ASSERT_TRUE(restoreCopy(folder, oldest(), clock));
  EXPECT_FALSE(fileExists(folder + "/catalog.mdb-journal"));
  EXPECT_EQ(title(), "Lampada");
  EXPECT_EQ(title("backup/" + names().front()), "Lume");
}

TEST_F(RestoringACopy, LeavesTheShopTheKeyOfOrdersThatItsServerKnows) {
  const auto key = [this] {
    auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::ReadOnly).value();
    return readOrderKey(catalogue).value();
  };
  const std::string known(64, 'a');
  {
    auto catalogue = Database::open(folder + "/catalog.mdb", OpenMode::Shared).value();
    ASSERT_TRUE(writeOrderKey(catalogue, known));
  }
  ASSERT_TRUE(restoreCopy(folder, oldest(), clock));
  EXPECT_EQ(title(), "Lampada");
  EXPECT_EQ(key(), known);
  std::filesystem::remove(folder + "/catalog.mdb");
  ASSERT_TRUE(restoreCopy(folder, names().back(), clock));
  EXPECT_EQ(key(), "") << "the copy is of a time without a key, and nothing tells of another one";
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
  EXPECT_EQ(asText(test::valueOf(session.catalogue.scalar("SELECT titolo FROM articoli"))), "Lampada");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(RestoringACopy, AFailureIsToldAndTheSessionGoesOnWithTheCatalogueAsItIs) {
  write(application + "/serverpath.net", folder + "\r\n");
  ASSERT_EQ(loadSession(session, env), LoadResult::Opened);
  EXPECT_FALSE(RipristinaCopia(session, env, "catalog-20200101T000000Z.mdb"));
  ASSERT_THAT(user.shown, SizeIs(1));
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
  ASSERT_TRUE(session.catalogue.isOpen());
  EXPECT_EQ(asText(test::valueOf(session.catalogue.scalar("SELECT titolo FROM articoli"))), "Lume");
}

TEST_F(RestoringACopy, IsAskedWithNoAsTheDefault) {
  const Question question = restoreQuestion(backupCopies(folder).front());
  EXPECT_EQ(question.buttons, Buttons::YesNo);
  EXPECT_EQ(question.preset, Answer::No);
}

}  // namespace
}  // namespace kv
