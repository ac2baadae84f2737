#include "platform/image/pixels.h"

#include "platform/files/files.h"
#include "platform/image/image_codecs.h"

namespace kv {
namespace {

Result<PixelBuffer> storedPixels(std::string_view bytes, PictureKind kind) {
  switch (kind) {
    case PictureKind::Gif:
      return gifPixels(bytes);
    case PictureKind::Jpeg:
      return jpegPixels(bytes);
    case PictureKind::Png:
      return pngPixels(bytes);
    case PictureKind::Webp:
      return webpPixels(bytes);
    case PictureKind::Bmp:
    case PictureKind::None:
      break;
  }
  return badPicture("Neither GIF, JPEG, PNG nor WebP");
}

// A pipe or a socket would be waited for, and a film has a picture's name soon enough.
Result<std::string> pictureBytes(const std::string& path) {
  if (!fileExists(path)) return fail(ErrorKind::Missing, path, "no such file");
  const auto stamp = fileStamp(path);
  if (!stamp) return fail(stamp.error());
  if (stamp->size > mostPictureBytes) return fail(ErrorKind::Malformed, path, "The file is too large for a picture");
  return readBytes(path);
}

template <class Value>
Result<Value> ofFile(const std::string& path, Result<Value> (*read)(std::string_view)) {
  const auto bytes = pictureBytes(path);
  if (!bytes) return fail(bytes.error());
  auto value = read(*bytes);
  if (!value) {
    Error error = value.error();
    error.where = path;
    return fail(std::move(error));
  }
  return value;
}

}  // namespace

Result<PixelBuffer> PixelBuffer::create(ImageSize size) {
  if (size.width < 1 || size.height < 1) return badPicture("The picture has no size");
  if (std::int64_t{size.width} * size.height > mostPixels) return badPicture("The picture has too many pixels");
  PixelBuffer made;
  made.size_ = size;
  // Of a picture one pixel wide, the pixel beside the extra row's reaches two bytes beyond that row.
  constexpr std::size_t onePixelMore = 4;
  made.bytes_.resize(made.rowBytes() * (static_cast<std::size_t>(size.height) + 1) + onePixelMore);
  return made;
}

void layOnWhite(const std::uint8_t* from, int width, std::uint8_t* to) {
  for (int x = 0; x < width; ++x, from += 4, to += 3) {
    const int opacity = from[3];
    for (int channel = 0; channel < 3; ++channel) {
      to[channel] = static_cast<std::uint8_t>((from[channel] * opacity + 255 * (255 - opacity) + 127) / 255);
    }
  }
}

Result<PixelBuffer> readPixels(std::string_view bytes) {
  const PictureKind kind = pictureKind(bytes);
  auto pixels = storedPixels(bytes, kind);
  if (pixels) toScreenColours(*pixels, bytes);
  if (!pixels || kind != PictureKind::Jpeg) return pixels;
  return turnedUpright(std::move(*pixels), exifOrientation(bytes));
}

Result<PixelBuffer> readPixelsOf(const std::string& path) { return ofFile(path, readPixels); }

// Browsers turn a JPEG as its camera says, and no other kind.
Result<ImageSize> shownSizeOf(std::string_view bytes) {
  auto size = imageSizeOf(bytes);
  if (size && pictureKind(bytes) == PictureKind::Jpeg && swapsSides(exifOrientation(bytes))) {
    std::swap(size->width, size->height);
  }
  return size;
}

Result<ImageSize> shownSize(const std::string& path) { return ofFile(path, shownSizeOf); }

bool isOpaqueStill(std::string_view bytes) {
  switch (pictureKind(bytes)) {
    case PictureKind::Jpeg:
      return true;
    case PictureKind::Png:
      return isOpaqueStillPng(bytes);
    case PictureKind::Webp:
      return isOpaqueStillWebp(bytes);
    default:
      return false;
  }
}

}  // namespace kv
