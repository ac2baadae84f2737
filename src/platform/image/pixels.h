#pragma once
// The pixels of pictures, read from the bytes of any kind and written as JPEG. Bytes come from anywhere: whatever they
// say of themselves, memory is bounded by mostPixels, and what is damaged or cut off is a failure rather than half a
// picture.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/image/image.h"

namespace kv {

/// The most pixels of a picture that is decoded; 64 million are 192 MB.
inline constexpr std::int64_t mostPixels = 64'000'000;
/// The most bytes of a picture file that is read.
inline constexpr std::uint64_t mostPictureBytes = std::uint64_t{256} << 20;

/// A picture of three bytes for each pixel: blue, green, red. In memory the bottom row comes first, as in a
/// device-independent bitmap of positive height; row() counts from the top, and coders use row().
/// Each row is padded to a multiple of four bytes. A row and a pixel of zeros follow the last one, so that a reader of
/// neighbouring pixels may look one pixel and one row too far.
class PixelBuffer {
 public:
  /// No picture: 0 by 0.
  PixelBuffer() = default;
  /// A black picture. Malformed when a side is below 1 or there are more than mostPixels.
  static Result<PixelBuffer> create(ImageSize size);

  ImageSize size() const { return size_; }
  bool isEmpty() const { return bytes_.empty(); }
  /// The bytes of a row, padding included; 0 without a picture.
  std::size_t rowBytes() const { return paddedRow(size_.width); }
  /// The bytes of all rows, the extra one left out.
  std::size_t byteCount() const { return rowBytes() * static_cast<std::size_t>(size_.height); }
  /// The first byte in memory, that of the bottom row; null without a picture.
  std::uint8_t* data() { return bytes_.data(); }
  const std::uint8_t* data() const { return bytes_.data(); }
  /// The first byte of a row, counted from the top: 0 to height - 1.
  std::uint8_t* row(int fromTop) { return bytes_.data() + offsetOf(fromTop); }
  const std::uint8_t* row(int fromTop) const { return bytes_.data() + offsetOf(fromTop); }

  /// The bytes of a row of `width` pixels: the next multiple of four.
  static std::size_t paddedRow(int width) { return (static_cast<std::size_t>(width) * 3 + 3) & ~std::size_t{3}; }

 private:
  std::size_t offsetOf(int fromTop) const { return rowBytes() * static_cast<std::size_t>(size_.height - 1 - fromTop); }
  ImageSize size_;
  std::vector<std::uint8_t> bytes_;
};

/// The pixels of a GIF (its first frame), JPEG, PNG or WebP (the first picture of an animation), upright: the turn that
/// a camera has noted in a JPEG is applied. What is transparent shows white; colours with a profile are those of sRGB.
/// CMYK and 16-bit colours are reduced to what a screen shows. Malformed, `what` saying why, when the bytes are none of
/// these, damaged or cut off, or when there are more than mostPixels.
Result<PixelBuffer> readPixels(std::string_view bytes);
/// The pixels of a picture file, as readPixels. Missing when it is no regular file, Malformed above mostPictureBytes;
/// other failures as readBytes.
Result<PixelBuffer> readPixelsOf(const std::string& path);

/// Width and height in pixels as a browser shows the picture: imageSizeOf, with the turn that a camera has noted.
Result<ImageSize> shownSizeOf(std::string_view bytes);
/// The same of a picture file. Failures: as readPixelsOf.
Result<ImageSize> shownSize(const std::string& path);

/// A part of a picture, in pixels from its top left corner.
struct PixelPart {
  int x = 0, y = 0, width = 0, height = 0;
  friend bool operator==(const PixelPart&, const PixelPart&) = default;
};
/// The picture turned clockwise by quarters: 0 to 3, any other number by its remainder.
Result<PixelBuffer> quarterTurned(PixelBuffer pixels, int quarters);
/// A part of a picture, less what lies outside it. Malformed when nothing is left.
Result<PixelBuffer> croppedTo(const PixelBuffer& pixels, const PixelPart& part);

/// The bytes of a JPEG of this quality, 0 to 100, with libjpeg's usual settings.
/// Malformed without a picture, or when a side is longer than the 65500 pixels of a JPEG.
Result<std::string> jpegOf(const PixelBuffer& pixels, int quality);
/// The bytes of a WebP of this quality, 0 to 100.
/// Malformed without a picture, or when a side is longer than the 16383 pixels of a WebP.
Result<std::string> webpOf(const PixelBuffer& pixels, int quality);
/// Whether a picture is still and hides what is below it, so that its pixels are all there is to it: a JPEG, or a PNG
/// or WebP without opacity and animation. False for a GIF, for any other bytes and for damaged ones.
bool isOpaqueStill(std::string_view bytes);

}  // namespace kv
