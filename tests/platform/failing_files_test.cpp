// Each call by which a file is read or replaced fails in its turn: what was there before is there afterwards, and
// nothing unfinished is left.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files/files.h"
#include "platform/files/output_file.h"
#include "platform/files/settings.h"
#include "support/failing_files.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

/// Everything in a folder, hidden files included: "name=content" and a line end each.
std::string contents(const TempFolder& folder) {
  std::set<std::string> lines;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    lines.insert(entry.path().filename().string() + "=" + readBytes(entry.path().string()).value_or("?"));
  }
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

class FailingFilesTest : public ::testing::Test {
 protected:
  TempFolder folder;
};

TEST_F(FailingFilesTest, WithoutAGateNothingIsAsked) {
  ASSERT_TRUE(writeBytes(folder / "a.txt", "uno"));
  {
    FailingFiles files;
    ASSERT_TRUE(writeBytes(folder / "a.txt", "due"));
    EXPECT_EQ(files.calls(), 4);  // create, write, close, rename
  }
  ASSERT_TRUE(writeBytes(folder / "a.txt", "tre"));
  EXPECT_EQ(contents(folder), "a.txt=tre\n");
}

TEST_F(FailingFilesTest, AReplacementThatFailsAnywhereLeavesTheOldFileWhole) {
  ASSERT_TRUE(writeBytes(folder / "a.txt", "vecchio"));
  for (int n = 1; n <= 4; ++n) {
    FailingFiles files(n, AfterFailure::Works, ENOSPC);
    const auto written = writeBytes(folder / "a.txt", "nuovo");
    ASSERT_FALSE(written) << n;
    EXPECT_EQ(written.error().kind, ErrorKind::Full);
    EXPECT_EQ(written.error().where, folder / "a.txt");
    EXPECT_TRUE(files.hasFailed());
  }
  EXPECT_EQ(contents(folder), "a.txt=vecchio\n");
}

TEST_F(FailingFilesTest, ACopyThatFailsAnywhereLeavesTheTargetWhole) {
  ASSERT_TRUE(writeBytes(folder / "a.txt", "nuovo"));
  ASSERT_TRUE(writeBytes(folder / "b.txt", "vecchio"));
  int n = 1;
  for (bool failed = true; failed; ++n) {
    FailingFiles files(n);
    const auto copied = copyFile(folder / "a.txt", folder / "b.txt");
    failed = files.hasFailed();
    ASSERT_EQ(copied.has_value(), !failed) << n;
    if (failed) {
      EXPECT_EQ(copied.error().kind, ErrorKind::Other);
    }
    const FailingFiles none;
    ASSERT_EQ(contents(folder), failed ? "a.txt=nuovo\nb.txt=vecchio\n" : "a.txt=nuovo\nb.txt=nuovo\n") << n;
  }
  EXPECT_GT(n, 6);  // open, two reads, create, write, close, rename
}

TEST_F(FailingFilesTest, ASettingThatCannotBeKeptReadsAsBefore) {
  FileSettings settings(folder / "korvane.ini");
  ASSERT_TRUE(settings.set("AppIni", "lingua", "italiano"));
  for (int n = 1; n <= 4; ++n) {
    const FailingFiles files(n);
    EXPECT_FALSE(settings.set("AppIni", "lingua", "inglese")) << n;
    EXPECT_EQ(settings.get("AppIni", "lingua"), "italiano") << n;
  }
  EXPECT_EQ(FileSettings(folder / "korvane.ini").get("AppIni", "lingua"), "italiano");
  EXPECT_EQ(contents(folder), "korvane.ini=[AppIni]\nlingua=italiano\n\n");
}

TEST_F(FailingFilesTest, SettingsThatCannotBeReadAreNotReplaced) {
  {
    FileSettings settings(folder / "korvane.ini");
    ASSERT_TRUE(settings.set("AppIni", "lingua", "italiano"));
  }
  for (int n = 1; n <= 2; ++n) {
    FailingFiles files(n, AfterFailure::FailsToo);
    FileSettings settings(folder / "korvane.ini");
    EXPECT_EQ(settings.get("AppIni", "lingua"), "");
    ASSERT_TRUE(files.hasFailed());
    EXPECT_FALSE(settings.set("AppIni", "lingua", "inglese")) << n;
  }
  EXPECT_EQ(contents(folder), "korvane.ini=[AppIni]\nlingua=italiano\n\n");
}

TEST_F(FailingFilesTest, SettingsThatCouldNotBeReadForAMomentAreReadAtTheNextLook) {
  FileSettings settings(folder / "korvane.ini");
  ASSERT_TRUE(FileSettings(folder / "korvane.ini").set("AppIni", "lingua", "italiano"));
  {
    const FailingFiles files(1);
    EXPECT_EQ(settings.get("AppIni", "lingua"), "");
  }
  EXPECT_EQ(settings.get("AppIni", "lingua"), "italiano");
}

TEST_F(FailingFilesTest, ALongFileReportsTheFirstWriteOrTheClosingThatFailed) {
  for (int n = 1; n <= 3; ++n) {
    FailingFiles files(n, AfterFailure::Works, ENOSPC);
    auto file = OutputFile::create(folder / "dump.sql");
    ASSERT_EQ(file.has_value(), n > 1);
    if (!file) continue;
    file->append("INSERT");
    const auto closed = file->close();
    ASSERT_FALSE(closed) << n;
    EXPECT_EQ(closed.error().kind, ErrorKind::Full);
  }
}

TEST_F(FailingFilesTest, FoldersRemovalsAndRenamesSayWhatTheSystemSays) {
  ASSERT_TRUE(writeBytes(folder / "a.txt", "a"));
  const FailingFiles files(1, AfterFailure::FailsToo, EROFS);
  EXPECT_EQ(createFolder(folder / "nuova").error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(deleteFile(folder / "a.txt").error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(renameFile(folder / "a.txt", folder / "b.txt").error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(emptyFolder(folder.path()).error().kind, ErrorKind::ReadOnly);
  EXPECT_TRUE(listFiles(folder.path(), "*.*").empty());
}

TEST_F(FailingFilesTest, StepsAndFilesCanBeChosen) {
  FailingFiles files(1, AfterFailure::FailsToo);
  files.onlyAt({FileStep::Rename});
  files.onlyFor(".php");
  EXPECT_TRUE(writeBytes(folder / "a.txt", "a"));
  EXPECT_FALSE(writeBytes(folder / "a.php", "a"));
  EXPECT_EQ(files.calls(), 1);
}

}  // namespace
}  // namespace kv::test
