// A golden case and its base: what a case takes over, what it replaces, and what its own file has to want.

#include "support/golden_case.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv::test {
namespace {

// Cases below a folder of their own, and one of them read.
class GoldenCases : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& text) const {
    const std::string path = joinPath(root_.path(), name);
    ASSERT_TRUE(createFolders(std::string(folderOf(path))));
    ASSERT_TRUE(writeBytes(path, text));
  }
  GoldenCase read() const {
    auto one = readGoldenCase(root_ / "build/a.txt");
    EXPECT_TRUE(one);
    return one ? *one : GoldenCase{};
  }
  std::string wholeText() const { return formatTxtar(withBase(read())); }

 private:
  TempFolder root_;
};

TEST_F(GoldenCases, ACaseHasThePartsOfItsBaseThatItDoesNotGive) {
  write("base/b.txt", "About b.\n-- work/a.txt --\nbase\n-- work/b.txt --\nbase\n");
  write("build/a.txt", "About a.\n-- base b --\n-- work/a.txt --\nown\n");
  EXPECT_EQ(wholeText(), "About a.\n-- base b --\n-- work/a.txt --\nown\n-- work/b.txt --\nbase\n");
}

TEST_F(GoldenCases, TheRowsOfABaseComeBeforeThoseOfTheCase) {
  write("base/b.txt", "-- rows --\n[generale]\nURL = x\n");
  write("build/a.txt", "-- base b --\n-- rows --\n[paesi]\nID = 1\n");
  EXPECT_EQ(wholeText(), "-- base b --\n-- rows --\n[generale]\nURL = x\n\n[paesi]\nID = 1\n");
}

TEST_F(GoldenCases, ABaseHasTheBaseOfItsOwn) {
  write("base/c.txt", "-- work/c.txt --\nc\n");
  write("base/b.txt", "-- base c --\n-- work/b.txt --\nb\n");
  write("build/a.txt", "-- base b --\n");
  EXPECT_EQ(wholeText(), "-- base b --\n-- work/b.txt --\nb\n-- work/c.txt --\nc\n");
}

TEST_F(GoldenCases, AFileOfOneLineAndAPictureHaveAForm) {
  write("build/a.txt", "-- files --\nwork/a b.txt | \" x|y \" | z\nwork/a.gif | 4749 46\n");
  EXPECT_EQ(wholeText(), "-- work/a%20b.txt --\n x|y \nz\n-- work/a.gif hex --\n4749 46\n");
}

TEST_F(GoldenCases, AFileOfTheCaseReplacesTheOneOfTheBaseInEitherForm) {
  write("base/b.txt", "-- files --\nwork/a.txt | base\n-- work/b.txt --\nbase\n");
  write("build/a.txt", "-- base b --\n-- work/a.txt --\nown\n-- files --\nwork/b.txt | own\n");
  EXPECT_EQ(wholeText(), "-- base b --\n-- work/a.txt --\nown\n-- work/b.txt --\nown\n");
}

TEST_F(GoldenCases, WhatTheBaseWantsAlikeIsNotWantedOnceMore) {
  write("base/b.txt", "-- want/a --\n1\n-- want/b --\n2\n");
  write("build/a.txt", "-- base b --\n-- want/b --\n3\n");
  const auto own = withoutBase(read(), {{"want/a", {}, "1\n"}, {"want/b", {}, "3\n"}, {"want/c", {}, "4\n"}});
  EXPECT_EQ(formatTxtar({"", own}), "-- want/b --\n3\n-- want/c --\n4\n");
}

TEST_F(GoldenCases, ABaseThatIsNotThereIsAFailure) {
  TempFolder folder;
  ASSERT_TRUE(createFolders(folder / "build"));
  ASSERT_TRUE(writeBytes(folder / "build/a.txt", "-- base b --\n"));
  const auto one = readGoldenCase(folder / "build/a.txt");
  ASSERT_FALSE(one);
  EXPECT_EQ(one.error().kind, ErrorKind::Missing);
}

}  // namespace
}  // namespace kv::test
