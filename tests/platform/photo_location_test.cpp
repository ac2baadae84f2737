// Photos that tell where they were taken, as telephones write them, and the same photos without.
#include "platform/image/photo_location.h"

#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "platform/image/pixels.h"

namespace kv {
namespace {

using namespace std::string_literals;

std::string photoOf(const char* name) {
  return readBytes(std::string(KORVANE_TEST_DATA "/platform/pictures/") + name).value_or("");
}

/// EXIF, big end first, with an orientation and a latitude of 45 degrees north.
std::string exifWithLocation(int orientation) {
  std::string tiff = "MM\0*\0\0\0\x08"s;
  tiff += "\0\x02"s;                                                                           // two entries
  tiff += "\x01\x12\0\x03\0\0\0\x01\0"s + static_cast<char>(orientation) + "\0\0"s;            // held so
  tiff += "\x88\x25\0\x04\0\0\0\x01\0\0\0\x26"s + "\0\0\0\0"s;                                 // directory at 38
  tiff += "\0\x02"s + "\0\x01\0\x02\0\0\0\x02N\0\0\0"s + "\0\x02\0\x05\0\0\0\x03\0\0\0\x44"s;  // N, at 68
  tiff += "\0\0\0\0"s + "\0\0\0\x2D\0\0\0\x01\0\0\0\0\0\0\0\x01\0\0\0\0\0\0\0\x01"s;
  return tiff;
}

std::string bigEnd(std::size_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8)
    bytes += static_cast<char>((value >> static_cast<unsigned>(shift)) & 0xFFU);
  return bytes;
}
std::string littleEnd(std::size_t value) {
  std::string bytes = bigEnd(value);
  return {bytes.rbegin(), bytes.rend()};
}

std::string jpegPart(char marker, const std::string& body) {
  return "\xFF"s + marker + bigEnd(body.size() + 2).substr(2) + body;
}
std::string jpegWith(const std::string& parts) {
  const std::string jpeg = photoOf("corners.jpg");
  return jpeg.substr(0, 2) + parts + jpeg.substr(2);
}
std::string jpegWithLocation(int orientation) {
  return jpegWith(jpegPart('\xE1', "Exif\0\0"s + exifWithLocation(orientation)));
}

std::string samePixels(const std::string& left, const std::string& right) {
  const auto one = readPixels(left), other = readPixels(right);
  if (!one || !other) return "unreadable";
  const bool areSame =
      one->size() == other->size() && std::equal(one->data(), one->data() + one->byteCount(), other->data());
  return areSame ? "same" : "different";
}

TEST(LocationOfAPhoto, ALatitudeInAJpegIsFoundAndLeftOut) {
  const std::string photo = jpegWithLocation(1);
  EXPECT_TRUE(tellsLocation(photo));
  const auto plain = withoutLocation(photo);
  ASSERT_TRUE(plain);
  EXPECT_EQ(*plain, photoOf("corners.jpg")) << "everything else stays byte for byte";
  EXPECT_FALSE(tellsLocation(*plain));
}

TEST(LocationOfAPhoto, HowTheCameraWasHeldStays) {
  const std::string photo = jpegWithLocation(6);
  const auto plain = withoutLocation(photo);
  ASSERT_TRUE(plain);
  EXPECT_FALSE(tellsLocation(*plain));
  EXPECT_EQ(shownSizeOf(*plain), (ImageSize{16, 32}));
  EXPECT_EQ(samePixels(*plain, photo), "same");
}

TEST(LocationOfAPhoto, AnXmpNoteTellsItToo) {
  const std::string note = "http://ns.adobe.com/xap/1.0/\0<x exif:GPSLatitude='45,30N'/>"s;
  const auto plain = withoutLocation(jpegWith(jpegPart('\xE1', note)));
  EXPECT_TRUE(tellsLocation(jpegWith(jpegPart('\xE1', note))));
  ASSERT_TRUE(plain);
  EXPECT_EQ(*plain, photoOf("corners.jpg"));
}

TEST(LocationOfAPhoto, WhatFollowsTheEndOfAJpegGoes) {
  const auto plain = withoutLocation(jpegWithLocation(1) + jpegWithLocation(1));
  ASSERT_TRUE(plain);
  EXPECT_EQ(*plain, photoOf("corners.jpg"));
}

TEST(LocationOfAPhoto, EveryScanOfAProgressiveJpegStays) {
  const std::string jpeg = photoOf("corners_progressive.jpg");
  const auto plain =
      withoutLocation(jpeg.substr(0, 2) + jpegPart('\xE1', "Exif\0\0"s + exifWithLocation(1)) + jpeg.substr(2));
  ASSERT_TRUE(plain);
  EXPECT_EQ(*plain, jpeg);
}

TEST(LocationOfAPhoto, AColourProfileStays) {
  for (const char* name : {"green_wide.jpg", "green_wide.png", "green_wide.webp"}) {
    const auto plain = withoutLocation(photoOf(name));
    ASSERT_TRUE(plain) << name;
    EXPECT_EQ(samePixels(*plain, photoOf(name)), "same") << name;
  }
}

TEST(LocationOfAPhoto, APngHasItsNotesInAPartOfTheirOwn) {
  const std::string png = photoOf("corners_rgb.png"), exif = exifWithLocation(1);
  constexpr std::size_t afterHeader = 8 + 25;
  // The checksum isn't looked at: the part goes as a whole.
  const std::string photo =
      png.substr(0, afterHeader) + bigEnd(exif.size()) + "eXIf" + exif + "\0\0\0\0"s + png.substr(afterHeader);
  EXPECT_TRUE(tellsLocation(photo));
  const auto plain = withoutLocation(photo);
  ASSERT_TRUE(plain);
  EXPECT_FALSE(tellsLocation(*plain));
  EXPECT_EQ(samePixels(*plain, png), "same");
}

TEST(LocationOfAPhoto, AWebpHasThemAfterItsPixels) {
  std::string photo = photoOf("green_wide.webp");  // in the long form, because of its profile
  const std::string exif = exifWithLocation(1);
  ASSERT_EQ(photo.substr(12, 4), "VP8X");
  photo[20] = static_cast<char>(photo[20] | 0x08);
  photo += "EXIF" + littleEnd(exif.size()) + exif + std::string(exif.size() % 2, '\0');
  photo.replace(4, 4, littleEnd(photo.size() - 8));
  EXPECT_TRUE(tellsLocation(photo));
  const auto plain = withoutLocation(photo);
  ASSERT_TRUE(plain);
  EXPECT_EQ(*plain, photoOf("green_wide.webp"));
}

TEST(LocationOfAPhoto, APhotoThatIsCutOffIsRefusedRatherThanHalved) {
  const std::string photo = jpegWithLocation(1);
  for (std::size_t tenth = 1; tenth < 10; ++tenth) {
    const auto plain = withoutLocation(photo.substr(0, photo.size() * tenth / 10));
    EXPECT_FALSE(plain) << tenth;
  }
  for (const char* name : {"corners_rgb.png", "corners.webp"}) {
    const std::string picture = photoOf(name);
    EXPECT_FALSE(withoutLocation(picture.substr(0, picture.size() - 1))) << name;
  }
  EXPECT_FALSE(withoutLocation("testo"));
  EXPECT_FALSE(tellsLocation("testo"));
  EXPECT_FALSE(tellsLocation(photoOf("corners.gif")));
}

TEST(LocationOfAPhoto, AnOrdinaryPhotoTellsNone) {
  for (const char* name : {"corners.jpg", "corners_rgb.png", "corners.webp"})
    EXPECT_FALSE(tellsLocation(photoOf(name)));
}

}  // namespace
}  // namespace kv
