// Compaction at the tenth close, and the catalogue that is left after each failure.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "shop_fixture.h"
#include "store/shop/compact.h"
#include "store/shop/session_start.h"
#include "support/value_of.h"

namespace kv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Compaction : public test::ShopFixture {
 protected:
  void SetUp() override { shop = makeShop("uno"); }
  std::string times() const { return settings.get("AppIni", "Times"); }
  void setTimes(std::string_view value) { ASSERT_TRUE(settings.set("AppIni", "Times", value)); }
  void close() { CompattaCatalogo(shop, env); }
  bool compacted() const { return fileExists(shop + "/catalog.tmp"); }

  std::string shop;
};

TEST_F(Compaction, ComesAtTheTenthCloseAfterAReset) {
  setTimes("0");
  for (int number = 1; number <= 9; ++number) {
    close();
    EXPECT_EQ(times(), std::to_string(number));
    EXPECT_FALSE(compacted()) << number;
  }
  close();
  EXPECT_EQ(times(), "0");
  EXPECT_TRUE(compacted());
  EXPECT_EQ(read(shop, "SELECT versione FROM generale"), "1002");
}

TEST_F(Compaction, CountsFromNothing) {
  close();
  EXPECT_EQ(times(), "1");
  setTimes("strange");
  close();
  EXPECT_EQ(times(), "1");
}

TEST_F(Compaction, CatchesUpWhenTheTenthCloseWasMissed) {
  setTimes("23");
  close();
  EXPECT_EQ(times(), "0");
  EXPECT_TRUE(compacted());
}

TEST_F(Compaction, DoesNotEvenCountWithoutACatalogue) {
  ASSERT_TRUE(deleteFile(shop + "/catalog.mdb"));
  close();
  CompattaCatalogo("", env);
  EXPECT_EQ(times(), "");
}

TEST_F(Compaction, IsLeftOutWhenSwitchedOffButCounted) {
  ASSERT_TRUE(settings.set("AppIni", "Compact", "0"));
  setTimes("9");
  close();
  EXPECT_EQ(times(), "0");
  EXPECT_FALSE(compacted());
  EXPECT_THAT(user.progressShown, IsEmpty());
}

TEST_F(Compaction, ShowsAndHidesTheStatusWindow) {
  setTimes("9");
  close();
  ASSERT_EQ(user.progressShown.size(), 2U);
  EXPECT_EQ(user.progressShown[0].caption, "Compattazione del database...");
  EXPECT_EQ(user.progressShown[1].caption, "");
}

TEST_F(Compaction, ReplacesWhatAnEarlierOneLeft) {
  write(shop + "/catalog.tmp", "old");
  write(shop + "/catalog.tm0", "old");
  const std::string before = readBytes(shop + "/catalog.mdb").value();
  setTimes("9");
  close();
  EXPECT_EQ(readBytes(shop + "/catalog.tmp").value(), before);
  EXPECT_FALSE(fileExists(shop + "/catalog.tm0"));
}

TEST_F(Compaction, MakesTheFileSmaller) {
  run(shop, "INSERT INTO articoli (catID, descrizione) VALUES ('cat001', '" + std::string(400000, 'x') + "')");
  run(shop, "DELETE FROM articoli WHERE descrizione IS NOT NULL");
  const auto before = test::valueOf(readBytes(shop + "/catalog.mdb")).size();
  setTimes("9");
  close();
  EXPECT_LT(test::valueOf(readBytes(shop + "/catalog.mdb")).size(), before);
  EXPECT_EQ(read(shop, "SELECT titolo FROM articoli"), "Lampada");
}

TEST_F(Compaction, LeavesACatalogueThatOtherUsersCannotRead) {
  setTimes("9");
  close();
  struct stat status {};
  ASSERT_EQ(::stat((shop + "/catalog.mdb").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(Compaction, KeepsTheNextAutomaticKey) {
  run(shop, "INSERT INTO categorie (ID) VALUES ('cat001')");
  run(shop, "INSERT INTO categorie (ID) VALUES ('cat002')");
  run(shop, "DELETE FROM categorie WHERE ID = 'cat002'");
  setTimes("9");
  close();
  run(shop, "INSERT INTO categorie (ID) VALUES ('cat003')");
  EXPECT_EQ(read(shop, "SELECT contatore FROM categorie WHERE ID = 'cat003'"), "3");
}

TEST_F(Compaction, LeavesACatalogueThatSomeoneHolds) {
  const auto other = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  setTimes("9");
  close();
  EXPECT_FALSE(compacted());
  EXPECT_TRUE(fileExists(shop + "/catalog.mdb"));
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(Compaction, LeavesACorruptCatalogueSilently) {
  write(shop + "/catalog.mdb", "no database");
  setTimes("9");
  close();
  EXPECT_EQ(readBytes(shop + "/catalog.mdb").value(), "no database");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(Compaction, StopsWhenAnOldFileCannotBeDeleted) {
  const std::string before = readBytes(shop + "/catalog.mdb").value();
  write(shop + "/catalog.tm0/in the way", "");
  setTimes("9");
  close();
  EXPECT_EQ(readBytes(shop + "/catalog.mdb").value(), before);
}

TEST_F(Compaction, TakesTheFirstRenamingBackWhenTheSecondFails) {
  write(shop + "/catalog.tm0", "compacted");
  const std::string before = readBytes(shop + "/catalog.mdb").value();
  int calls = 0;
  const Rename failing = [&](const std::string& from, const std::string& to) -> Result<> {
    if (++calls == 2) return fail(ErrorKind::Other, to, "injected");
    return renameFile(from, to);
  };
  const auto swapped = swapInCompacted(shop, failing);
  ASSERT_FALSE(swapped);
  EXPECT_EQ(swapped.error().what, "injected");
  EXPECT_EQ(readBytes(shop + "/catalog.mdb").value(), before);
  EXPECT_FALSE(fileExists(shop + "/catalog.tmp"));
}

TEST_F(Compaction, LeavesAllAsItIsWhenTheFirstRenamingFails) {
  write(shop + "/catalog.tm0", "compacted");
  const Rename failing = [](const std::string&, const std::string& to) -> Result<> {
    return fail(ErrorKind::Other, to, "injected");
  };
  EXPECT_FALSE(swapInCompacted(shop, failing));
  EXPECT_TRUE(fileExists(shop + "/catalog.mdb"));
  EXPECT_FALSE(fileExists(shop + "/catalog.tmp"));
}

TEST_F(Compaction, InterruptedBetweenTheRenamingsIsUndoneAtTheNextStart) {
  const std::string before = readBytes(shop + "/catalog.mdb").value();
  ASSERT_TRUE(renameFile(shop + "/catalog.mdb", shop + "/catalog.tmp"));
  write(shop + "/catalog.tm0", "compacted");
  write(application + "/serverpath.net", shop + "\r\n");
  EXPECT_EQ(startSession(session, env), LoadResult::Opened);
  EXPECT_THAT(user.shown, IsEmpty());
  closeSession(session, env);
  EXPECT_EQ(readBytes(shop + "/catalog.mdb").value(), before);
}

TEST_F(Compaction, ABackupAloneIsNoCatalogue) {
  ASSERT_TRUE(renameFile(shop + "/catalog.mdb", shop + "/catalog.tmp"));
  recoverCatalogue(shop);
  EXPECT_FALSE(fileExists(shop + "/catalog.mdb"));
}

/// How another program finds a database; locks are a matter of processes.
ErrorKind seenByAnother(const std::string& path) {
  const pid_t child = ::fork();
  if (child == 0) {
    const auto opened = Database::open(path, OpenMode::Exclusive);
    ::_exit(opened ? 100 : static_cast<int>(opened.error().kind));
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return static_cast<ErrorKind>(WEXITSTATUS(status));
}

TEST_F(Compaction, HoldsTheCatalogueUntilTheNewFileHasItsName) {
  std::vector<ErrorKind> seen;
  const auto watching = [&](const std::string& from, const std::string& to) {
    seen.push_back(seenByAnother(shop + "/catalog.mdb"));
    auto renamed = renameFile(from, to);
    seen.push_back(seenByAnother(shop + "/catalog.tmp"));
    return renamed;
  };
  ASSERT_TRUE(compactCatalogue(shop, watching));
  EXPECT_THAT(seen, ElementsAre(ErrorKind::InUse, ErrorKind::InUse, ErrorKind::Missing, ErrorKind::InUse));
  EXPECT_EQ(read(shop, "SELECT versione FROM generale"), "1002");
  EXPECT_FALSE(fileExists(shop + "/catalog.mdb-journal"));
}

TEST_F(Compaction, LeavesTheJournalOfAnotherProgramAloneOnceItHasTheNewFile) {
  const auto watching = [&](const std::string& from, const std::string& to) {
    auto renamed = renameFile(from, to);
    if (baseName(to) == "catalog.mdb") write(shop + "/catalog.mdb-journal", "of another program");
    return renamed;
  };
  ASSERT_TRUE(compactCatalogue(shop, watching));
  EXPECT_EQ(readBytes(shop + "/catalog.mdb-journal").value_or("(gone)"), "of another program");
}

TEST_F(Compaction, LeavesACatalogueAloneThatIsInUse) {
  auto other = Database::open(shop + "/catalog.mdb", OpenMode::Exclusive);
  ASSERT_TRUE(other);
  setTimes("9");
  close();
  EXPECT_FALSE(compacted());
  EXPECT_EQ(times(), "0");
}

}  // namespace
}  // namespace kv
