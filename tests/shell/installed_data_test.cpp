// Where the program finds its data: beside itself, wherever the tree has been put.

#include "shell/program/installed_data.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files/application_folder.h"
#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "platform/ports/clock.h"
#include "store/shop/session_start.h"
#include "support/scripted_user.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

TEST(InstalledData, IsFoundBesideTheProgramsOfAMovedTree) {
  test::TempFolder folder;
  ASSERT_TRUE(createFolders(folder / "moved/bin"));
  ASSERT_TRUE(createFolders(folder / "moved/share/korvane"));
  const auto data = installedData(folder / "moved/bin");
  ASSERT_TRUE(data);
  EXPECT_EQ(*data, folder / "moved/share/korvane");
}

TEST(InstalledData, AChosenApplicationFolderIsUsedAsItIs) {
  test::TempFolder folder;
  ASSERT_TRUE(createFolder(folder / "app"));
  const auto found = findApplicationFolder(folder / "app/", folder / "bin");
  ASSERT_TRUE(found);
  EXPECT_EQ(*found, folder / "app");
  EXPECT_TRUE(listFiles(folder / "app", "*.*").empty());
}

TEST(InstalledData, AChosenApplicationFolderThatIsNotThereIsMissing) {
  test::TempFolder folder;
  const auto found = findApplicationFolder(folder / "nowhere", "");
  ASSERT_FALSE(found);
  EXPECT_EQ(found.error().kind, ErrorKind::Missing);
}

TEST(InstalledData, TheShopThatComesWithTheProgramOpensAtTheVeryFirstStartWithoutAQuestion) {
  const test::TempFolder folder;
  ASSERT_TRUE(prepareApplicationFolder(KORVANE_APP_DATA, folder / "app"));
  test::ScriptedUser user;
  FileSettings settings(folder / "korvane.ini");
  Environment env{user, settings, systemClock(), systemRandom(), folder / "app", {}};
  Session session;
  EXPECT_EQ(startSession(session, env), LoadResult::Opened);
  EXPECT_EQ(user.texts(), std::vector<std::string>());
  EXPECT_EQ(session.onlineFolder, folder / "app/online");
  EXPECT_TRUE(folderExists(session.onlineFolder));
  closeSession(session, env);
}

TEST(InstalledData, TheRunningProgramKnowsItsFolder) { EXPECT_TRUE(folderExists(programFolder())); }

TEST(AbsolutePath, LosesDotsAndTheTrailingSeparator) {
  EXPECT_EQ(absolutePath("/a/./b/../c/"), "/a/c");
  EXPECT_EQ(absolutePath("/"), "/");
  EXPECT_EQ(absolutePath(""), "");
  EXPECT_EQ(absolutePath("x"), (std::filesystem::current_path() / "x").string());
}

}  // namespace
}  // namespace kv
