// The pixels of pictures of every kind, whole, damaged and lying. The files in pictures/ are one picture of 32 by 16
// pixels, red, green, blue and yellow in its quarters, in forms that other programs have written.
#include "platform/image/pixels.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>

#include "platform/files/files.h"
#include "support/temp_folder.h"

namespace kv {
namespace {

using namespace std::string_literals;
using test::TempFolder;

std::string pictureOf(const std::string& name) {
  return readBytes(std::string(KORVANE_TEST_DATA "/platform/pictures/") + name).value_or("");
}

/// A colour to the nearest of what a test uses, so that a lossy kind reads like the others.
char colourName(const std::uint8_t* pixel) {
  const auto isHigh = [](int value) { return value > 190; };
  const auto isLow = [](int value) { return value < 65; };
  const int blue = pixel[0], green = pixel[1], red = pixel[2];
  if (isHigh(red) && isHigh(green) && isHigh(blue)) return 'W';
  if (isHigh(red) && isHigh(green) && isLow(blue)) return 'Y';
  if (isHigh(red) && isLow(green) && isLow(blue)) return 'R';
  if (isLow(red) && isHigh(green) && isLow(blue)) return 'G';
  if (isLow(red) && isLow(green) && isHigh(blue)) return 'B';
  return red == green && green == blue ? 'g' : '?';
}

char colourAt(const PixelBuffer& pixels, int x, int y) {
  return colourName(pixels.row(y) + static_cast<std::ptrdiff_t>(x) * 3);
}

/// The size and the colours of the four corners, in the order of reading; or the failure.
std::string corners(std::string_view bytes) {
  const auto pixels = readPixels(bytes);
  if (!pixels) return pixels.error().kind == ErrorKind::Malformed ? "malformed" : "other";
  const int right = pixels->size().width - 1, bottom = pixels->size().height - 1;
  const std::string colours{colourAt(*pixels, 0, 0), colourAt(*pixels, right, 0), colourAt(*pixels, 0, bottom),
                            colourAt(*pixels, right, bottom)};
  return std::to_string(right + 1) + "x" + std::to_string(bottom + 1) + " " + colours;
}

TEST(Pixels, EveryKindShowsTheSamePicture) {
  for (const char* name : {"corners_rgb.png", "corners_palette.png", "corners_interlaced.png", "corners_16bit.png",
                           "corners.gif", "corners.webp", "corners.jpg", "corners_progressive.jpg"}) {
    EXPECT_EQ(corners(pictureOf(name)), "32x16 RGBY") << name;
  }
}

TEST(Pixels, FourInksAreReducedToThreeColours) { EXPECT_EQ(corners(pictureOf("corners_cmyk.jpg")), "32x16 RGBY"); }

TEST(Pixels, ColoursWithAProfileAreThoseOfAScreen) {
  // 100, 200, 100 with the primaries of a wide display; the red of a screen is far less.
  for (const char* name : {"green_wide.jpg", "green_wide.png", "green_wide.webp"}) {
    const auto pixels = readPixels(pictureOf(name));
    ASSERT_TRUE(pixels) << name;
    const std::uint8_t* const pixel = pixels->row(3) + 9;
    EXPECT_NEAR(pixel[2], 45, 3) << name;
    EXPECT_NEAR(pixel[1], 203, 3) << name;
    EXPECT_NEAR(pixel[0], 85, 3) << name;
  }
}

TEST(Pixels, GreyHasThreeEqualBytes) {
  for (const char* name : {"corners_grey.png", "corners_grey.jpg"}) {
    const auto pixels = readPixels(pictureOf(name));
    ASSERT_TRUE(pixels) << name;
    const std::uint8_t* const pixel = pixels->row(3) + 9;
    EXPECT_TRUE(pixel[0] == pixel[1] && pixel[1] == pixel[2]) << name;
  }
}

TEST(Pixels, WhatIsTransparentShowsWhite) {
  for (const char* name : {"corners_clear.png", "corners_interlaced_clear.gif", "corners_clear.webp"}) {
    EXPECT_EQ(corners(pictureOf(name)), "32x16 RGBW") << name;
  }
}

TEST(Pixels, AnAnimationShowsItsFirstPicture) {
  EXPECT_EQ(corners(pictureOf("corners_animated.gif")), "32x16 RGBY");
  EXPECT_EQ(corners(pictureOf("corners_animated.webp")), "32x16 RGBY");
}

TEST(Pixels, AnInterlacedPictureHasItsLinesInOrder) {
  const auto plain = readPixels(pictureOf("corners_rgb.png"));
  const auto interlaced = readPixels(pictureOf("corners_interlaced.png"));
  ASSERT_TRUE(plain && interlaced);
  EXPECT_TRUE(std::equal(plain->data(), plain->data() + plain->byteCount(), interlaced->data()));
  const auto gif = readPixels(pictureOf("corners_interlaced_clear.gif"));
  ASSERT_TRUE(gif);
  for (int y = 0; y < 16; ++y) EXPECT_EQ(colourAt(*gif, 0, y), y < 8 ? 'R' : 'B') << y;
}

TEST(Pixels, TheBottomRowIsTheFirstInMemoryAndBlueTheFirstByte) {
  const auto pixels = readPixels(pictureOf("corners_rgb.png"));
  ASSERT_TRUE(pixels);
  EXPECT_EQ(colourName(pixels->data()), 'B') << "bottom left";
  EXPECT_EQ(pixels->data()[0], 255);
  EXPECT_EQ(pixels->row(15), pixels->data());
  EXPECT_EQ(pixels->rowBytes(), 96U);
}

TEST(Pixels, ARowIsPaddedToFourBytes) {
  EXPECT_EQ(PixelBuffer::paddedRow(5), 16U);
  EXPECT_EQ(PixelBuffer::paddedRow(4), 12U);
  EXPECT_EQ(PixelBuffer::paddedRow(1), 4U);
}

TEST(Pixels, AFileCutAtEachTenthIsMalformed) {
  for (const char* name : {"corners_rgb.png", "corners_interlaced.png", "corners.gif", "corners_animated.gif",
                           "corners.webp", "corners_animated.webp", "corners.jpg", "corners_progressive.jpg"}) {
    const std::string whole = pictureOf(name);
    for (std::size_t tenth = 0; tenth < 10; ++tenth) {
      const std::string cut = whole.substr(0, whole.size() * tenth / 10);
      const std::string found = corners(cut);
      // The first picture of an animation is there before the rest is.
      if (std::string_view(name).find("animated.gif") != std::string_view::npos && found == "32x16 RGBY") continue;
      EXPECT_EQ(found, "malformed") << name << " at " << tenth;
    }
  }
}

TEST(Pixels, ALyingSizeIsRefusedBeforeMemoryIsTaken) {
  // 60000 by 60000, the checksum right.
  const std::string png = "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\xEA\x60\0\0\xEA\x60\x08\x02\0\0\0"s;
  const auto refused = readPixels(png + "\x0F\xB0\xE2\x15\0\0\x03\x80IDAT"s + std::string(900, '\0'));
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, ErrorKind::Malformed);
  EXPECT_EQ(refused.error().what, "The picture has too many pixels");
  EXPECT_EQ(corners("GIF89a\xFF\xFF\xFF\xFF\x80\x01\x00\x11\x22\x33\xAA\xBB\xCC"s), "malformed");
  std::string jpeg = pictureOf("corners.jpg");
  const std::size_t frame = jpeg.find("\xFF\xC0");
  ASSERT_NE(frame, std::string::npos);
  jpeg.replace(frame + 5, 4, "\xFF\x00\xFF\x00"s);
  EXPECT_EQ(corners(jpeg), "malformed");
}

TEST(Pixels, ALieWithinTheLimitIsADamagedFile) {
  std::string jpeg = pictureOf("corners.jpg");
  jpeg.replace(jpeg.find("\xFF\xC0") + 5, 4, "\x04\x00\x04\x00"s);
  EXPECT_EQ(corners(jpeg), "malformed") << "1024 by 1024 announced, 32 by 16 there";
}

TEST(Pixels, AGifWithoutEndIsRefused) {
  std::string gif = "GIF89a\x02\x00\x03\x00\x80\x01\x00\x11\x22\x33\xAA\xBB\xCC"s;
  for (int i = 0; i < 100'000; ++i) gif += "\x21\xFE\x01x\x00"s;
  EXPECT_EQ(corners(gif), "malformed") << "comments and no frame";
}

TEST(Pixels, BytesOfAnotherKindAreMalformed) {
  EXPECT_EQ(corners("testo"), "malformed");
  EXPECT_EQ(corners(""), "malformed");
  EXPECT_EQ(corners("RIFF\x04\0\0\0WEBP"s), "malformed");
}

/// A JPEG with a note on how the camera was held, in the byte order given.
std::string withOrientation(const std::string& jpeg, int orientation, bool bigEndian) {
  const char value = static_cast<char>(orientation);
  const std::string tiff = bigEndian ? "MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0"s + value + "\0\0\0\0\0\0"s
                                     : "II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0"s + value + "\0\0\0\0\0\0\0"s;
  const std::string body = "Exif\0\0"s + tiff;
  const std::string length{'\0', static_cast<char>(body.size() + 2)};
  return jpeg.substr(0, 2) + "\xFF\xE1" + length + body + jpeg.substr(2);
}

/// What CIPA DC-008 says of each orientation: on which side of the picture as seen the stored row 0 is, and the
/// stored column 0.
struct HeldCamera {
  int orientation;
  char rowSide, columnSide;
};
constexpr std::array<HeldCamera, 8> cameras{{{1, 't', 'l'},
                                             {2, 't', 'r'},
                                             {3, 'b', 'r'},
                                             {4, 'b', 'l'},
                                             {5, 'l', 't'},
                                             {6, 'r', 't'},
                                             {7, 'r', 'b'},
                                             {8, 'l', 'b'}}};

/// The coordinate on the axis of `side` of the stored line `line`, of `count` on that axis.
int seenAt(char side, int line, int count) { return side == 't' || side == 'l' ? line : count - 1 - line; }

std::string storedBy(const HeldCamera& camera, const PixelBuffer& seen) {
  const ImageSize size = seen.size();
  const bool rowsAreRows = camera.rowSide == 't' || camera.rowSide == 'b';
  auto stored = PixelBuffer::create(rowsAreRows ? size : ImageSize{size.height, size.width}).value();
  for (int row = 0; row < stored.size().height; ++row) {
    for (int column = 0; column < stored.size().width; ++column) {
      const int x =
          rowsAreRows ? seenAt(camera.columnSide, column, size.width) : seenAt(camera.rowSide, row, size.width);
      const int y =
          rowsAreRows ? seenAt(camera.rowSide, row, size.height) : seenAt(camera.columnSide, column, size.height);
      std::copy_n(seen.row(y) + static_cast<std::ptrdiff_t>(x) * 3, 3,
                  stored.row(row) + static_cast<std::ptrdiff_t>(column) * 3);
    }
  }
  return jpegOf(stored, 95).value_or("");
}

TEST(Orientation, EachOfTheEightComesOutUpright) {
  const auto seen = readPixels(pictureOf("corners_rgb.png"));
  ASSERT_TRUE(seen);
  for (const HeldCamera& camera : cameras) {
    const std::string stored = storedBy(camera, *seen);
    for (const bool bigEndian : {false, true}) {
      const std::string photo = withOrientation(stored, camera.orientation, bigEndian);
      EXPECT_EQ(corners(photo), "32x16 RGBY") << camera.orientation;
      EXPECT_EQ(shownSizeOf(photo), (ImageSize{32, 16})) << camera.orientation;
    }
  }
}

TEST(Orientation, NonsenseIsUpright) {
  const std::string jpeg = pictureOf("corners.jpg");
  for (const int nonsense : {0, 9, 77}) EXPECT_EQ(corners(withOrientation(jpeg, nonsense, true)), "32x16 RGBY");
}

TEST(Orientation, TheSizeOfOtherKindsIsThatOfTheirHeader) {
  EXPECT_EQ(shownSizeOf(pictureOf("corners.gif")), (ImageSize{32, 16}));
  EXPECT_EQ(shownSizeOf(pictureOf("corners.webp")), (ImageSize{32, 16}));
  EXPECT_EQ(imageSizeOf(pictureOf("corners_animated.webp")), (ImageSize{32, 16}));
}

TEST(PictureFile, AFolderAPipeASocketAndNothingAreMissing) {
  const TempFolder root;
  ASSERT_TRUE(createFolder(root / "cartella.jpg"));
  ASSERT_EQ(::mkfifo((root / "pipe.jpg").c_str(), 0600), 0);
  ASSERT_EQ(::mknod((root / "socket.jpg").c_str(), S_IFSOCK | 0600, 0), 0);
  for (const char* name : {"cartella.jpg", "pipe.jpg", "socket.jpg", "niente.jpg"}) {
    const auto refused = readPixelsOf(root / name);
    ASSERT_FALSE(refused) << name;
    EXPECT_EQ(refused.error().kind, ErrorKind::Missing) << name;
  }
}

TEST(PictureFile, OneLargerThanAPictureCanBeIsNotRead) {
  const TempFolder root;
  ASSERT_TRUE(writeBytes(root / "film.jpg", pictureOf("corners.jpg")));
  std::filesystem::resize_file(root / "film.jpg", mostPictureBytes + 1);
  const auto refused = readPixelsOf(root / "film.jpg");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error().kind, ErrorKind::Malformed);
  EXPECT_EQ(refused.error().where, root / "film.jpg");
  const auto unsized = imageSize(root / "film.jpg");
  ASSERT_FALSE(unsized);
  EXPECT_EQ(unsized.error().kind, ErrorKind::Malformed);
  EXPECT_EQ(unsized.error().where, root / "film.jpg");
}

TEST(WrittenJpeg, NeedsPixels) {
  EXPECT_FALSE(jpegOf(PixelBuffer(), 90));
  EXPECT_FALSE(PixelBuffer::create({0, 5}));
  EXPECT_FALSE(PixelBuffer::create({8001, 8000}));
}

TEST(WrittenJpeg, HasTheQualityAskedFor) {
  auto pixels = readPixels(pictureOf("corners_rgb.png"));
  ASSERT_TRUE(pixels);
  for (std::size_t i = 0; i < pixels->byteCount(); ++i) pixels->data()[i] = static_cast<std::uint8_t>(i * 37 % 251);
  const auto coarse = jpegOf(*pixels, 0), good = jpegOf(*pixels, 100);
  ASSERT_TRUE(coarse && good);
  EXPECT_LT(coarse->size() * 2, good->size());
}

}  // namespace
}  // namespace kv
