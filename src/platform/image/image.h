#pragma once
// What the build needs to know of a picture: its size and one pixel. Bytes come from anywhere and may be damaged.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// Width and height in pixels.
struct ImageSize {
  int width = 0;
  int height = 0;
  friend bool operator==(const ImageSize&, const ImageSize&) = default;
};

/// A colour as red, green, blue, 0 to 255 each.
struct Colour {
  std::uint8_t red = 0, green = 0, blue = 0;
};

/// Width and height of a GIF, JPEG, PNG, BMP or WebP, in pixels, each at least 1. Malformed when the bytes are none of
/// these or their header is damaged, cut off or asks for more than the kind's library takes (PNG a million, JPEG 65500
/// on a side). Only the header is read, of a GIF up to its palette, of the others up to the data: what follows may be
/// damaged.
Result<ImageSize> imageSizeOf(std::string_view bytes);
/// Width and height of a picture file, as imageSizeOf. Failures: as readBytes, Malformed.
Result<ImageSize> imageSize(const std::string& path);
/// The pixel at (0, 0) of a GIF, by its first frame. A transparent pixel gives the colour that its palette entry holds;
/// where the frame leaves the corner free, the background colour counts. Only as much is decoded as the pixel needs.
/// Malformed when it can't be decoded, when the palette lacks its colour, or above 64 million pixels.
Result<Colour> firstPixelOf(std::string_view bytes);
/// The pixel at (0, 0) of a GIF file, as firstPixelOf. Failures: as readBytes, Malformed.
Result<Colour> firstPixel(const std::string& path);

}  // namespace kv
