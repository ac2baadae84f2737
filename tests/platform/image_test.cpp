// Sizes of pictures and the first pixel of a GIF, also of damaged ones.
#include "platform/image.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using namespace std::string_literals;
using test::TempFolder;

// Texts from here on hold zero bytes, so each is a string literal with its length.
const std::string gifHeader = "GIF89a\x02\x00\x03\x00\x80\x01\x00"s;  // 2 by 3, two colours, background 1
const std::string gifColours = "\x11\x22\x33\xAA\xBB\xCC"s;
const std::string gifFrame = "\x2C\x00\x00\x00\x00\x02\x00\x03\x00\x00"s;
const std::string clearThen0 = "\x02\x02\x04\x00\x00"s;  // code size 2: clear (4), 0
const std::string clearThen1 = "\x02\x02\x0C\x00\x00"s;  // clear (4), 1

std::string pngOf(std::string_view size) {
  return "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"s + std::string(size) + "\x08\x02\0\0\0"s;
}

std::string bmpOf(std::string_view header) { return "BM\0\0\0\0\0\0\0\0\x1A\0\0\0"s + std::string(header); }

std::string sizeText(std::string_view bytes) {
  const auto size = imageSizeOf(bytes);
  if (!size) return size.error().kind == ErrorKind::Malformed ? "malformed" : "other";
  return std::to_string(size->width) + "x" + std::to_string(size->height);
}

std::string pixelText(std::string_view bytes) {
  const auto colour = firstPixelOf(bytes);
  if (!colour) return colour.error().kind == ErrorKind::Malformed ? "malformed" : "other";
  char text[8];
  std::snprintf(text, sizeof text, "%02X%02X%02X", colour->red, colour->green, colour->blue);
  return text;
}

TEST(ImageSize, OfAGif) { EXPECT_EQ(sizeText(gifHeader), "2x3"); }

TEST(ImageSize, OfAPng) { EXPECT_EQ(sizeText(pngOf("\0\0\x02\x80\0\0\x01\xE0"s)), "640x480"); }

TEST(ImageSize, OfBothKindsOfBmp) {
  EXPECT_EQ(sizeText(bmpOf("\x0C\0\0\0\x40\x01\xF0\0"s)), "320x240");
  EXPECT_EQ(sizeText(bmpOf("\x28\0\0\0\x40\x01\0\0\xF0\0\0\0"s)), "320x240");
}

TEST(ImageSize, ABmpWithRowsFromTheTopHasItsHeight) {
  EXPECT_EQ(sizeText(bmpOf("\x28\0\0\0\x40\x01\0\0\x10\xFF\xFF\xFF"s)), "320x240");
}

TEST(ImageSize, OfAJpegBehindOtherSegments) {
  const std::string start = "\xFF\xD8\xFF\xE0\x00\x10JFIF\0\x01\x01\0\0\x01\0\x01\0\0"s;
  EXPECT_EQ(sizeText(start + "\xFF\xC0\x00\x11\x08\x01\xE0\x02\x80\x03"s), "640x480");
  EXPECT_EQ(sizeText(start + "\xFF\xFF\xFF\xC2\x00\x11\x08\x01\xE0\x02\x80\x03"s), "640x480") << "progressive, padded";
  EXPECT_EQ(sizeText(start + "\xFF\xC4\x00\x04zz\xFF\xC1\x00\x11\x08\x01\xE0\x02\x80\x03"s), "640x480");
}

TEST(ImageSize, AJpegWithoutFrameIsMalformed) {
  EXPECT_EQ(sizeText("\xFF\xD8"s), "malformed");
  EXPECT_EQ(sizeText("\xFF\xD8\xFF\xDA\x00\x08"s), "malformed") << "a scan comes first";
  EXPECT_EQ(sizeText("\xFF\xD8\xFF\xD9"s), "malformed");
  EXPECT_EQ(sizeText("\xFF\xD8\xFF\xE0\x00\x01"s), "malformed") << "a segment shorter than its length";
  EXPECT_EQ(sizeText("\xFF\xD8\xFF\xE0\xFF\xFF"
                     "abc"s),
            "malformed");
  EXPECT_EQ(sizeText("\xFF\xD8\xFF\xC0\x00\x11\x08\x00\x00\x02\x80\x03"s), "malformed") << "height 0";
}

TEST(ImageSize, OfOtherBytesIsMalformed) {
  for (const std::string& bytes : {""s, "x"s, "GIF"s, "GIF88a\x01\0\x01\0"s, "<html>"s, "B"s, "\xFF"s}) {
    EXPECT_EQ(sizeText(bytes), "malformed") << bytes;
  }
}

TEST(ImageSize, OfZeroOrBeyondAnIntIsMalformed) {
  EXPECT_EQ(sizeText("GIF89a\0\0\x03\0"s), "malformed");
  EXPECT_EQ(sizeText(pngOf("\0\0\0\0\0\0\x01\xE0"s)), "malformed");
  EXPECT_EQ(sizeText(pngOf("\x80\0\0\0\0\0\x01\xE0"s)), "malformed");
  EXPECT_EQ(sizeText(bmpOf("\x28\0\0\0\x40\x01\0\0\0\0\0\x80"s)), "malformed");
  EXPECT_EQ(sizeText(bmpOf("\x28\0\0\0\xC0\xFE\xFF\xFF\xF0\0\0\0"s)), "malformed") << "a negative width";
}

TEST(ImageSize, EveryHeaderCutShortIsMalformed) {
  const std::string whole[] = {gifHeader.substr(0, 10), pngOf("\0\0\x02\x80\0\0\x01\xE0"s).substr(0, 24),
                               bmpOf("\x28\0\0\0\x40\x01\0\0\xF0\0\0\0"s),
                               "\xFF\xD8\xFF\xC0\x00\x11\x08\x01\xE0\x02\x80"s};
  for (const std::string& bytes : whole) {
    ASSERT_NE(sizeText(bytes), "malformed");
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_EQ(sizeText(bytes.substr(0, length)), "malformed") << length;
    }
  }
}

TEST(ImageSize, OfAFileNamesTheFileInItsFailures) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a.gif", gifHeader));
  ASSERT_TRUE(writeBytes(folder / "b.gif", "no"));
  EXPECT_EQ(imageSize(folder / "a.gif")->height, 3);
  EXPECT_EQ(imageSize(folder / "b.gif").error().kind, ErrorKind::Malformed);
  EXPECT_EQ(imageSize(folder / "b.gif").error().where, folder / "b.gif");
  EXPECT_EQ(imageSize(folder / "c.gif").error().kind, ErrorKind::Missing);
}

TEST(FirstPixel, IsTheColourOfTheFirstCode) {
  EXPECT_EQ(pixelText(gifHeader + gifColours + gifFrame + clearThen0), "112233");
  EXPECT_EQ(pixelText(gifHeader + gifColours + gifFrame + clearThen1), "AABBCC");
}

TEST(FirstPixel, DoesNotNeedTheRestOfThePicture) {
  EXPECT_EQ(pixelText(gifHeader + gifColours + gifFrame + "\x02\xFF\x0C\x00"s), "AABBCC");
}

TEST(FirstPixel, ComesThroughPiecesOfOneByteAndRepeatedClearCodes) {
  EXPECT_EQ(pixelText(gifHeader + gifColours + gifFrame + "\x02\x01\x64\x01\x02\x00"s), "AABBCC") << "clear clear 1";
}

TEST(FirstPixel, PrefersThePaletteOfTheFrame) {
  const std::string frame = "\x2C\x00\x00\x00\x00\x02\x00\x03\x00\x80"s;
  EXPECT_EQ(pixelText(gifHeader + gifColours + frame + "\x01\x02\x03\x04\x05\x06"s + clearThen1), "040506");
}

TEST(FirstPixel, OfATransparentPixelIsItsPaletteColour) {
  const std::string control = "\x21\xF9\x04\x01\x00\x00\x00\x00"s;
  EXPECT_EQ(pixelText(gifHeader + gifColours + control + gifFrame + clearThen0), "112233");
}

TEST(FirstPixel, WhereTheFrameLeavesTheCornerFreeIsTheBackground) {
  const std::string frame = "\x2C\x01\x00\x00\x00\x01\x00\x03\x00\x00"s;
  EXPECT_EQ(pixelText(gifHeader + gifColours + frame + clearThen0), "AABBCC");
}

TEST(FirstPixel, IsFoundBehindExtensions) {
  const std::string comment =
      "\x21\xFE\x03"
      "abc\x02"
      "de\x00"s;
  EXPECT_EQ(pixelText(gifHeader + gifColours + comment + comment + gifFrame + clearThen1), "AABBCC");
}

TEST(FirstPixel, OfADamagedGifIsMalformed) {
  const std::string start = gifHeader + gifColours;
  EXPECT_EQ(pixelText(start), "malformed");
  EXPECT_EQ(pixelText(start + "\x3B"s), "malformed") << "no frame";
  EXPECT_EQ(pixelText(start + gifFrame + "\x00\x02\x0C\x00"s), "malformed") << "code size 0";
  EXPECT_EQ(pixelText(start + gifFrame + "\x0C\x02\x0C\x00"s), "malformed") << "code size 12";
  EXPECT_EQ(pixelText(start + gifFrame + "\x02\x00"s), "malformed") << "no data";
  EXPECT_EQ(pixelText(start + gifFrame + "\x02\x02\x2C\x00\x00"s), "malformed") << "the end code at once";
  EXPECT_EQ(pixelText(start + gifFrame + "\x02\x02\x34\x00\x00"s), "malformed") << "a code that isn't known yet";
  EXPECT_EQ(pixelText(start + gifFrame + "\x02\x02\x1C\x00\x00"s), "malformed") << "colour 3 of 2";
  EXPECT_EQ(pixelText("GIF89a\x02\x00\x03\x00\x00\x00\x00"s + gifFrame + clearThen0), "malformed") << "no palette";
  EXPECT_EQ(pixelText(pngOf("\0\0\0\x01\0\0\0\x01"s)), "malformed") << "no GIF";
}

TEST(FirstPixel, OfAHugeGifIsMalformed) {
  EXPECT_EQ(pixelText("GIF89a\xFF\xFF\xFF\xFF\x80\x00\x00"s + gifColours + gifFrame + clearThen0), "malformed");
  const std::string frame = "\x2C\x00\x00\x00\x00\xFF\xFF\xFF\xFF\x00"s;
  EXPECT_EQ(pixelText(gifHeader + gifColours + frame + clearThen0), "malformed");
}

TEST(FirstPixel, EveryGifCutShortIsMalformed) {
  // The first byte of the data holds both codes, so it is the last that is needed.
  const std::string whole = gifHeader + gifColours + gifFrame + clearThen1.substr(0, 3);
  ASSERT_EQ(pixelText(whole), "AABBCC");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(pixelText(whole.substr(0, length)), "malformed") << length;
  }
}

TEST(FirstPixel, OfAFileNamesTheFileInItsFailures) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a.gif", gifHeader + gifColours + gifFrame + clearThen1));
  ASSERT_TRUE(writeBytes(folder / "b.gif", gifHeader));
  EXPECT_EQ(firstPixel(folder / "a.gif")->blue, 0xCC);
  EXPECT_EQ(firstPixel(folder / "b.gif").error().where, folder / "b.gif");
  EXPECT_EQ(firstPixel(folder / "c.gif").error().kind, ErrorKind::Missing);
}

}  // namespace
}  // namespace kv
