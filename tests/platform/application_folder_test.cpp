// The folder of one user is filled from the installed data, and stays the merchant's.
#include "platform/files/application_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/files/files.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using test::TempFolder;

class ApplicationFolder : public testing::Test {
 protected:
  void SetUp() override {
    ship("catalog.mdb", "seed");
    ship("template/blu/modello1.htm", "one");
    ship("languages/ita.lng", "ita");
  }
  void ship(const std::string& path, std::string_view bytes) { put(installed + "/" + path, bytes); }
  void change(const std::string& path, std::string_view bytes) { put(folder + "/" + path, bytes); }
  std::string present(const std::string& path) { return readBytes(folder + "/" + path).value_or("(none)"); }
  // "added renewed kept"
  std::string update() {
    const auto done = prepareApplicationFolder(installed, folder);
    if (!done) return done.error().what;
    return std::to_string(done->added) + " " + std::to_string(done->renewed) + " " + std::to_string(done->kept);
  }
  static void put(const std::string& path, std::string_view bytes) {
    ASSERT_TRUE(createFolders(std::string(folderOf(path))));
    ASSERT_TRUE(writeBytes(path, bytes));
  }

  TempFolder temp;
  std::string installed = temp / "installed", folder = temp / "user/korvane";
};

TEST_F(ApplicationFolder, IsFilledAtTheFirstStart) {
  EXPECT_EQ(update(), "3 0 0");
  EXPECT_EQ(present("template/blu/modello1.htm"), "one");
}

TEST_F(ApplicationFolder, TheListHoldsTheDigestOfEachFileAsShipped) {
  update();
  EXPECT_EQ(present("installed.lst"),
            "19b25856e1c150ca834cffc8b59b23adbd0ec0389e58eb22b3b64768098d002b  catalog.mdb\n"
            "6b383ac7c46b2fe4d0db55baa344904ff022baa3afe961e6d188d787859416a6  languages/ita.lng\n"
            "7692c3ad3540bb803c020b3aee66cd8887123234ea0c6e7143c0add73ff431ed  template/blu/modello1.htm\n");
}

TEST_F(ApplicationFolder, ASecondStartCopiesNothing) {
  update();
  const auto before = std::filesystem::last_write_time(folder + "/installed.lst");
  struct stat old {
  }, now{};
  ::stat((folder + "/catalog.mdb").c_str(), &old);
  EXPECT_EQ(update(), "0 0 0");
  ::stat((folder + "/catalog.mdb").c_str(), &now);
  EXPECT_EQ(old.st_ino, now.st_ino);
  EXPECT_EQ(std::filesystem::last_write_time(folder + "/installed.lst"), before);
}

TEST_F(ApplicationFolder, ANewlyShippedFileIsAdded) {
  update();
  ship("template/rosso/modello1.htm", "red");
  EXPECT_EQ(update(), "1 0 0");
  EXPECT_EQ(present("template/rosso/modello1.htm"), "red");
}

TEST_F(ApplicationFolder, AFileLeftAsShippedIsUpdated) {
  update();
  ship("languages/ita.lng", "ita 2");
  EXPECT_EQ(update(), "0 1 0");
  EXPECT_EQ(present("languages/ita.lng"), "ita 2");
  ship("languages/ita.lng", "ita 3");
  EXPECT_EQ(update(), "0 1 0") << "and again by the release after";
}

TEST_F(ApplicationFolder, AChangedFileStaysTheMerchants) {
  update();
  change("template/blu/modello1.htm", "mine");
  change("catalog.mdb", "used");
  EXPECT_EQ(update(), "0 0 2");
  ship("template/blu/modello1.htm", "two");
  ship("catalog.mdb", "seed 2");
  EXPECT_EQ(update(), "0 0 2");
  ship("template/blu/modello1.htm", "three");
  EXPECT_EQ(update(), "0 0 2");
  EXPECT_EQ(present("template/blu/modello1.htm"), "mine");
  EXPECT_EQ(present("catalog.mdb"), "used");
}

TEST_F(ApplicationFolder, AChangedFileRestoredAsShippedIsUpdatedAgain) {
  update();
  change("languages/ita.lng", "mine");
  ship("languages/ita.lng", "ita 2");
  EXPECT_EQ(update(), "0 0 1");
  change("languages/ita.lng", "ita");
  EXPECT_EQ(update(), "0 1 0");
  EXPECT_EQ(present("languages/ita.lng"), "ita 2");
}

TEST_F(ApplicationFolder, ADeletedFileStaysDeleted) {
  update();
  ASSERT_TRUE(deleteFile(folder + "/template/blu/modello1.htm"));
  ASSERT_TRUE(removeFolder(folder + "/template/blu"));
  EXPECT_EQ(update(), "0 0 1");
  ship("template/blu/modello1.htm", "two");
  EXPECT_EQ(update(), "0 0 1");
  EXPECT_FALSE(folderExists(folder + "/template/blu"));
}

TEST_F(ApplicationFolder, AFileThatWasThereBeforeItWasShippedIsTheMerchants) {
  change("languages/ita.lng", "mine");
  EXPECT_EQ(update(), "2 0 1");
  EXPECT_EQ(update(), "0 0 1");
  EXPECT_EQ(present("languages/ita.lng"), "mine");
}

TEST_F(ApplicationFolder, AnInterruptedFirstStartIsDoneAgain) {
  change("catalog.mdb", "seed");  // copied before the list was written
  EXPECT_EQ(update(), "2 0 0");
  ship("catalog.mdb", "seed 2");
  EXPECT_EQ(update(), "0 1 0");
}

TEST_F(ApplicationFolder, AnInterruptedUpdateIsDoneAgain) {
  update();
  ship("catalog.mdb", "seed 2");
  ship("languages/ita.lng", "ita 2");
  change("catalog.mdb", "seed 2");  // updated before the list was written
  EXPECT_EQ(update(), "0 1 0");
  ship("catalog.mdb", "seed 3");
  EXPECT_EQ(update(), "0 1 0");
  EXPECT_EQ(present("catalog.mdb"), "seed 3");
}

TEST_F(ApplicationFolder, AFailureWritesNoListAndTheNextRunGoesOn) {
  ASSERT_TRUE(createFolders(folder + "/languages"));
  ASSERT_EQ(::chmod((folder + "/languages").c_str(), 0555), 0);
  EXPECT_EQ(prepareApplicationFolder(installed, folder).error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(present("installed.lst"), "(none)");
  ASSERT_EQ(::chmod((folder + "/languages").c_str(), 0755), 0);
  EXPECT_EQ(update(), "2 0 0");
}

TEST_F(ApplicationFolder, AFolderThatCantBeListedWritesNoListAndTheNextRunGoesOn) {
  bool reached = true;
  int refused = 0;
  for (std::int64_t failing = 1; reached; ++failing) {
    std::filesystem::remove_all(folder);
    {
      test::FailingFiles gate(failing);
      gate.onlyAt({FileStep::List});
      const auto done = prepareApplicationFolder(installed, folder);
      reached = gate.hasFailed();
      if (!done) ++refused;
      EXPECT_EQ(present("installed.lst") == "(none)", !done) << failing;
      if (done) {
        EXPECT_EQ(present("languages/ita.lng") + present("template/blu/modello1.htm"), "itaone") << failing;
      }
    }
    update();
    EXPECT_EQ(present("languages/ita.lng") + present("template/blu/modello1.htm"), "itaone") << failing;
  }
  EXPECT_GE(refused, 4) << "the folder itself and each below it";
}

TEST_F(ApplicationFolder, AFileNoLongerShippedStaysAndDoesNotComeBackOnceDeleted) {
  update();
  ASSERT_TRUE(deleteFile(installed + "/languages/ita.lng"));
  EXPECT_EQ(update(), "0 0 0");
  EXPECT_EQ(present("languages/ita.lng"), "ita");
  ASSERT_TRUE(deleteFile(folder + "/languages/ita.lng"));
  ship("languages/ita.lng", "ita");
  EXPECT_EQ(update(), "0 0 1");
}

TEST_F(ApplicationFolder, LinksAreNeitherShippedNorWrittenThrough) {
  update();
  put(temp / "elsewhere/modello1.htm", "one");
  put(temp / "ita.lng", "ita");
  std::filesystem::remove_all(folder + "/template/blu");
  std::filesystem::create_symlink(temp / "elsewhere", folder + "/template/blu");
  std::filesystem::remove(folder + "/languages/ita.lng");
  std::filesystem::create_symlink(temp / "ita.lng", folder + "/languages/ita.lng");
  std::filesystem::create_symlink(temp / "ita.lng", installed + "/linked.lng");
  ship("template/blu/modello1.htm", "two");
  ship("languages/ita.lng", "ita 2");
  EXPECT_EQ(update(), "0 0 2");
  EXPECT_EQ(readBytes(temp / "elsewhere/modello1.htm").value(), "one");
  EXPECT_EQ(readBytes(temp / "ita.lng").value(), "ita");
  EXPECT_EQ(present("linked.lng"), "(none)");
}

TEST_F(ApplicationFolder, AShippedFileCanBeWrittenByTheMerchant) {
  ASSERT_EQ(::chmod((installed + "/languages/ita.lng").c_str(), 0444), 0);
  update();
  EXPECT_TRUE(writeBytes(folder + "/languages/ita.lng", "mine"));
}

TEST_F(ApplicationFolder, AnEmptyShippedFolderIsMade) {
  ASSERT_TRUE(createFolders(installed + "/new/work"));
  update();
  EXPECT_TRUE(folderExists(folder + "/new/work"));
}

TEST_F(ApplicationFolder, WithoutInstalledDataIsMissing) {
  EXPECT_EQ(prepareApplicationFolder(temp / "none", folder).error().kind, ErrorKind::Missing);
  EXPECT_FALSE(folderExists(folder));
}

}  // namespace
}  // namespace kv
