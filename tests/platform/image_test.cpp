// Sizes of pictures and the first pixel of a GIF, also of damaged ones.
#include "platform/image/image.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_folder.h"
#include "support/value_of.h"

namespace kv {
namespace {

using namespace std::string_literals;
using test::TempFolder;

// Texts from here on hold zero bytes, so each is a string literal with its length.
const std::string gifHeader = "GIF89a\x02\x00\x03\x00\x80\x01\x00"s;  // 2 by 3, two colours, background 1
const std::string gifColours = "\x11\x22\x33\xAA\xBB\xCC"s;
const std::string gifFrame = "\x2C\x00\x00\x00\x00\x02\x00\x03\x00\x00"s;
const std::string gifStart = gifHeader + gifColours;
const std::string clearThen0 = "\x02\x02\x04\x00\x00"s;  // code size 2: clear (4), 0
const std::string clearThen1 = "\x02\x02\x0C\x00\x00"s;  // clear (4), 1

// Up to the start of the data. The checksum is the CRC-32 of the header from its name on.
std::string pngOf(std::string_view size, std::string_view checksum) {
  const std::string header = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"s + std::string(size) + "\x08\x02\0\0\0"s;
  return header + std::string(checksum) + "\0\0\0\x0AIDAT"s;
}
const std::string png640x480 = pngOf("\0\0\x02\x80\0\0\x01\xE0"s, "\xBA\xB3\x4B\xB3");

// A frame header of the given kind, 640 x 480 in one colour, and the start of its data.
std::string jpegFrame(char kind) { return "\xFF"s + kind + "\x00\x0B\x08\x01\xE0\x02\x80\x01\x01\x11\x00"s; }
const std::string jpegStart = "\xFF\xD8\xFF\xE0\x00\x10JFIF\0\x01\x01\0\0\x01\0\x01\0\0"s;
const std::string jpegScan = "\xFF\xDA\x00\x08\x01\x01\x00\x00\x3F\x00"s;

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

TEST(ImageSize, OfAGif) { EXPECT_EQ(sizeText(gifStart), "2x3"); }

TEST(ImageSize, OfAGifWithoutPalette) { EXPECT_EQ(sizeText("GIF87a\x40\x01\xF0\x00\x00\x00\x00"s), "320x240"); }

TEST(ImageSize, OfAPng) { EXPECT_EQ(sizeText(png640x480), "640x480"); }

TEST(ImageSize, APngWhoseHeaderIsDamagedIsMalformed) {
  std::string damaged = png640x480;
  damaged[19] = '\x81';  // 641 wide; the checksum shows it
  EXPECT_EQ(sizeText(damaged), "malformed");
}

TEST(ImageSize, OfAPngEndsAtAMillion) {
  EXPECT_EQ(sizeText(pngOf("\x00\x0F\x42\x40\0\0\x01\xE0"s, "\x66\xD0\xC3\x8C")), "1000000x480");
  EXPECT_EQ(sizeText(pngOf("\x00\x0F\x42\x41\0\0\x01\xE0"s, "\x89\x12\xA8\xB2")), "malformed");
}

TEST(ImageSize, OfBothKindsOfBmp) {
  EXPECT_EQ(sizeText(bmpOf("\x0C\0\0\0\x40\x01\xF0\0\x01\0\x18\0"s)), "320x240");
  EXPECT_EQ(sizeText(bmpOf("\x28\0\0\0\x40\x01\0\0\xF0\0\0\0"s)), "320x240");
}

TEST(ImageSize, ABmpWithRowsFromTheTopHasItsHeight) {
  EXPECT_EQ(sizeText(bmpOf("\x28\0\0\0\x40\x01\0\0\x10\xFF\xFF\xFF"s)), "320x240");
}

TEST(ImageSize, ABmpNeedsTheFirst26BytesAndAKnownHeader) {
  EXPECT_EQ(sizeText(bmpOf("\x10\0\0\0\x40\x01\0\0\xF0\0\0\0"s)), "malformed") << "a header of 16 bytes";
  EXPECT_EQ(sizeText(bmpOf("\x7C\0\0\0\x40\x01\0\0\xF0\0\0\0"s)), "320x240") << "a later header";
  EXPECT_EQ(sizeText(bmpOf("\x0C\0\0\0\xFF\xFF\xFF\xFF\x01\0\x18\0"s)), "65535x65535") << "16 bits without sign";
}

TEST(ImageSize, OfAJpegAfterOtherSegments) {
  EXPECT_EQ(sizeText(jpegStart + jpegFrame('\xC0') + jpegScan), "640x480");
  EXPECT_EQ(sizeText(jpegStart + "\xFF\xFF"s + jpegFrame('\xC2') + jpegScan), "640x480") << "progressive, padded";
  const std::string tables = "\xFF\xC4\x00\x14\x00\x01"s + std::string(15, '\0') + "\x05"s;
  EXPECT_EQ(sizeText(jpegStart + tables + "\xFF\xFE\x00\x05xyz"s + jpegFrame('\xC1') + jpegScan), "640x480");
}

TEST(ImageSize, AJpegWithoutUsableFrameIsMalformed) {
  EXPECT_EQ(sizeText("\xFF\xD8"s), "malformed");
  EXPECT_EQ(sizeText("\xFF\xD8"s + jpegScan), "malformed") << "a scan comes first";
  EXPECT_EQ(sizeText(jpegStart + "\xFF\xD9"s), "malformed") << "tables only";
  EXPECT_EQ(sizeText("\xFF\xD8\xFF\xE0\xFF\xFF"s + "abc"s), "malformed") << "a segment beyond the end";
  std::string flat = jpegStart + jpegFrame('\xC0') + jpegScan;
  flat.replace(jpegStart.size() + 5, 2, 2, '\0');
  EXPECT_EQ(sizeText(flat), "malformed") << "height 0";
}

TEST(ImageSize, OfOtherBytesIsMalformed) {
  for (const std::string& bytes : {""s, "x"s, "GIF"s, "GIF88a\x01\0\x01\0"s, "<html>"s, "B"s, "\xFF"s}) {
    EXPECT_EQ(sizeText(bytes), "malformed") << bytes;
  }
}

TEST(ImageSize, OfZeroOrBeyondAnIntIsMalformed) {
  EXPECT_EQ(sizeText("GIF89a\0\0\x03\0\0\0\0"s), "malformed");
  EXPECT_EQ(sizeText("GIF89a\x02\0\0\0\0\0\0"s), "malformed");
  EXPECT_EQ(sizeText(pngOf("\0\0\0\0\0\0\x01\xE0"s, "\x04\xDA\xFB\x73")), "malformed");
  EXPECT_EQ(sizeText(pngOf("\x80\0\0\0\0\0\x01\xE0"s, "\xA4\xB0\xDE\x64")), "malformed");
  EXPECT_EQ(sizeText(bmpOf("\x28\0\0\0\x40\x01\0\0\0\0\0\x80"s)), "malformed");
  EXPECT_EQ(sizeText(bmpOf("\x28\0\0\0\xC0\xFE\xFF\xFF\xF0\0\0\0"s)), "malformed") << "a negative width";
}

TEST(ImageSize, EveryHeaderCutShortIsMalformed) {
  const std::string whole[] = {gifStart, png640x480, bmpOf("\x28\0\0\0\x40\x01\0\0\xF0\0\0\0"s),
                               bmpOf("\x0C\0\0\0\x40\x01\xF0\0\x01\0\x18\0"s),
                               jpegStart + jpegFrame('\xC0') + jpegScan};
  for (const std::string& bytes : whole) {
    ASSERT_NE(sizeText(bytes), "malformed");
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_EQ(sizeText(bytes.substr(0, length)), "malformed") << length;
    }
  }
}

TEST(ImageSize, OfAFileNamesTheFileInItsFailures) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a.gif", gifStart));
  ASSERT_TRUE(writeBytes(folder / "b.gif", "no"));
  EXPECT_EQ(test::valueOf(imageSize(folder / "a.gif")).height, 3);
  EXPECT_EQ(imageSize(folder / "b.gif").error().kind, ErrorKind::Malformed);
  EXPECT_EQ(imageSize(folder / "b.gif").error().where, folder / "b.gif");
  EXPECT_EQ(imageSize(folder / "c.gif").error().kind, ErrorKind::Missing);
}

TEST(FirstPixel, IsTheColourOfTheFirstCode) {
  EXPECT_EQ(pixelText(gifStart + gifFrame + clearThen0), "112233");
  EXPECT_EQ(pixelText(gifStart + gifFrame + clearThen1), "AABBCC");
}

TEST(FirstPixel, NeedsNothingAfterThePieceOfDataThatHoldsIt) {
  EXPECT_EQ(pixelText(gifStart + gifFrame + "\x02\x01\x0C"s), "AABBCC");
  EXPECT_EQ(pixelText(gifStart + gifFrame + "\x02\x01\x0C\xFF"s), "AABBCC") << "the next piece is cut off";
}

TEST(FirstPixel, ComesThroughPiecesOfOneByteAndRepeatedClearCodes) {
  EXPECT_EQ(pixelText(gifStart + gifFrame + "\x02\x01\x64\x01\x02\x00"s), "AABBCC") << "clear clear 1";
}

TEST(FirstPixel, PrefersThePaletteOfTheFrame) {
  const std::string frame = "\x2C\x00\x00\x00\x00\x02\x00\x03\x00\x80"s;
  EXPECT_EQ(pixelText(gifStart + frame + "\x01\x02\x03\x04\x05\x06"s + clearThen1), "040506");
}

TEST(FirstPixel, OfATransparentPixelIsItsPaletteColour) {
  const std::string control = "\x21\xF9\x04\x01\x00\x00\x00\x00"s;
  EXPECT_EQ(pixelText(gifStart + control + gifFrame + clearThen0), "112233");
}

TEST(FirstPixel, WhereTheFrameDoesNotCoverTheCornerIsTheBackground) {
  const std::string frame = "\x2C\x01\x00\x00\x00\x01\x00\x03\x00\x00"s;
  EXPECT_EQ(pixelText(gifStart + frame + clearThen0), "AABBCC");
  const std::string lower = "\x2C\x00\x00\x01\x00\x01\x00\x02\x00\x00"s;
  EXPECT_EQ(pixelText(gifStart + lower + clearThen0), "AABBCC");
  std::string beyond = gifStart;
  beyond[11] = '\x02';
  EXPECT_EQ(pixelText(beyond + frame + clearThen0), "malformed") << "the palette has no colour 2";
}

TEST(FirstPixel, IsTheSameOfRowsOutOfOrder) {
  const std::string frame = "\x2C\x00\x00\x00\x00\x02\x00\x03\x00\x40"s;
  EXPECT_EQ(pixelText(gifStart + frame + clearThen1), "AABBCC");
}

TEST(FirstPixel, IsThatOfTheFirstFrame) {
  EXPECT_EQ(pixelText(gifStart + gifFrame + clearThen1 + gifFrame + clearThen0 + "\x3B"s), "AABBCC");
}

TEST(FirstPixel, OfASinglePixel) {
  const std::string frame = "\x2C\x00\x00\x00\x00\x01\x00\x01\x00\x00"s;
  EXPECT_EQ(pixelText(gifStart + frame + "\x02\x02\x4C\x01\x00\x3B"s), "AABBCC");
}

TEST(FirstPixel, IsFoundAfterExtensions) {
  const std::string comment =
      "\x21\xFE\x03"
      "abc\x02"
      "de\x00"s;
  EXPECT_EQ(pixelText(gifStart + comment + comment + gifFrame + clearThen1), "AABBCC");
}

TEST(FirstPixel, OfADamagedGifIsMalformed) {
  EXPECT_EQ(pixelText(gifStart), "malformed");
  EXPECT_EQ(pixelText(gifStart + "\x3B"s), "malformed") << "no frame";
  EXPECT_EQ(pixelText(gifStart + gifFrame + "\x0C\x02\x0C\x00"s), "malformed") << "code size 12";
  EXPECT_EQ(pixelText(gifStart + gifFrame + "\x02\x00"s), "malformed") << "no data";
  EXPECT_EQ(pixelText(gifStart + gifFrame + "\x02\x02\x2C\x00\x00"s), "malformed") << "the end code at once";
  EXPECT_EQ(pixelText(gifStart + gifFrame + "\x02\x02\x34\x00\x00"s), "malformed") << "a code that isn't known yet";
  EXPECT_EQ(pixelText(gifStart + gifFrame + "\x02\x02\x1C\x00\x00"s), "malformed") << "colour 3 of 2";
  EXPECT_EQ(pixelText("GIF89a\x02\x00\x03\x00\x00\x00\x00"s + gifFrame + clearThen0), "malformed") << "no palette";
  EXPECT_EQ(pixelText(png640x480), "malformed") << "no GIF";
}

TEST(FirstPixel, OfAHugeGifIsMalformed) {
  EXPECT_EQ(pixelText("GIF89a\xFF\xFF\xFF\xFF\x80\x00\x00"s + gifColours + gifFrame + clearThen0), "malformed");
  const std::string frame = "\x2C\x00\x00\x00\x00\xFF\xFF\xFF\xFF\x00"s;
  EXPECT_EQ(pixelText(gifStart + frame + clearThen0), "malformed");
}

TEST(FirstPixel, EveryGifCutShortIsMalformed) {
  // The first byte of the data holds both codes, so it is the last that is needed.
  const std::string whole = gifStart + gifFrame + "\x02\x01\x0C"s;
  ASSERT_EQ(pixelText(whole), "AABBCC");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(pixelText(whole.substr(0, length)), "malformed") << length;
  }
}

TEST(FirstPixel, OfAFileNamesTheFileInItsFailures) {
  TempFolder folder;
  ASSERT_TRUE(writeBytes(folder / "a.gif", gifStart + gifFrame + clearThen1));
  ASSERT_TRUE(writeBytes(folder / "b.gif", gifHeader));
  EXPECT_EQ(test::valueOf(firstPixel(folder / "a.gif")).blue, 0xCC);
  EXPECT_EQ(firstPixel(folder / "b.gif").error().where, folder / "b.gif");
  EXPECT_EQ(firstPixel(folder / "c.gif").error().kind, ErrorKind::Missing);
}

}  // namespace
}  // namespace kv
