// Builds that meet damage: a full disk, a kill at any moment, missing seeds, unreadable pictures, folders that can't be
// written. Each says what is wrong, loses nothing, and leaves a shop that the next build repairs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <thread>

#include "platform/files/files.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

/// Every file below a folder with its bytes, the marker of the build left out: its name is new each time.
std::map<std::string, std::string> contents(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file() || entry.path().extension() == ".sc") continue;
    files[std::filesystem::relative(entry.path(), folder).string()] = readBytes(entry.path().string()).value_or("");
  }
  return files;
}

void fillShop(TempShop& shop) {
  for (const char* id : {"cat001", "cat002", "cat003"}) {
    shop.department(id);
    for (int i = 0; i < 40; ++i) {
      shop.article(id, {{"titolo", std::string("Articolo ") + id + std::to_string(i)}, {"prezzo", money("12.5")}});
    }
  }
}

/// Runs a routine in a child process with a limit on the size of any file it writes, as a full disk would have it.
int runWithFileLimit(rlim_t bytes, const std::function<bool()>& routine) {
  const pid_t child = fork();
  if (child == 0) {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    _exit(routine() ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(BuildRobustnessTest, AFullDiskIsReportedAndTheOldPagesStay) {
  TempShop shop;
  fillShop(shop);
  shop.templateFile("index.htm", "<html><<1-home1>></html>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::string before = shop.page("index.php");
  shop.sql("UPDATE generale SET home1 = '" + std::string(4000000, 'b') + "'");
  // Room for the databases, which grow to some hundred KiB, but not for the page.
  shop.user.shown.clear();
  const int result = runWithFileLimit(2000000, [&shop] {
    const bool failed = shop.build() == BuildOutcome::Failed;
    return failed && shop.user.shown.size() == 1 &&
           shop.user.shown[0].text.find("Si è verificato un errore imprevisto:\n") == 0;
  });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(shop.page("index.php"), before);
  EXPECT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("index.php"), HasSubstr("bbb"));
}

TEST(BuildRobustnessTest, AKillAtAnyMomentIsRepairedByTheNextBuild) {
  TempShop shop(2);
  fillShop(shop);
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const auto wanted = contents(shop.session.onlineFolder);
  const std::string rows = shop.rows("SELECT ID, pagina, titolo FROM articoli ORDER BY ID");
  unsigned seed = 20;
  for (int round = 0; round < 20; ++round) {
    shop.session.catalogue.close();
    const pid_t child = fork();
    if (child == 0) {
      auto catalogue = Database::open(shop.folder() + "/catalog.mdb", OpenMode::Exclusive);
      if (!catalogue) _exit(2);
      shop.session.catalogue = std::move(*catalogue);
      for (;;) ignore(shop.build(), "killed in the middle");
    }
    std::this_thread::sleep_for(std::chrono::microseconds(1000 + rand_r(&seed) % 60000));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "round " << round;
    auto catalogue = Database::open(shop.folder() + "/catalog.mdb", OpenMode::Exclusive);
    ASSERT_TRUE(catalogue) << catalogue.error().what;
    shop.session.catalogue = std::move(*catalogue);
    shop.random = FixedRandom();
    ASSERT_EQ(shop.build(), BuildOutcome::Done) << "round " << round;
    ASSERT_TRUE(contents(shop.session.onlineFolder) == wanted) << "round " << round;
    ASSERT_EQ(shop.rows("SELECT ID, pagina, titolo FROM articoli ORDER BY ID"), rows) << "round " << round;
    ASSERT_FALSE(folderExists(shop.folder() + "/tmp"));
  }
}

TEST(BuildRobustnessTest, AMissingSeedIsReportedAndThePagesStay) {
  for (const char* seed : {"new.mdb", "source.new"}) {
    TempShop shop;
    fillShop(shop);
    ASSERT_EQ(shop.build(), BuildOutcome::Done);
    const auto before = contents(shop.session.onlineFolder);
    EXPECT_TRUE(deleteFile(shop.folder() + "/" + seed).has_value());
    shop.user.shown.clear();
    EXPECT_EQ(shop.build(), BuildOutcome::Failed) << seed;
    ASSERT_EQ(shop.user.shown.size(), 1U);
    EXPECT_THAT(shop.user.shown[0].text, HasSubstr(seed));
    EXPECT_TRUE(contents(shop.session.onlineFolder) == before);
  }
}

TEST(BuildRobustnessTest, AnUnreadableColourSampleIsReported) {
  TempShop shop;
  shop.application("template/prova/kvan_col_2.gif", "GIF89a");
  EXPECT_EQ(shop.build(), BuildOutcome::Failed);
  ASSERT_EQ(shop.user.shown.size(), 1U);
  EXPECT_THAT(shop.user.shown[0].text, HasSubstr("kvan_col_2.gif"));
  TempShop other;
  EXPECT_TRUE(deleteFile(other.applicationFolder() + "/template/prova/kvan_col_4.gif").has_value());
  EXPECT_EQ(other.build(), BuildOutcome::Failed);
  EXPECT_THAT(other.user.shown[0].text, HasSubstr("kvan_col_4.gif"));
}

TEST(BuildRobustnessTest, AnUnreadablePictureGivesATagWithoutSizes) {
  TempShop shop;
  shop.sql("UPDATE generale SET vis_offerta = 1");
  shop.application("template/prova/kvan_offerta.gif", "rotto");
  shop.department("cat001");
  shop.article("cat001");
  EXPECT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT offerta FROM articoli"), "<img src=\"kvan_offerta.gif\">");
}

TEST(BuildRobustnessTest, FilesWithSpacesAndAccentsInTheirNamesAreMadeAndListed) {
  TempShop shop;
  shop.templateFile("città è bella.htm", "<html>x</html>");
  shop.shopFile("work/foto così.jpg", "x");
  shop.department("cat001");
  const std::string moved = shop.folder() + "/uscita però";
  EXPECT_TRUE(createFolder(moved).has_value());
  shop.session.onlineFolder = moved;
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_TRUE(fileExists(moved + "/città è bella.php"));
  EXPECT_TRUE(fileExists(moved + "/foto così.jpg"));
  EXPECT_THAT(shop.fileList(), ::testing::Contains("#" + moved + "/città è bella.php"));
}

TEST(BuildRobustnessTest, PathsOutsideTheTableOfTheFilesAreListedAsTheFileSystemKnowsThem) {
  TempShop shop;
  shop.department("cat001");
  const std::string moved = shop.folder() + "/żółw";
  ASSERT_TRUE(createFolder(moved).has_value());
  for (const char* name : {"\xE5\xBA\x97.gif", "\x81.gif"}) shop.shopFile(std::string("work/") + name, "x");
  shop.session.onlineFolder = moved;
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  for (const std::string& line : shop.fileList()) {
    const std::string path = line.substr(1);
    if (path.empty() || path.ends_with(".sql")) continue;
    EXPECT_TRUE(fileExists(path)) << path;
  }
  for (const char* name : {"\xE5\xBA\x97.gif", "\x81.gif"}) {
    EXPECT_THAT(shop.fileList(), ::testing::Contains("#" + moved + "/" + name));
  }
}

TEST(BuildRobustnessTest, ALinkAtTheNameOfAPageOrCopyIsReplacedAndWhatItLeadsToStays) {
  TempShop shop;
  shop.shopFile("work/foto.gif", "picture");
  shop.department("cat001");
  const std::string& online = shop.session.onlineFolder;
  const std::string outside = shop.folder() + "-outside.txt";
  ASSERT_TRUE(writeBytes(outside, "mine"));
  for (const char* name : {"cat001.php", "foto.gif", "shopmenu.xml"}) {
    std::filesystem::create_symlink(outside, online + "/" + name);
  }
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(readBytes(outside).value_or(""), "mine");
  for (const char* name : {"cat001.php", "foto.gif", "shopmenu.xml"}) EXPECT_FALSE(isLink(online + "/" + name)) << name;
  EXPECT_EQ(readBytes(online + "/foto.gif").value_or(""), "picture");
  std::filesystem::remove(outside);
}

TEST(BuildRobustnessTest, ALinkOutOfThePicturesIsNotPublishedAndALinkedFolderIs) {
  TempShop shop;
  shop.department("cat001");
  const std::string elsewhere = shop.folder() + "-elsewhere";
  ASSERT_TRUE(createFolder(elsewhere).has_value());
  ASSERT_TRUE(writeBytes(elsewhere + "/foto.gif", "picture"));
  ASSERT_TRUE(writeBytes(elsewhere + ".key", "secret"));
  std::filesystem::create_symlink("foto.gif", elsewhere + "/same.gif");
  std::filesystem::create_symlink(elsewhere + ".key", elsewhere + "/key.gif");
  std::filesystem::remove_all(shop.folder() + "/work");
  std::filesystem::create_directory_symlink(elsewhere, shop.folder() + "/work");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_TRUE(shop.hasPage("foto.gif"));
  EXPECT_TRUE(shop.hasPage("same.gif"));
  EXPECT_FALSE(shop.hasPage("key.gif"));
  EXPECT_THAT(shop.fileList(), ::testing::Not(::testing::Contains("#" + shop.session.onlineFolder + "/key.gif")));
  std::filesystem::remove_all(elsewhere);
  std::filesystem::remove(elsewhere + ".key");
}

TEST(BuildRobustnessTest, AFolderThatCannotBeWrittenIsReportedWithItsName) {
  TempShop shop;
  shop.session.onlineFolder = shop.folder() + "/catalog.mdb";  // no folder at all
  EXPECT_EQ(shop.build(), BuildOutcome::Failed);
  EXPECT_THAT(shop.user.shown.at(0).text,
              HasSubstr("La cartella di lavoro '" + shop.folder() + "/catalog.mdb' non esiste: \n"));
}

}  // namespace
}  // namespace kv::test
