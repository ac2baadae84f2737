#include "media/bitmap/dib_section.h"

#include <algorithm>
#include <utility>

namespace kv {
namespace {

constexpr const char* noDib = "I don't know how to put a DIB on the clipboard! Copy as bitmap instead!!!";
constexpr int channels = 3;
constexpr std::uint32_t byteValues = 256;

/// A copy from one bitmap to another, corners counted from the top left.
struct BlockCopy {
  int fromX, fromY, toX, toY, width, height;
};

void copyBlock(const PixelBuffer& from, PixelBuffer& to, BlockCopy block) {
  const auto cut = [](int& at, int& other, int& length) {  // an index below 0 moves both corners
    if (at >= 0) return;
    other -= at;
    length += at;
    at = 0;
  };
  cut(block.fromX, block.toX, block.width);
  cut(block.toX, block.fromX, block.width);
  cut(block.fromY, block.toY, block.height);
  cut(block.toY, block.fromY, block.height);
  const int width = std::min({block.width, from.size().width - block.fromX, to.size().width - block.toX});
  const int height = std::min({block.height, from.size().height - block.fromY, to.size().height - block.toY});
  if (width < 1) return;
  for (int y = 0; y < height; ++y) {
    const std::uint8_t* const source = from.row(block.fromY + y) + std::ptrdiff_t{block.fromX} * channels;
    std::copy_n(source, width * channels, to.row(block.toY + y) + std::ptrdiff_t{block.toX} * channels);
  }
}

}  // namespace

bool cDIBSection::Create(int width, int height) {
  ClearUp();
  auto made = PixelBuffer::create({width, height});
  if (!made) return false;
  pixels_ = std::move(*made);
  return true;
}

void cDIBSection::CreateFromPicture(PixelBuffer picture) { pixels_ = std::move(picture); }

PixelBuffer cDIBSection::Release() { return std::exchange(pixels_, {}); }

void cDIBSection::ClearUp() { pixels_ = PixelBuffer(); }

void cDIBSection::LoadPictureBlt(const cDIBSection& source, const Part& part) {
  const int width = part.width < 0 ? Width() : part.width;
  const int height = part.height < 0 ? Height() : part.height;
  copyBlock(source.pixels_, pixels_, {part.x, part.y, 0, 0, width, height});
}

void cDIBSection::PaintPicture(cDIBSection& target, int x, int y, const Part& part) const {
  const int width = part.width < 0 ? Width() : part.width;
  const int height = part.height < 0 ? Height() : part.height;
  copyBlock(pixels_, target.pixels_, {part.x, part.y, x, y, width, height});
}

bool cDIBSection::CopyToClipboard(bool bAsDIB, UserPort& user,
                                  const std::function<bool(const PixelBuffer&)>& put) const {
  if (bAsDIB) {
    user.message(noDib, Icon::None);
    return false;
  }
  return !pixels_.isEmpty() && put && put(pixels_);
}

void cDIBSection::RandomiseBits(bool bGray, RandomSource& random) {
  std::uint8_t value = 0;
  const std::size_t rowBytes = BytesPerScanLine();
  for (std::size_t i = 0; i < pixels_.byteCount(); ++i) {
    const bool isNext = !bGray || i % rowBytes % channels == 0;
    if (isNext) value = static_cast<std::uint8_t>(random.below(byteValues));
    pixels_.data()[i] = value;
  }
}

}  // namespace kv
