// The lighter forms of a picture: which there are, how large, and of which pictures there is none.
#include "media/bitmap/light_picture.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/value_of.h"

namespace kv {
namespace {

/// A picture with some detail, as a photo has it.
PixelBuffer detailed(ImageSize size) {
  auto made = test::checked(PixelBuffer::create(size));
  unsigned value = 7;
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width * 3; ++x) {
      value = value * 1664525U + 1013904223U;
      made->row(y)[x] = static_cast<std::uint8_t>((x / 3 + y) / 8 % 200 + static_cast<int>(value >> 27U));
    }
  }
  return std::move(*made);
}
std::string jpegOfSize(ImageSize size) { return jpegOf(detailed(size), 90).value_or(""); }

std::string described(std::string_view bytes) {
  std::string text;
  for (const LightPicture& form : lightPicturesOf(bytes)) {
    const auto size = test::checked(imageSizeOf(form.bytes));
    text += lightSuffix(form.width) + " " + std::to_string(size->width) + "x" + std::to_string(size->height) +
            (form.bytes.size() < bytes.size() ? "\n" : " too heavy\n");
  }
  return text;
}

TEST(LightPictures, AWidePictureHasTheWholeAndTwoNarrowerForms) {
  EXPECT_EQ(described(jpegOfSize({1200, 300})), ".webp 1200x300\n.480.webp 480x120\n.960.webp 960x240\n");
}

TEST(LightPictures, OnlyWiderPicturesAreNarrowed) {
  EXPECT_EQ(described(jpegOfSize({480, 100})), ".webp 480x100\n");
  EXPECT_EQ(described(jpegOfSize({961, 20})), ".webp 961x20\n.480.webp 480x9\n.960.webp 960x19\n");
}

TEST(LightPictures, OneThatCantBeMadeLighterHasNone) {
  const auto made = test::checked(webpOf(detailed({600, 100}), 1));
  EXPECT_EQ(described(*made), "");
}

TEST(LightPictures, WhatMovesIsSeeThroughOrDamagedHasNone) {
  const std::string pictures = std::string(KORVANE_TEST_DATA) + "/platform/pictures/";
  for (const char* name : {"corners.gif", "corners_animated.gif", "corners_animated.webp", "corners_clear.png"}) {
    EXPECT_EQ(described(readBytes(pictures + name).value_or("")), "") << name;
  }
  EXPECT_EQ(described("testo"), "");
  const std::string jpeg = jpegOfSize({600, 100});
  EXPECT_EQ(described(jpeg.substr(0, jpeg.size() / 2)), "");
}

TEST(NarrowedPicture, KeepsItsMeanColourWhereSinglePixelsWouldLoseIt) {
  auto stripes = test::checked(PixelBuffer::create({4000, 8}));  // every fourth column white
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 4000; x += 4) std::fill_n(stripes->row(y) + static_cast<std::ptrdiff_t>(x) * 3, 3, 255);
  }
  const auto narrow = narrowed(*stripes, 480);
  ASSERT_TRUE(narrow);
  EXPECT_EQ(narrow->size(), (ImageSize{480, 1}));
  for (int x = 1; x < 479; ++x) EXPECT_NEAR(narrow->row(0)[static_cast<std::ptrdiff_t>(x) * 3], 64, 4) << x;
}

TEST(NarrowedPicture, IsNeverLowerThanAPixel) {
  EXPECT_EQ(test::valueOf(narrowed(detailed({2000, 1}), 480)).size(), (ImageSize{480, 1}));
  EXPECT_EQ(test::valueOf(narrowed(detailed({500, 3}), 480)).size(), (ImageSize{480, 2}));
}

}  // namespace
}  // namespace kv
