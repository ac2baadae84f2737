// Listings, names without regard to case, and whole trees.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/files/files.h"
#include "platform/files/listing.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using test::TempFolder;
using testing::ElementsAre;
using testing::IsEmpty;

void put(const std::string& path, std::string_view bytes = "x") {
  ASSERT_TRUE(createFolders(std::string(folderOf(path))));
  ASSERT_TRUE(writeBytes(path, bytes));
}

TEST(Listing, IsSortedByLowerCasedNameAndLeavesFoldersOut) {
  TempFolder folder;
  for (const char* name : {"b.htm", "A.htm", "_c", "Z", "à", ".htaccess"}) put(folder / name);
  ASSERT_TRUE(createFolder(folder / "sub"));
  EXPECT_THAT(listFiles(folder.path(), "*"), ElementsAre(".htaccess", "_c", "A.htm", "b.htm", "Z", "à"));
}

TEST(Listing, StarPointStarMeansEveryFile) {
  TempFolder folder;
  put(folder / "senzapunto");
  put(folder / "a.gif");
  EXPECT_THAT(listFiles(folder.path(), "*.*"), ElementsAre("a.gif", "senzapunto"));
}

TEST(Listing, PagePatternsIgnoreCaseAndNeedThePoint) {
  TempFolder folder;
  for (const char* name :
       {"index.HTM", "a.html", "b.shtml", "readmehtm", "modello1.htm", "MODELLO2.htm", "modello.gif"}) {
    put(folder / name);
  }
  EXPECT_THAT(listFiles(folder.path(), "*.*htm*"),
              ElementsAre("a.html", "b.shtml", "index.HTM", "modello1.htm", "MODELLO2.htm"));
  EXPECT_THAT(listFiles(folder.path(), "modello*.htm"), ElementsAre("modello1.htm", "MODELLO2.htm"));
  EXPECT_THAT(listFiles(folder.path(), "modello?.htm"), ElementsAre("modello1.htm", "MODELLO2.htm"));
}

TEST(Listing, OfAMissingFolderIsEmpty) {
  EXPECT_THAT(listFiles("/nonexistent", "*"), IsEmpty());
  EXPECT_THAT(listFolders("/nonexistent"), IsEmpty());
}

TEST(Listing, WhatAnInterruptedWriteLeftIsNeverListed) {
  TempFolder folder;
  put(folder / ".index.htm.kvtmpabcdefgh");
  put(folder / ".index.htm");
  EXPECT_THAT(listFiles(folder.path(), "*"), ElementsAre(".index.htm"));
}

TEST(Listing, FollowsLinksAndLeavesBrokenOnesOut) {
  TempFolder folder;
  put(folder / "sub/a");
  std::filesystem::create_symlink("sub/a", folder / "toFile");
  std::filesystem::create_symlink("sub", folder / "toFolder");
  std::filesystem::create_symlink("none", folder / "broken");
  EXPECT_THAT(listFiles(folder.path(), "*"), ElementsAre("toFile"));
  EXPECT_THAT(listFolders(folder.path()), ElementsAre("sub", "toFolder"));
}

TEST(Listing, OfFoldersLeavesHiddenOnesOut) {
  TempFolder folder;
  for (const char* name : {"Verde", "blu", ".git"}) ASSERT_TRUE(createFolder(folder / name));
  EXPECT_THAT(listFolders(folder.path()), ElementsAre("blu", "Verde"));
}

TEST(Listing, ThatFailsIsToldFromAnEmptyFolderByWhoeverAsks) {
  const TempFolder folder;
  put(folder / "a.gif");
  ASSERT_TRUE(createFolder(folder / "sotto"));
  EXPECT_THAT(*readFileNames(folder.path(), "*.gif"), ElementsAre("a.gif"));
  EXPECT_THAT(*readFolderNames(folder.path()), ElementsAre("sotto"));
  EXPECT_THAT(*readFileNames(folder / "manca", "*"), IsEmpty()) << "one that isn't there has no files";
  EXPECT_THAT(*readFolderNames(folder / "manca"), IsEmpty());
  test::FailingFiles gate(1, test::AfterFailure::FailsToo, EACCES);
  gate.onlyAt({FileStep::List});
  EXPECT_EQ(readFileNames(folder.path(), "*").error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(readFolderNames(folder.path()).error().kind, ErrorKind::ReadOnly);
  EXPECT_THAT(listFiles(folder.path(), "*"), IsEmpty());
}

TEST(FindEntry, IgnoresCaseAndPrefersTheExactName) {
  TempFolder folder;
  put(folder / "Foto.GIF");
  EXPECT_EQ(findEntry(folder.path(), "foto.gif"), folder / "Foto.GIF");
  put(folder / "foto.gif");
  EXPECT_EQ(findEntry(folder.path(), "foto.gif"), folder / "foto.gif");
  EXPECT_EQ(findEntry(folder.path(), "Foto.GIF"), folder / "Foto.GIF");
  EXPECT_EQ(findEntry(folder.path(), "altra.gif"), std::nullopt);
}

TEST(FindEntry, FindsFoldersAndAccentedNames) {
  TempFolder folder;
  ASSERT_TRUE(createFolder(folder / "CITTÀ"));
  EXPECT_EQ(findEntry(folder.path(), "città"), folder / "CITTÀ");
}

TEST(FindEntry, TakesPlainNamesOnly) {
  TempFolder folder;
  put(folder / "sub/a");
  for (const char* name : {"", ".", "..", "sub/a"}) EXPECT_EQ(findEntry(folder.path(), name), std::nullopt) << name;
  EXPECT_EQ(findEntry(folder / "none", "a"), std::nullopt);
}

TEST(Folders, CreatingOneThatIsThereIsNoFailure) {
  TempFolder folder;
  EXPECT_TRUE(createFolder(folder / "a"));
  EXPECT_TRUE(createFolder(folder / "a"));
  EXPECT_TRUE(folderExists(folder / "a"));
}

TEST(Folders, AFileInTheWayOfAFolderIsAFailure) {
  TempFolder folder;
  put(folder / "a");
  const auto created = createFolder(folder / "a");
  ASSERT_FALSE(created);
  EXPECT_EQ(created.error().kind, ErrorKind::Exists);
}

TEST(Folders, ParentsAreCreatedOnlyOnRequest) {
  TempFolder folder;
  const auto created = createFolder(folder / "a/b");
  ASSERT_FALSE(created);
  EXPECT_EQ(created.error().kind, ErrorKind::Missing);
  EXPECT_TRUE(createFolders(folder / "a/b//c/"));
  EXPECT_TRUE(folderExists(folder / "a/b/c"));
}

TEST(Folders, OnlyAnEmptyOneIsRemoved) {
  TempFolder folder;
  put(folder / "a/f");
  const auto removed = removeFolder(folder / "a");
  ASSERT_FALSE(removed);
  EXPECT_EQ(removed.error().kind, ErrorKind::Other);
  ASSERT_TRUE(deleteFile(folder / "a/f"));
  EXPECT_TRUE(removeFolder(folder / "a"));
  EXPECT_EQ(removeFolder(folder / "a").error().kind, ErrorKind::Missing);
}

TEST(EmptyFolder, DeletesTheFilesAndLeavesSubfolders) {
  TempFolder folder;
  put(folder / "a");
  put(folder / ".hidden");
  put(folder / ".x.kvtmpabcdefgh");
  put(folder / "sub/b");
  ASSERT_TRUE(emptyFolder(folder.path()));
  EXPECT_THAT(listFiles(folder.path(), "*"), IsEmpty());
  EXPECT_TRUE(fileExists(folder / "sub/b"));
  EXPECT_FALSE(std::filesystem::exists(folder / ".x.kvtmpabcdefgh"));
}

TEST(EmptyFolder, StopsAtAFailure) {
  TempFolder folder;
  put(folder / "f/a");
  ASSERT_EQ(::chmod((folder / "f").c_str(), 0555), 0);
  EXPECT_EQ(emptyFolder(folder / "f").error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(emptyFolder(folder / "none").error().kind, ErrorKind::Missing);
}

TEST(CopyTree, CopiesFoldersAndFilesOverThoseThere) {
  TempFolder folder;
  put(folder / "from/a", "new");
  put(folder / "from/sub/deep/b", "b");
  ASSERT_TRUE(createFolders(folder / "from/empty"));
  put(folder / "to/a", "old");
  put(folder / "to/other", "kept");
  ASSERT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_EQ(readBytes(folder / "to/a").value(), "new");
  EXPECT_EQ(readBytes(folder / "to/sub/deep/b").value(), "b");
  EXPECT_EQ(readBytes(folder / "to/other").value(), "kept");
  EXPECT_TRUE(folderExists(folder / "to/empty"));
}

TEST(CopyTree, CopiesOverNamesThatDifferInCaseAlone) {
  TempFolder folder;
  put(folder / "from/Index.HTM", "new");
  put(folder / "from/Blu/Modello1.htm", "new");
  put(folder / "to/index.htm", "old");
  put(folder / "to/BLU/modello1.htm", "old");
  ASSERT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_THAT(listFiles(folder / "to", "*"), ElementsAre("index.htm"));
  EXPECT_THAT(listFolders(folder / "to"), ElementsAre("BLU"));
  EXPECT_THAT(listFiles(folder / "to/BLU", "*"), ElementsAre("modello1.htm"));
  EXPECT_EQ(readBytes(folder / "to/index.htm").value(), "new");
  EXPECT_EQ(readBytes(folder / "to/BLU/modello1.htm").value(), "new");
}

TEST(CopyTree, IntoAFolderOfItselfEndsAndLeavesTheTargetOut) {
  TempFolder folder;
  put(folder / "from/a");
  ASSERT_TRUE(copyTree(folder / "from", folder / "from/copy"));
  ASSERT_TRUE(copyTree(folder / "from", folder / "from/copy"));
  EXPECT_TRUE(fileExists(folder / "from/copy/a"));
  EXPECT_FALSE(folderExists(folder / "from/copy/copy"));
}

TEST(CopyTree, OntoItselfChangesNothing) {
  TempFolder folder;
  put(folder / "a/b", "x");
  ASSERT_TRUE(copyTree(folder / "a", folder / "a"));
  EXPECT_EQ(readBytes(folder / "a/b").value(), "x");
}

TEST(CopyTree, ALinkToAFolderAboveDoesNotGoRound) {
  TempFolder folder;
  put(folder / "from/sub/a");
  std::filesystem::create_symlink("..", folder / "from/sub/up");
  ASSERT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(fileExists(folder / "to/sub/a"));
  EXPECT_FALSE(folderExists(folder / "to/sub/up"));
}

TEST(CopyTree, ReadOnlyFilesBecomeWritable) {
  TempFolder folder;
  put(folder / "from/a");
  ASSERT_EQ(::chmod((folder / "from/a").c_str(), 0444), 0);
  ASSERT_TRUE(copyTree(folder / "from", folder / "to"));
  EXPECT_TRUE(writeBytes(folder / "to/a", "y"));
  EXPECT_TRUE(copyTree(folder / "from", folder / "to")) << "and can be copied over again";
}

TEST(CopyTree, OfAMissingFolderIsMissing) {
  TempFolder folder;
  EXPECT_EQ(copyTree(folder / "none", folder / "to").error().kind, ErrorKind::Missing);
  EXPECT_FALSE(folderExists(folder / "to"));
}

TEST(MakeWritable, GivesTheOwnerWritePermissionEverywhere) {
  TempFolder folder;
  put(folder / "f/sub/a");
  put(folder / "outside");
  ASSERT_EQ(::chmod((folder / "outside").c_str(), 0444), 0);
  std::filesystem::create_symlink("../outside", folder / "f/link");
  for (const char* path : {"f/sub/a", "f/sub", "f"}) ASSERT_EQ(::chmod((folder / path).c_str(), 0555), 0);
  ASSERT_TRUE(makeWritable(folder / "f"));
  EXPECT_TRUE(writeBytes(folder / "f/sub/a", "y"));
  EXPECT_TRUE(writeBytes(folder / "f/b", "y"));
  EXPECT_EQ(writeBytes(folder / "outside", "y").error().kind, ErrorKind::ReadOnly) << "links aren't followed";
  EXPECT_EQ(makeWritable(folder / "none").error().kind, ErrorKind::Missing);
}

}  // namespace
}  // namespace kv
