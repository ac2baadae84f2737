#include "media/choice/picture_crop.h"

#include <algorithm>
#include <cstdlib>

namespace kv {
namespace {

/// The largest size of a shape within another size, each side at least a pixel.
ImageSize sizeOfShape(ImageSize room, const CropShape& shape) {
  if (shape.across == 0) return room;
  const std::int64_t width = std::min<std::int64_t>(room.width, std::int64_t{room.height} * shape.across / shape.down);
  const std::int64_t height = width * shape.down / shape.across;
  return {static_cast<int>(std::max<std::int64_t>(width, 1)), static_cast<int>(std::max<std::int64_t>(height, 1))};
}

PixelPoint within(ImageSize picture, PixelPoint point) {
  return {std::clamp(point.x, 0, picture.width), std::clamp(point.y, 0, picture.height)};
}

}  // namespace

PixelPart largestPart(ImageSize picture, const CropShape& shape) {
  const ImageSize size = sizeOfShape(picture, shape);
  return {(picture.width - size.width) / 2, (picture.height - size.height) / 2, size.width, size.height};
}

PixelPart partBetween(ImageSize picture, PixelPoint from, PixelPoint to, const CropShape& shape) {
  const PixelPoint corner = within(picture, from), other = within(picture, to);
  const ImageSize size =
      sizeOfShape({std::max(std::abs(other.x - corner.x), 1), std::max(std::abs(other.y - corner.y), 1)}, shape);
  // Towards the upper left the part ends at the corner where the mouse was pressed.
  const int left = other.x < corner.x ? corner.x - size.width : corner.x;
  const int top = other.y < corner.y ? corner.y - size.height : corner.y;
  return {std::clamp(left, 0, picture.width - size.width), std::clamp(top, 0, picture.height - size.height), size.width,
          size.height};
}

PixelPart fittedPart(ImageSize picture, PixelPart part, const CropShape& shape) {
  const int width = std::clamp(part.width, 1, picture.width);
  const int room = shape.across == 0 ? std::clamp(part.height, 1, picture.height) : picture.height;
  const ImageSize size = sizeOfShape({width, room}, shape);
  return {std::clamp(part.x, 0, picture.width - size.width), std::clamp(part.y, 0, picture.height - size.height),
          size.width, size.height};
}

}  // namespace kv
