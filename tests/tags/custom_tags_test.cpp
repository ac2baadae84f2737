// Custom tags: the two files, their order, and the lookups.
#include "tags/custom/custom_tags.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using test::TempFolder;

CustomTags tagsOf(std::string_view text) {
  CustomTags tags;
  tags.add(text, true);
  return tags;
}

TEST(CustomTags, AnEmptyLineAndACommentStayPartOfTheText) {
  EXPECT_EQ(tagsOf("<<5-a>>\r\nuno\r\n\r\n/due\r\n[tre]\r\n").TagPersonale("a"), "uno\r\n\r\n/due\r\n[tre]");
  EXPECT_EQ(tagsOf("<<5-a>>\r\n\r\nuno\r\n\r\n<<5-b>>\r\n").TagPersonale("a"), "\r\nuno\r\n");
}

TEST(CustomTags, ATagIsFoundBareOrWholeAndExactInCase) {
  const auto tags = tagsOf("<<5-Mio>>\r\nx");
  EXPECT_EQ(tags.TagPersonale("Mio"), "x");
  EXPECT_EQ(tags.TagPersonale("<<5-Mio>>"), "x");
  EXPECT_EQ(tags.TagPersonale("mio"), "");
  EXPECT_EQ(tags.TagPersonale("<<4-Mio>>"), "");
}

TEST(CustomTags, AMissingTagIsEmpty) {
  EXPECT_EQ(CustomTags().TagPersonale("a"), "");
  EXPECT_EQ(tagsOf("prima\r\n").TagPersonale("prima"), "");
  EXPECT_TRUE(tagsOf("prima\r\n").empty());
}

TEST(CustomTags, TextBeforeTheFirstTagIsIgnored) {
  const auto tags = tagsOf("nota\r\n\r\n<<5-a>>\r\nx");
  ASSERT_EQ(tags.entries().size(), 1U);
  EXPECT_EQ(tags.entries()[0].name, "a");
  EXPECT_EQ(tags.entries()[0].text, "x");
}

TEST(CustomTags, ANameThatEndsInABracketIsFoundWithAndWithoutIt) {
  const auto tags = tagsOf("<<5-a>>>\r\nx");
  EXPECT_EQ(tags.TagPersonale("a"), "x");
  EXPECT_EQ(tags.TagPersonale("a>"), "x");
  EXPECT_EQ(tags.TagPersonale("<<5-a>>>"), "x");
}

TEST(CustomTags, ClearedTagsAreGone) {
  auto tags = tagsOf("<<5-a>>\r\nx");
  tags.clear();
  EXPECT_TRUE(tags.empty());
  EXPECT_EQ(tags.TagPersonale("a"), "");
  tags.add("<<5-a>>\r\ny", false);
  EXPECT_EQ(tags.TagPersonale("a"), "y");
}

TEST(CaricaTagPersonali, ATagOfTheShopBeatsOneOfAllShops) {
  const TempFolder shop;
  const TempFolder application;
  ASSERT_TRUE(writeBytes(shop / "shoptag.tag", "<<5-a>>\r\nnegozio\xE0\r\n"));
  ASSERT_TRUE(writeBytes(application / "personal.tag", "<<5-a>>\r\ntutti\r\n<<5-b>>\r\nb\r\n"));
  const auto tags = CaricaTagPersonali(shop.path(), application.path());
  EXPECT_EQ(tags.TagPersonale("a"), "negozioà");
  EXPECT_EQ(tags.TagPersonale("b"), "b");
  ASSERT_EQ(tags.entries().size(), 3U);
  EXPECT_TRUE(tags.entries()[0].ofShop);
  EXPECT_FALSE(tags.entries()[1].ofShop);
  EXPECT_FALSE(tags.entries()[2].ofShop);
}

TEST(CaricaTagPersonali, AFileThatIsNotThereAddsNothing) {
  const TempFolder shop;
  const TempFolder application;
  EXPECT_TRUE(CaricaTagPersonali(shop.path(), application.path()).empty());
  ASSERT_TRUE(writeBytes(application / "Personal.TAG", "<<5-b>>\r\nb\r\n"));
  EXPECT_EQ(CaricaTagPersonali(shop.path(), application.path()).TagPersonale("b"), "b");
}

}  // namespace
}  // namespace kv
