// Further pictures of an article, known by the numbers in their names.
#include "media/choice/numbered_pictures.h"

#include <gtest/gtest.h>

#include <set>

namespace kv {
namespace {

using Names = std::vector<std::string>;

Names joinedTo(const std::string& name, const std::set<std::string>& folder) {
  return numberedPictures(name, [&](const std::string& file) { return folder.contains(file); });
}

TEST(NumberedPictures, AMarkOfTheSizeIsNoPartOfTheSubject) {
  EXPECT_EQ(pictureSubject("vaso_g.jpg"), "vaso");
  EXPECT_EQ(pictureSubject("Vaso-GRANDE.jpg"), "Vaso");
  EXPECT_EQ(pictureSubject("vaso-blu.jpg"), "vaso-blu");
  EXPECT_EQ(pictureSubject("vaso.alto_xl.png"), "vaso.alto");
}

TEST(NumberedPictures, NumbersCountFromTwoWithoutAGap) {
  EXPECT_EQ(joinedTo("vaso.jpg", {"vaso-1.jpg", "vaso-2.jpg", "vaso-3.jpg", "vaso-5.jpg", "vaso-2.png"}),
            (Names{"vaso-2.jpg", "vaso-3.jpg"}));
  EXPECT_EQ(joinedTo("vaso_p.jpg", {"vaso-2.jpg"}), Names{"vaso-2.jpg"});
  EXPECT_EQ(joinedTo("vaso.jpg", {"vaso-3.jpg"}), Names{});
}

TEST(NumberedPictures, ThereAreAsManyAsAPageShows) {
  std::set<std::string> folder;
  for (int number = 2; number < 30; ++number) folder.insert("vaso-" + std::to_string(number) + ".jpg");
  EXPECT_EQ(joinedTo("vaso.jpg", folder).back(), "vaso-9.jpg");
}

TEST(NumberedPictures, ANameWithAPathOrWithoutAnExtensionHasNone) {
  EXPECT_EQ(joinedTo("alto/vaso.jpg", {"alto/vaso-2.jpg"}), Names{});
  EXPECT_EQ(joinedTo("vaso", {"vaso-2"}), Names{});
}

}  // namespace
}  // namespace kv
