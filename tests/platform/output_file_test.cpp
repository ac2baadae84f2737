// Files written from start to end through a buffer, and the reading of a file's first bytes.

#include "platform/files/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files/files.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

class OutputFileTest : public ::testing::Test {
 protected:
  test::TempFolder folder;
};

TEST_F(OutputFileTest, PiecesOfEverySizeFollowEachOther) {
  auto file = OutputFile::create(folder / "f");
  ASSERT_TRUE(file);
  std::string wanted;
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, std::size_t{65536}, std::size_t{65537}, std::size_t{300000}, std::size_t{7}}) {
    const std::string piece(size, static_cast<char>('a' + size % 26));
    file->append(piece);
    file->append('.');
    wanted += piece + ".";
  }
  EXPECT_EQ(file->size(), wanted.size());
  ASSERT_TRUE(file->close());
  EXPECT_EQ(readBytes(folder / "f").value(), wanted);
}

TEST_F(OutputFileTest, OldContentIsRemovedAtOnce) {
  ASSERT_TRUE(writeBytes(folder / "f", "something longer"));
  auto file = OutputFile::create(folder / "f");
  ASSERT_TRUE(file);
  EXPECT_EQ(readBytes(folder / "f").value(), "");
  file->append("new");
  ASSERT_TRUE(file->close());
  EXPECT_EQ(readBytes(folder / "f").value(), "new");
}

TEST_F(OutputFileTest, AFileThatIsLeftKeepsWhatWasAppended) {
  {
    auto file = OutputFile::create(folder / "f");
    ASSERT_TRUE(file);
    const OutputFile moved = std::move(*file);
    EXPECT_FALSE(moved.failed());
  }
  {
    auto file = OutputFile::create(folder / "g");
    ASSERT_TRUE(file);
    file->append("half");
  }
  EXPECT_EQ(readBytes(folder / "g").value(), "half");
}

TEST_F(OutputFileTest, AFullDiskIsReportedByCloseAndStopsNothingElse) {
  auto file = OutputFile::create("/dev/full");
  ASSERT_TRUE(file);
  file->append(std::string(300000, 'x'));
  EXPECT_TRUE(file->failed());
  file->append("more");
  const auto closed = file->close();
  ASSERT_FALSE(closed);
  EXPECT_EQ(closed.error().kind, ErrorKind::Full);
  EXPECT_FALSE(file->close());
}

TEST_F(OutputFileTest, WhatMayNotBeWrittenIsRefused) {
  EXPECT_EQ(OutputFile::create(folder / "no/f").error().kind, ErrorKind::Missing);
  EXPECT_FALSE(OutputFile::create(folder.path()));
  ASSERT_TRUE(writeBytes(folder / "f", "kept"));
  std::filesystem::permissions(folder / "f", std::filesystem::perms::owner_read);
  EXPECT_EQ(OutputFile::create(folder / "f").error().kind, ErrorKind::ReadOnly);
  EXPECT_EQ(readBytes(folder / "f").value(), "kept");
}

TEST_F(OutputFileTest, TheStartOfAFileIsReadWithoutTheRest) {
  ASSERT_TRUE(writeBytes(folder / "f", "0123456789"));
  EXPECT_EQ(test::valueOf(readStart(folder / "f", 4)), "0123");
  EXPECT_EQ(test::valueOf(readStart(folder / "f", 100)), "0123456789");
  EXPECT_EQ(readStart(folder / "g", 4).error().kind, ErrorKind::Missing);
}

}  // namespace
}  // namespace kv
