// serverpath.net: which names survive it, and what counts as no name.
#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "store/shop/server_path.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

class ServerPath : public ::testing::Test {
 protected:
  std::string bytes() const { return readBytes(root / "serverpath.net").value_or("(none)"); }
  void write(std::string_view content) const { ASSERT_TRUE(writeBytes(root / "serverpath.net", content)); }
  std::string throughFile(const std::string& folder) const {
    if (!writeServerPath(root.path(), folder)) return "(refused)";
    return readServerPath(root.path());
  }
  test::TempFolder root;
};

TEST_F(ServerPath, IsOneLineWithCrLf) {
  ASSERT_TRUE(writeServerPath(root.path(), "/home/anna/negozio"));
  EXPECT_EQ(bytes(), "/home/anna/negozio\r\n");
}

TEST_F(ServerPath, WritesAccentsInTheCodePageOfTheShopsFiles) {
  ASSERT_TRUE(writeServerPath(root.path(), "/home/niccolò/mio negozio €"));
  EXPECT_EQ(bytes(), "/home/niccol\xF2/mio negozio \x80\r\n");
}

TEST_F(ServerPath, NamesWithSpacesAndAccentsAreReadBack) {
  for (const char* folder : {"/home/anna/il mio negozio", "/home/niccolò/città perché", "/a/b  c", "/a/100%&#65;"})
    EXPECT_EQ(throughFile(folder), folder);
}

TEST_F(ServerPath, NamesOutsideTheCodePageComeBack) {
  for (const char* folder : {"/home/магазин", "/home/お店 città", "/home/₪", "/home/odd-\xFF\xFE-bytes"})
    EXPECT_EQ(throughFile(folder), folder);
}

TEST_F(ServerPath, ANameThatEndsInASpaceIsReadBack) {
  EXPECT_EQ(throughFile("/home/anna/negozio "), "/home/anna/negozio ");
}

TEST_F(ServerPath, ANameWithALineEndIsRefused) {
  const auto written = writeServerPath(root.path(), "/home/anna/neg\nozio");
  ASSERT_FALSE(written);
  EXPECT_EQ(written.error().kind, ErrorKind::Malformed);
  EXPECT_EQ(bytes(), "(none)");
}

TEST_F(ServerPath, IsTrimmedAndOnlyItsFirstLineCounts) {
  write("  /home/anna/negozio  \r\n/home/altro\r\n");
  EXPECT_EQ(readServerPath(root.path()), "/home/anna/negozio");
}

TEST_F(ServerPath, LosesASeparatorAtTheEnd) {
  write("/home/anna/negozio/\r\n");
  EXPECT_EQ(readServerPath(root.path()), "/home/anna/negozio");
}

TEST_F(ServerPath, NeedsNoLineEnd) {
  write("/home/anna/negozio");
  EXPECT_EQ(readServerPath(root.path()), "/home/anna/negozio");
}

TEST_F(ServerPath, NamesNothingWhenMissingEmptyOrSpacesAlone) {
  EXPECT_EQ(readServerPath(root.path()), "");
  for (const char* content : {"", "\r\n", "   \r\n/home/anna\r\n", "\xEF\xBB\xBF\r\n"}) {
    write(content);
    EXPECT_EQ(readServerPath(root.path()), "");
  }
}

TEST_F(ServerPath, CanBeClearedTwice) {
  write("/home/anna\r\n");
  EXPECT_TRUE(clearServerPath(root.path()));
  EXPECT_EQ(bytes(), "(none)");
  EXPECT_TRUE(clearServerPath(root.path()));
}

TEST_F(ServerPath, BackupPutsBackTheFileOrItsAbsence) {
  const ServerPathBackup absent(root.path());
  write("/home/anna\r\n");
  const ServerPathBackup present(root.path());
  write("/home/altro\r\n");
  EXPECT_TRUE(present.restore());
  EXPECT_EQ(bytes(), "/home/anna\r\n");
  EXPECT_TRUE(absent.restore());
  EXPECT_EQ(bytes(), "(none)");
}

}  // namespace
}  // namespace kv
