#pragma once
// The bitmap of the picture dialog: 24 bits for each pixel, and a reduction with linear interpolation in both
// directions. The only code of this folder that touches pixels.

#include <functional>

#include "platform/image/pixels.h"
#include "platform/ports/clock.h"
#include "platform/ports/user_port.h"

namespace kv {

/// A bitmap, or none until Create() or CreateFromPicture(). Copying one copies its pixels.
class cDIBSection {
 public:
  /// A black bitmap of this size in pixels, in place of the one before. False, and there is none, when a side is below
  /// 1 or there are more than mostPixels.
  bool Create(int width, int height);
  /// Takes over a picture that was read. One without pixels leaves no bitmap.
  void CreateFromPicture(PixelBuffer picture);
  /// Gives the picture back and leaves no bitmap.
  PixelBuffer Release();
  /// Frees the bitmap; nothing happens when there is none.
  void ClearUp();

  /// Bytes from one row to the next: the width times 3, padded to a multiple of 4. 0 without a bitmap.
  std::size_t BytesPerScanLine() const { return pixels_.rowBytes(); }
  int Width() const { return pixels_.size().width; }    ///< pixels; 0 without a bitmap
  int Height() const { return pixels_.size().height; }  ///< pixels; 0 without a bitmap
  /// The first byte of the buffer: blue of the left pixel of the bottom row. Null without a bitmap.
  std::uint8_t* DIBSectionBitsPtr() { return pixels_.data(); }
  const std::uint8_t* DIBSectionBitsPtr() const { return pixels_.data(); }
  /// The buffer itself, for a coder.
  const PixelBuffer& pixels() const { return pixels_; }

  /// A part of a bitmap: where it begins, counted from the top left corner, and its size in pixels.
  /// A negative width or height means the whole one of the bitmap that is copied to or from.
  struct Part {
    int x = 0, y = 0, width = -1, height = -1;
  };
  /// Copies a part of `source` to the top left corner of this bitmap. The size is that of the part, by default this
  /// bitmap's own; what lies outside either of them is left out.
  void LoadPictureBlt(const cDIBSection& source, const Part& part);
  void LoadPictureBlt(const cDIBSection& source) { LoadPictureBlt(source, Part{}); }
  /// The reverse: copies a part of this bitmap to (x, y) of `target`.
  void PaintPicture(cDIBSection& target, int x, int y, const Part& part) const;

  /// Puts the picture on the clipboard as a plain bitmap, through `put`, and gives its answer. With `bAsDIB` nothing
  /// is copied: a message says so, and the result is false.
  bool CopyToClipboard(bool bAsDIB, UserPort& user, const std::function<bool(const PixelBuffer&)>& put) const;

  /// Fills the buffer, padding included, with random bytes; `bGray`: the three bytes of a pixel are equal.
  void RandomiseBits(bool bGray, RandomSource& random);

  /// Scales this bitmap into the size of `destination`, which was created before. The scale stops one step short of
  /// the last row and column, so 1 to 1 is no copy; it counts rows as they are in memory, from the bottom.
  /// False when one of the two has no pixels.
  bool Resample(cDIBSection& destination) const;

 private:
  PixelBuffer pixels_;
};

}  // namespace kv
