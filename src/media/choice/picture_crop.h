#pragma once
// The part of a picture that is kept: drawn with the mouse or typed, free or in fixed proportions.

#include <array>
#include <string_view>

#include "platform/image/pixels.h"

namespace kv {

/// A shape that the kept part can be held to.
struct CropShape {
  std::string_view caption;
  int across = 0, down = 0;  ///< the proportions; 0 and 0: any
};
inline constexpr std::array<CropShape, 6> cropShapes{
    {{"Libere", 0, 0}, {"Quadrato", 1, 1}, {"4 : 3", 4, 3}, {"3 : 4", 3, 4}, {"3 : 2", 3, 2}, {"2 : 3", 2, 3}}};

/// A point of a picture, in pixels from its top left corner.
struct PixelPoint {
  int x = 0, y = 0;
};

/// The largest part of this shape, in the middle of a picture; the whole picture when any shape will do.
PixelPart largestPart(ImageSize picture, const CropShape& shape);
/// The part between two points, where a mouse was pressed and where it is now. Points outside the picture count as its
/// edge; the part keeps the first point as its corner, is at least a pixel, and narrows to its shape.
PixelPart partBetween(ImageSize picture, PixelPoint from, PixelPoint to, const CropShape& shape);
/// A part that was typed, moved and narrowed until it is inside the picture and of its shape. Its width decides the
/// height.
PixelPart fittedPart(ImageSize picture, PixelPart part, const CropShape& shape);

}  // namespace kv
