#pragma once
// A picture of a shop in lighter forms for the web, beside the file that every browser shows.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/image/pixels.h"

namespace kv {

/// The widths in pixels that wider pictures are offered in as well, for narrow screens.
inline constexpr std::array<int, 2> lightWidths{480, 960};
/// The WebP quality of all of them.
inline constexpr int lightQuality = 80;

/// One lighter form.
struct LightPicture {
  int width = 0;      ///< one of lightWidths; 0: the whole picture
  std::string bytes;  ///< a WebP
};

/// What is added to the name of a picture's file for a form of it: ".webp", ".480.webp", ".960.webp".
std::string lightSuffix(int width);

/// The lighter forms of a picture's file: the whole picture first, then those of lightWidths that are narrower. Only
/// forms with fewer bytes than the file; none when the whole one isn't, or when the picture can't be read, moves, or
/// lets through what is below it.
std::vector<LightPicture> lightPicturesOf(std::string_view bytes);

/// A picture narrowed to a width below its own, in its proportions. Each pixel is the mean of those it covers, as far
/// as halves go; linear between those.
Result<PixelBuffer> narrowed(const PixelBuffer& picture, int width);

}  // namespace kv
