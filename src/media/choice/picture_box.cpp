#include "media/choice/picture_box.h"

#include <algorithm>
#include <charconv>

#include "platform/image/pixels.h"

namespace kv {
namespace {

int storedLimit(const Settings& settings, std::string_view key) {
  return limitOf(settings.get(loadImageSection, key)).value_or(usualLimit);
}

/// a times b by c, its whole part but at least 1.
int part(std::int64_t a, std::int64_t b, std::int64_t c) {
  return static_cast<int>(std::max<std::int64_t>(a * b / c, 1));
}

}  // namespace

LoadImageSettings readLoadImage(const Settings& settings) {
  return {settings.get(loadImageSection, "Path"),
          settings.get(loadImageSection, "MaxSize") == "1",
          {storedLimit(settings, "MaxWidth"), storedLimit(settings, "MaxHeight")},
          settings.get(loadImageSection, "NoLocation") == "1"};
}

Result<> storeLoadImage(Settings& settings, const LoadImageSettings& values) {
  Result<> stored = settings.set(loadImageSection, "Path", values.path);
  if (stored) stored = settings.set(loadImageSection, "MaxSize", values.fits ? "1" : "0");
  if (stored) stored = settings.set(loadImageSection, "MaxWidth", std::to_string(values.limits.width));
  if (stored) stored = settings.set(loadImageSection, "MaxHeight", std::to_string(values.limits.height));
  if (stored) stored = settings.set(loadImageSection, "NoLocation", values.dropsLocation ? "1" : "0");
  return stored;
}

std::optional<int> limitOf(std::string_view text) {
  int limit = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), limit);
  if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
  if (limit < leastLimit || limit > mostLimit) return std::nullopt;
  return limit;
}

// In whole numbers: with floating point the height of a square comes out below the box in one case of fourteen. The
// height after the narrowing, height * box / width, is compared as a fraction, before its whole part is taken.
ImageSize fittedSize(ImageSize size, ImageSize limits) {
  const bool isNarrowed = size.width > limits.width;
  const std::int64_t width = isNarrowed ? limits.width : size.width;
  if (std::int64_t{size.height} * width > std::int64_t{limits.height} * size.width) {
    return {part(size.width, limits.height, size.height), limits.height};
  }
  if (!isNarrowed) return size;
  return {limits.width, part(size.height, limits.width, size.width)};
}

bool canBeStored(ImageSize size) {
  constexpr int longestSide = 32767;
  return size.width <= longestSide && size.height <= longestSide;
}

bool canBeDecoded(ImageSize size) { return std::int64_t{size.width} * size.height <= mostPixels; }

int centredOffset(int frame, int picture) { return picture < frame ? (frame - picture) / 2 : 0; }

}  // namespace kv
