#pragma once
// What the build asks of a picture: its size and one pixel. Bytes come from anywhere and may be damaged.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace kv {

struct ImageSize {
  int width = 0;
  int height = 0;
};

/// A colour as red, green, blue, 0 to 255 each.
struct Colour {
  std::uint8_t red = 0, green = 0, blue = 0;
};

/// Width and height of a GIF, JPEG, PNG or BMP, in pixels, each at least 1. Malformed when the bytes are none of these
/// or end before the size. Only the headers are read: what follows them may be damaged.
Result<ImageSize> imageSizeOf(std::string_view bytes);
/// The same of a file. Failures: as readBytes, Malformed.
Result<ImageSize> imageSize(const std::string& path);
/// The pixel at (0, 0) of a GIF, by its first frame. A transparent pixel gives the colour that its palette entry holds;
/// where the frame leaves the corner free, the background colour counts. Only as much is decoded as the pixel needs.
/// Malformed when it can't be decoded or is larger than 64 million pixels.
Result<Colour> firstPixelOf(std::string_view bytes);
Result<Colour> firstPixel(const std::string& path);

}  // namespace kv
