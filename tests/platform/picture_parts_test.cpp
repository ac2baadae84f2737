// Quarter turns and parts of pictures, pictures written as WebP, and which pictures are pixels and nothing more.
#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "platform/image/pixels.h"
#include "support/value_of.h"

namespace kv {
namespace {

std::string sampleOf(const char* name) {
  return readBytes(std::string(KORVANE_TEST_DATA "/platform/pictures/") + name).value_or("");
}

/// The colours of the four corners in the order of reading, each by the one of its bytes that is high: R, G, B; Y for
/// red with green.
std::string cornersOf(const PixelBuffer& pixels) {
  std::string names;
  for (const int y : {0, pixels.size().height - 1}) {
    for (const int x : {0, pixels.size().width - 1}) {
      const std::uint8_t* const pixel = pixels.row(y) + static_cast<std::ptrdiff_t>(x) * 3;
      const bool isRed = pixel[2] > 127, isGreen = pixel[1] > 127;
      names += isRed && isGreen ? 'Y' : isRed ? 'R' : isGreen ? 'G' : 'B';
    }
  }
  return names;
}

std::string turned(int quarters) {
  auto pixels = test::checked(readPixels(sampleOf("corners_rgb.png")));
  auto made = quarterTurned(std::move(*pixels), quarters);
  if (!made) return made.error().what;
  return std::to_string(made->size().width) + "x" + std::to_string(made->size().height) + " " + cornersOf(*made);
}

TEST(QuarterTurns, GoClockwise) {
  EXPECT_EQ(turned(0), "32x16 RGBY");
  EXPECT_EQ(turned(1), "16x32 BRYG");
  EXPECT_EQ(turned(2), "32x16 YBGR");
  EXPECT_EQ(turned(3), "16x32 GYRB");
  EXPECT_EQ(turned(-1), turned(3));
  EXPECT_EQ(turned(4), turned(0));
}

TEST(PartsOfAPicture, AreCutAtItsEdges) {
  const auto pixels = test::checked(readPixels(sampleOf("corners_rgb.png")));
  const auto right = croppedTo(*pixels, {16, 0, 16, 16});
  ASSERT_TRUE(right);
  EXPECT_EQ(right->size(), (ImageSize{16, 16}));
  EXPECT_EQ(cornersOf(*right), "GGYY");
  const auto beyond = croppedTo(*pixels, {-5, 8, 10, 99});
  ASSERT_TRUE(beyond);
  EXPECT_EQ(beyond->size(), (ImageSize{5, 8}));
  EXPECT_EQ(cornersOf(*beyond), "BBBB");
  EXPECT_FALSE(croppedTo(*pixels, {32, 0, 5, 5})) << "nothing is left";
}

TEST(WrittenWebp, ShowsThePixelsItWasGiven) {
  const auto pixels = readPixels(sampleOf("corners_rgb.png"));
  const auto webp = test::checked(webpOf(*pixels, 80));
  ASSERT_TRUE(webp);
  const auto back = readPixels(*webp);
  ASSERT_TRUE(back);
  EXPECT_EQ(back->size(), (ImageSize{32, 16}));
  EXPECT_EQ(cornersOf(*back), "RGBY");
  EXPECT_FALSE(webpOf(PixelBuffer(), 80));
}

TEST(OpaqueStills, AreThoseWhosePixelsAreAllThereIs) {
  for (const char* name : {"corners.jpg", "corners_rgb.png", "corners_palette.png", "corners.webp"}) {
    EXPECT_TRUE(isOpaqueStill(sampleOf(name))) << name;
  }
  for (const char* name : {"corners.gif", "corners_animated.webp", "corners_clear.png", "corners_clear.webp"})
    EXPECT_FALSE(isOpaqueStill(sampleOf(name))) << name;
  EXPECT_FALSE(isOpaqueStill("testo"));
}

}  // namespace
}  // namespace kv
