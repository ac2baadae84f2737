// How a camera was held, by libexif, and turning a picture upright.
#include <libexif/exif-data.h>

#include <algorithm>
#include <array>
#include <memory>

#include "platform/image/image_codecs.h"

namespace kv {
namespace {

struct ExifEnd {
  void operator()(ExifData* data) const { exif_data_unref(data); }
};

constexpr int lastOrientation = 8;

/// The stored pixel that is shown at (x, y) of the upright picture.
struct StoredPixel {
  int x, y;
};
StoredPixel storedAt(int orientation, ImageSize stored, int x, int y) {
  const int right = stored.width - 1, bottom = stored.height - 1;
  switch (orientation) {
    case 2:
      return {right - x, y};
    case 3:
      return {right - x, bottom - y};
    case 4:
      return {x, bottom - y};
    case 5:
      return {y, x};
    case 6:
      return {y, bottom - x};
    case 7:
      return {right - y, bottom - x};
    case 8:
      return {right - y, x};
    default:
      return {x, y};
  }
}

}  // namespace

int exifOrientation(std::string_view jpeg) {
  const std::unique_ptr<ExifData, ExifEnd> data(exif_data_new());
  if (!data) return 1;
  exif_data_load_data(data.get(), reinterpret_cast<const unsigned char*>(jpeg.data()),
                      static_cast<unsigned>(std::min(std::uint64_t{jpeg.size()}, mostPictureBytes)));
  const ExifEntry* const entry = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
  if (entry == nullptr || entry->format != EXIF_FORMAT_SHORT || entry->components < 1 || entry->size < 2) return 1;
  const int orientation = exif_get_short(entry->data, exif_data_get_byte_order(data.get()));
  return orientation >= 1 && orientation <= lastOrientation ? orientation : 1;
}

Result<PixelBuffer> turnedUpright(PixelBuffer pixels, int orientation) {
  if (orientation == 1) return pixels;
  const ImageSize stored = pixels.size();
  auto upright = PixelBuffer::create(swapsSides(orientation) ? ImageSize{stored.height, stored.width} : stored);
  if (!upright) return upright;
  const ImageSize size = upright->size();
  for (int y = 0; y < size.height; ++y) {
    std::uint8_t* to = upright->row(y);
    for (int x = 0; x < size.width; ++x, to += 3) {
      const StoredPixel from = storedAt(orientation, stored, x, y);
      std::copy_n(pixels.row(from.y) + static_cast<std::ptrdiff_t>(from.x) * 3, 3, to);
    }
  }
  return upright;
}

// A quarter clockwise is what a picture needs whose camera was turned the other way.
Result<PixelBuffer> quarterTurned(PixelBuffer pixels, int quarters) {
  constexpr std::array<int, 4> orientations{1, 6, 3, 8};
  return turnedUpright(std::move(pixels), orientations[static_cast<std::size_t>(((quarters % 4) + 4) % 4)]);
}

Result<PixelBuffer> croppedTo(const PixelBuffer& pixels, const PixelPart& part) {
  const int left = std::max(part.x, 0), top = std::max(part.y, 0);
  const int right = std::min(part.x + part.width, pixels.size().width);
  const int bottom = std::min(part.y + part.height, pixels.size().height);
  auto cropped = PixelBuffer::create({right - left, bottom - top});
  if (!cropped) return cropped;
  for (int y = top; y < bottom; ++y) {
    std::copy_n(pixels.row(y) + static_cast<std::ptrdiff_t>(left) * 3, static_cast<std::ptrdiff_t>(right - left) * 3,
                cropped->row(y - top));
  }
  return cropped;
}

}  // namespace kv
