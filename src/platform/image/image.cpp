#include "platform/image/image.h"

#include <cstdlib>
#include <limits>

#include "platform/files/files.h"
#include "platform/image/image_codecs.h"

namespace kv {
namespace {

constexpr std::string_view pngMark = "\x89PNG\r\n\x1a\n";
constexpr std::string_view jpegMark = "\xFF\xD8";

std::int32_t littleNumber(std::string_view bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = (value << 8U) | static_cast<std::uint8_t>(bytes[i]);
  return static_cast<std::int32_t>(value);
}

// BMP is the one kind read here, its sizes being numbers at fixed offsets in the first 26 bytes: 16-bit ones in the
// header of 12 bytes (BITMAPCOREHEADER), signed 32-bit ones in those of 40 and more (BITMAPINFOHEADER and later), of
// which a negative height says that the rows come from top to bottom.
Result<ImageSize> bmpSize(std::string_view bytes) {
  constexpr std::int32_t coreHeader = 12, infoHeader = 40;
  if (bytes.size() < 26) return badPicture("The BMP's header is cut off");
  const std::int32_t header = littleNumber(bytes.substr(14, 4));
  if (header != coreHeader && header < infoHeader) return badPicture("The BMP has no header");
  const std::size_t digits = header == coreHeader ? 2 : 4;
  const std::int32_t width = littleNumber(bytes.substr(18, digits));
  const std::int32_t height = littleNumber(bytes.substr(18 + digits, digits));
  if (width < 1 || height == 0 || height == std::numeric_limits<std::int32_t>::min()) {
    return badPicture("The BMP's size is out of range");
  }
  return ImageSize{width, std::abs(height)};
}

// A film has a picture's name soon enough.
Result<std::string> bytesOf(const std::string& path) {
  if (const auto stamp = fileStamp(path); stamp && stamp->size > mostPictureBytes) {
    return badPicture("The file is too large for a picture");
  }
  return readBytes(path);
}

Error at(const std::string& path, Error error) {
  error.where = path;
  return error;
}

}  // namespace

PictureKind pictureKind(std::string_view bytes) {
  if (bytes.starts_with("GIF87a") || bytes.starts_with("GIF89a")) return PictureKind::Gif;
  if (bytes.starts_with(jpegMark)) return PictureKind::Jpeg;
  if (bytes.starts_with(pngMark)) return PictureKind::Png;
  if (bytes.starts_with("BM")) return PictureKind::Bmp;
  if (bytes.starts_with("RIFF") && bytes.substr(0, 12).ends_with("WEBP")) return PictureKind::Webp;
  return PictureKind::None;
}

Result<ImageSize> imageSizeOf(std::string_view bytes) {
  switch (pictureKind(bytes)) {
    case PictureKind::Gif:
      return gifSize(bytes);
    case PictureKind::Jpeg:
      return jpegSize(bytes);
    case PictureKind::Png:
      return pngSize(bytes);
    case PictureKind::Bmp:
      return bmpSize(bytes);
    case PictureKind::Webp:
      return webpSize(bytes);
    case PictureKind::None:
      break;
  }
  return badPicture("Neither GIF, JPEG, PNG, BMP nor WebP");
}

Result<ImageSize> imageSize(const std::string& path) {
  const auto bytes = bytesOf(path);
  if (!bytes) return fail(at(path, bytes.error()));
  auto size = imageSizeOf(*bytes);
  if (!size) return fail(at(path, size.error()));
  return size;
}

Result<Colour> firstPixel(const std::string& path) {
  const auto bytes = bytesOf(path);
  if (!bytes) return fail(at(path, bytes.error()));
  auto colour = firstPixelOf(*bytes);
  if (!colour) return fail(at(path, colour.error()));
  return colour;
}

}  // namespace kv
