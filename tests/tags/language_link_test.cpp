// CreaTagLingua: the links of a page to its copies in the other languages.
#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"
#include "tags/language/language_module.h"

namespace kv {
namespace {

using test::TempFolder;

/// A GIF of 20 by 12 pixels, up to its size.
constexpr std::string_view flag(
    "GIF89a\x14\0\x0C\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\x01\0\x01\0\0\x02\x02\x44\x01\0;", 35);

ShopLanguages threeLanguages(const std::string& folder) {
  ShopLanguages languages;
  languages.count = 3;
  languages.codes = {"italiano", "inglese", "francese", ""};
  languages.languagesFolder = folder;
  return languages;
}

TEST(CreaTagLingua, WithoutAFlagTheCodeIsTheLinksText) {
  const TempFolder folder;
  const auto languages = threeLanguages(folder.path());
  EXPECT_EQ(CreaTagLingua(languages, "cart.php", 2), "<a href=\"cart_l2.php\">inglese</a>");
}

TEST(CreaTagLingua, ALinkLeavesTheLanguageOfItsPage) {
  const TempFolder folder;
  auto languages = threeLanguages(folder.path());
  languages.pageExtension = "";
  EXPECT_EQ(CreaTagLingua(languages, "cart_l3.htm", 2), "<a href=\"cart_l2.htm\">inglese</a>");
  EXPECT_EQ(CreaTagLingua(languages, "cart_l3.htm", 1), "<a href=\"cart.htm\">italiano</a>");
}

TEST(CreaTagLingua, APageTakesThePageExtension) {
  const TempFolder folder;
  const auto languages = threeLanguages(folder.path());
  EXPECT_EQ(CreaTagLingua(languages, "cart_l3.htm", 2), "<a href=\"cart_l2.php\">inglese</a>");
  EXPECT_EQ(CreaTagLingua(languages, "results.htm", 3), "<a href=\"results_l3.htm\">francese</a>");
}

TEST(CreaTagLingua, ALinkOfADepartmentStaysOnTheSubPageAtHand) {
  const TempFolder folder;
  const auto languages = threeLanguages(folder.path());
  EXPECT_EQ(CreaTagLingua(languages, "scarpe_l2.php?n=3", 1),
            "<a href=\"scarpe.php?n=<?php echo $sp; ?>\">italiano</a>");
  EXPECT_EQ(CreaTagLingua(languages, "scarpe.php?n=12", 3),
            "<a href=\"scarpe_l3.php?n=<?php echo $sp; ?>\">francese</a>");
}

TEST(CreaTagLingua, AFlagIsShownInItsSize) {
  const TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "Inglese.gif", flag));
  const auto languages = threeLanguages(folder.path());
  EXPECT_EQ(CreaTagLingua(languages, "cart.php", 2),
            "<a href=\"cart_l2.php\"><img src=\"kvan_inglese.gif\" height=\"12\" width=\"20\" border=\"0\"></a>");
}

TEST(CreaTagLingua, AFlagFileThatCannotBeReadYieldsTheCode) {
  const TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "inglese.gif", "no picture"));
  const auto languages = threeLanguages(folder.path());
  EXPECT_EQ(CreaTagLingua(languages, "cart.php", 2), "<a href=\"cart_l2.php\">inglese</a>");
}

TEST(CreaTagLingua, FlagsThatWereReadOnceAreNotReadAgain) {
  const TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "inglese.gif", flag));
  auto languages = threeLanguages(folder.path());
  const std::string before = CreaTagLingua(languages, "cart.php", 2);
  languages.flags = readFlagSizes(languages);
  ASSERT_TRUE(deleteFile(folder / "inglese.gif"));
  EXPECT_EQ(CreaTagLingua(languages, "cart.php", 2), before);
  EXPECT_EQ(CreaTagLingua(languages, "cart.php", 3), "<a href=\"cart_l3.php\">francese</a>");
}

}  // namespace
}  // namespace kv
