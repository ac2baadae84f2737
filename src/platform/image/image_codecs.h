#pragma once
// The pictures that a library reads, by kind; image.h and pixels.h tell the kinds apart. For the sources of this
// folder.

#include <string>
#include <string_view>

#include "platform/image/image.h"
#include "platform/image/pixels.h"

namespace kv {

/// The kinds of pictures, told by their first bytes.
enum class PictureKind { None, Gif, Jpeg, Png, Bmp, Webp };
/// The kind that bytes begin like; None for any other bytes.
PictureKind pictureKind(std::string_view bytes);

/// The error of a picture that can't be read; `what` says why.
inline tl::unexpected<Error> badPicture(const char* what) { return fail(ErrorKind::Malformed, "picture", what); }

// Each takes the bytes of a whole file of its kind. The size is at least 1 by 1; Malformed when the library finds none.

/// The size of a GIF by giflib: that of the logical screen.
Result<ImageSize> gifSize(std::string_view bytes);
/// The size of a JPEG by libjpeg.
Result<ImageSize> jpegSize(std::string_view bytes);
/// The size of a PNG by libpng.
Result<ImageSize> pngSize(std::string_view bytes);
/// The size of a WebP by libwebp: that of the canvas.
Result<ImageSize> webpSize(std::string_view bytes);

// Each gives the pixels as they are stored, on white; Malformed for damage, bytes that end too early, too many pixels.

/// The pixels of a GIF's first frame on its logical screen.
Result<PixelBuffer> gifPixels(std::string_view bytes);
/// The pixels of a JPEG, not turned.
Result<PixelBuffer> jpegPixels(std::string_view bytes);
/// The pixels of a PNG.
Result<PixelBuffer> pngPixels(std::string_view bytes);
/// The pixels of a WebP; of an animation, the first frame on its canvas.
Result<PixelBuffer> webpPixels(std::string_view bytes);

/// How the camera held a picture, 1 to 8 as EXIF numbers it; 1, upright, when a JPEG says nothing or nonsense.
/// Source: CIPA DC-008, tag 274.
int exifOrientation(std::string_view jpeg);
/// Whether an orientation exchanges width and height.
constexpr bool swapsSides(int orientation) { return orientation >= 5; }
/// The picture upright, of pixels stored in that orientation.
Result<PixelBuffer> turnedUpright(PixelBuffer pixels, int orientation);

/// The colour profile that a PNG carries; empty when there is none or it is damaged.
std::string pngProfile(std::string_view bytes);
/// Brings the colours of a picture whose file `bytes` carries a profile to those of a screen (sRGB). Nothing changes
/// without a profile of three colours that can be read.
void toScreenColours(PixelBuffer& pixels, std::string_view bytes);

/// isOpaqueStill of a WebP, as its header says.
bool isOpaqueStillWebp(std::string_view bytes);
/// isOpaqueStill of a PNG, as the parts before its pixels say.
bool isOpaqueStillPng(std::string_view bytes);

/// Lays `width` pixels of blue, green, red and opacity on white.
void layOnWhite(const std::uint8_t* from, int width, std::uint8_t* to);

}  // namespace kv
