// The box that pictures are reduced to, and what of it is remembered.
#include "media/choice/picture_box.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

constexpr ImageSize usualBox{180, 180};

TEST(FittedSize, AWideAndATallPicture) {
  EXPECT_EQ(fittedSize({400, 200}, usualBox), (ImageSize{180, 90}));
  EXPECT_EQ(fittedSize({200, 400}, usualBox), (ImageSize{90, 180}));
}

TEST(FittedSize, APictureThatFitsKeepsItsSize) {
  EXPECT_EQ(fittedSize({180, 180}, usualBox), usualBox);
  EXPECT_EQ(fittedSize({3, 7}, usualBox), (ImageSize{3, 7}));
}

TEST(FittedSize, TheHeightIsTakenOfWhatTheWidthHasLeft) {
  EXPECT_EQ(fittedSize({1000, 2000}, {100, 150}), (ImageSize{75, 150})) << "100 by 200 first";
  EXPECT_EQ(fittedSize({1000, 1400}, {100, 150}), (ImageSize{100, 140}));
}

TEST(FittedSize, EverySquareComesOutSquare) {
  for (int side = 181; side < 3000; ++side) EXPECT_EQ(fittedSize({side, side}, usualBox), usualBox) << side;
}

TEST(FittedSize, NoSideIsZero) {
  EXPECT_EQ(fittedSize({1000, 2}, usualBox), (ImageSize{180, 1}));
  EXPECT_EQ(fittedSize({2, 100000}, usualBox), (ImageSize{1, 180}));
}

TEST(FittedSize, TheWholePartCounts) { EXPECT_EQ(fittedSize({1000, 999}, usualBox), (ImageSize{180, 179})); }

TEST(Limit, From5To270) {
  EXPECT_EQ(limitOf("5"), 5);
  EXPECT_EQ(limitOf("270"), 270);
  for (const char* text : {"4", "271", "", "x", "18 ", "-7", "1e2", "99999999999"}) EXPECT_FALSE(limitOf(text)) << text;
}

TEST(LoadImageSettings, ALimitOutOfRangeIsTheUsualOne) {
  MemorySettings settings;
  ASSERT_TRUE(settings.set("LoadImage", "MaxWidth", "4"));
  ASSERT_TRUE(settings.set("LoadImage", "MaxHeight", "270"));
  const LoadImageSettings read = readLoadImage(settings);
  EXPECT_EQ(read.limits, (ImageSize{180, 270}));
  EXPECT_FALSE(read.fits);
  EXPECT_EQ(read.path, "");
}

TEST(LoadImageSettings, AreReadAsStored) {
  MemorySettings settings;
  ASSERT_TRUE(storeLoadImage(settings, {"/foto", true, {100, 200}}));
  EXPECT_EQ(settings.get("LoadImage", "MaxSize"), "1");
  const LoadImageSettings read = readLoadImage(settings);
  EXPECT_EQ(read.path, "/foto");
  EXPECT_TRUE(read.fits);
  EXPECT_EQ(read.limits, (ImageSize{100, 200}));
}

TEST(CentredOffset, IsHalfTheSpareWidth) {
  EXPECT_EQ(centredOffset(270, 180), 45);
  EXPECT_EQ(centredOffset(270, 270), 0);
  EXPECT_EQ(centredOffset(270, 300), 0);
}

}  // namespace
}  // namespace kv
