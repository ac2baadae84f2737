// The bitmap: its layout, its life and the copies between bitmaps.
#include "media/bitmap/dib_section.h"

#include <gtest/gtest.h>

#include "support/fixed_clock.h"
#include "support/scripted_user.h"

namespace kv {
namespace {

/// A bitmap whose pixel at (x, y) from the top left has the blue value 10 * y + x.
cDIBSection numbered(int width, int height) {
  cDIBSection made;
  EXPECT_TRUE(made.Create(width, height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      std::uint8_t* const row =
          made.DIBSectionBitsPtr() + static_cast<std::size_t>(height - 1 - y) * made.BytesPerScanLine();
      row[x * 3] = static_cast<std::uint8_t>(10 * y + x);
    }
  }
  return made;
}

/// The blue values, rows from the top.
std::string blues(const cDIBSection& bitmap) {
  std::string text;
  for (int y = 0; y < bitmap.Height(); ++y) {
    for (int x = 0; x < bitmap.Width(); ++x) text += std::to_string(bitmap.pixels().row(y)[x * 3]) + " ";
    text += "/ ";
  }
  return text;
}

TEST(Bitmap, ARowIsPaddedToTheNextMultipleOfFour) {
  cDIBSection bitmap;
  ASSERT_TRUE(bitmap.Create(5, 2));
  EXPECT_EQ(bitmap.BytesPerScanLine(), 16U);
  ASSERT_TRUE(bitmap.Create(4, 2));
  EXPECT_EQ(bitmap.BytesPerScanLine(), 12U);
  EXPECT_EQ(bitmap.Width(), 4);
  EXPECT_EQ(bitmap.Height(), 2);
}

TEST(Bitmap, ClearUpTwiceDoesNothingTheSecondTime) {
  cDIBSection bitmap = numbered(3, 3);
  bitmap.ClearUp();
  EXPECT_EQ(bitmap.DIBSectionBitsPtr(), nullptr);
  EXPECT_EQ(bitmap.BytesPerScanLine(), 0U);
  bitmap.ClearUp();
  EXPECT_EQ(bitmap.Width(), 0);
  EXPECT_TRUE(bitmap.Create(2, 2));
}

TEST(Bitmap, CreateFreesTheOneBeforeEvenWhenItFails) {
  cDIBSection bitmap = numbered(3, 3);
  EXPECT_FALSE(bitmap.Create(0, 4));
  EXPECT_EQ(bitmap.DIBSectionBitsPtr(), nullptr);
}

TEST(Bitmap, ANegativeSizeIsTheBitmapsOwn) {
  const cDIBSection source = numbered(4, 4);
  cDIBSection target;
  ASSERT_TRUE(target.Create(2, 3));
  target.LoadPictureBlt(source, {.x = 1, .y = 1});
  EXPECT_EQ(blues(target), "11 12 / 21 22 / 31 32 / ");
}

TEST(Bitmap, PaintingCopiesTheOtherWay) {
  const cDIBSection source = numbered(2, 2);
  cDIBSection target;
  ASSERT_TRUE(target.Create(3, 3));
  source.PaintPicture(target, 1, 2, {.x = 1});
  EXPECT_EQ(blues(target), "0 0 0 / 0 0 0 / 0 1 0 / ");
}

TEST(Bitmap, WhatLiesOutsideIsLeftOut) {
  const cDIBSection source = numbered(2, 2);
  cDIBSection target;
  ASSERT_TRUE(target.Create(3, 2));
  target.LoadPictureBlt(source, {.x = -1, .y = -1});
  EXPECT_EQ(blues(target), "0 0 0 / 0 0 1 / ") << "moved by one, and cut";
  source.PaintPicture(target, 9, 9, {});
  EXPECT_EQ(blues(target), "0 0 0 / 0 0 1 / ");
}

TEST(Bitmap, CopyingAsADibIsRefusedInWords) {
  test::ScriptedUser user;
  const cDIBSection bitmap = numbered(1, 1);
  int put = 0;
  const auto clipboard = [&](const PixelBuffer&) { return ++put == 1; };
  EXPECT_FALSE(bitmap.CopyToClipboard(true, user, clipboard));
  EXPECT_EQ(user.texts(),
            (std::vector<std::string>{"I don't know how to put a DIB on the clipboard! Copy as bitmap instead!!!"}));
  EXPECT_EQ(put, 0);
  EXPECT_TRUE(bitmap.CopyToClipboard(false, user, clipboard));
  EXPECT_FALSE(cDIBSection().CopyToClipboard(false, user, clipboard));
}

TEST(Bitmap, OfAPictureHasItsSizeAndPixels) {
  cDIBSection bitmap = numbered(4, 4);
  auto picture = PixelBuffer::create({2, 3});
  ASSERT_TRUE(picture);
  picture->row(0)[3] = 77;
  bitmap.CreateFromPicture(std::move(*picture));
  EXPECT_EQ(blues(bitmap), "0 77 / 0 0 / 0 0 / ");
  bitmap.CreateFromPicture({});
  EXPECT_EQ(bitmap.DIBSectionBitsPtr(), nullptr);
}

TEST(Bitmap, RandomBitsAreOfEveryColourUnlessAskedToBeGrey) {
  cDIBSection coloured = numbered(5, 5);
  coloured.RandomiseBits(false, systemRandom());
  int differing = 0;
  for (int x = 0; x < 25; ++x) {
    const std::uint8_t* const pixel = coloured.pixels().row(x / 5) + std::ptrdiff_t{x % 5} * 3;
    differing += pixel[0] != pixel[1] || pixel[1] != pixel[2] ? 1 : 0;
  }
  EXPECT_GT(differing, 10);

  cDIBSection bitmap = numbered(5, 5);
  bitmap.RandomiseBits(true, systemRandom());
  for (int y = 0; y < 5; ++y) {
    for (int x = 0; x < 5; ++x) {
      const std::uint8_t* const pixel = bitmap.pixels().row(y) + x * 3;
      EXPECT_TRUE(pixel[0] == pixel[1] && pixel[1] == pixel[2]);
    }
  }
}

}  // namespace
}  // namespace kv
