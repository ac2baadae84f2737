#include "media/bitmap/light_picture.h"

#include <algorithm>

#include "media/bitmap/dib_section.h"

namespace kv {
namespace {

/// The picture at half its size, each pixel the mean of four. Linear steps alone would skip pixels, and hair and fabric
/// would shimmer.
Result<PixelBuffer> halved(const PixelBuffer& picture) {
  auto half = PixelBuffer::create({std::max(picture.size().width / 2, 1), std::max(picture.size().height / 2, 1)});
  if (!half) return half;
  const int lastRow = picture.size().height - 1, bytes = half->size().width * 3;
  // A picture one pixel wide or high has no neighbour: its pixel counts twice.
  const int step = picture.size().width > 1 ? 3 : 0;
  for (int y = 0; y < half->size().height; ++y) {
    const std::uint8_t* const upper = picture.row(2 * y);
    const std::uint8_t* const lower = picture.row(std::min(2 * y + 1, lastRow));
    std::uint8_t* const to = half->row(y);
    for (int x = 0; x < bytes; ++x) {
      const int from = x / 3 * 6 + x % 3;
      to[x] = static_cast<std::uint8_t>((upper[from] + upper[from + step] + lower[from] + lower[from + step] + 2) / 4);
    }
  }
  return half;
}

}  // namespace

std::string lightSuffix(int width) { return width == 0 ? ".webp" : "." + std::to_string(width) + ".webp"; }

Result<PixelBuffer> narrowed(const PixelBuffer& picture, int width) {
  const ImageSize size = picture.size();
  const int height = std::max(static_cast<int>(std::int64_t{size.height} * width / std::max(size.width, 1)), 1);
  PixelBuffer near = picture;
  while (near.size().width >= 2 * width && near.size().height > 1) {
    auto half = halved(near);
    if (!half) return half;
    near = std::move(*half);
  }
  if (near.size().width == width && near.size().height == height) return near;
  cDIBSection from, to;
  from.CreateFromPicture(std::move(near));
  if (!to.Create(width, height) || !from.Resample(to)) {
    return fail(ErrorKind::Malformed, "picture", "The picture has no such size");
  }
  return to.pixels();
}

std::vector<LightPicture> lightPicturesOf(std::string_view bytes) {
  std::vector<LightPicture> made;
  if (!isOpaqueStill(bytes)) return made;
  const auto pixels = readPixels(bytes);
  if (!pixels) return made;
  const auto add = [&](const Result<std::string>& webp, int width) {
    const bool isLighter = webp && webp->size() < bytes.size();
    if (isLighter) made.push_back({width, *webp});
    return isLighter;
  };
  if (!add(webpOf(*pixels, lightQuality), 0)) return made;
  for (const int width : lightWidths) {
    if (width >= pixels->size().width) continue;
    const auto narrow = narrowed(*pixels, width);
    if (narrow) add(webpOf(*narrow, lightQuality), width);
  }
  return made;
}

}  // namespace kv
