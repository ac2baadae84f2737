// The reduction of a bitmap. Both bitmaps are read and written in the order of memory, bottom row first, without a copy
// of either. A source one pixel wide or high has its neighbours read from the padding, the next row or the row after
// the buffer; their weight is 0.
#include <bit>
#include <vector>

#include "media/bitmap/dib_section.h"

namespace kv {
namespace {

constexpr int colourChannels = 3;

/// Two numbers that one instruction computes with: a pixel takes nine sums of the same form.
using Two = double __attribute__((vector_size(2 * sizeof(double))));

/// Added to a number from 0 to 2 to the power of 51 it leaves no room for a fraction: the sum ends in the nearest whole
/// number, a tie in the even one. (std::nearbyint is a call for each number.)
constexpr double noFraction = 6755399441055744.0;  // 1.5 times 2 to the power of 52

Two toWhole(Two value) { return (value + noFraction) - noFraction; }

/// The byte that a number from 0 to 255 is rounded to.
std::uint8_t toByte(double value) {
  return static_cast<std::uint8_t>(std::bit_cast<std::uint64_t>(value + noFraction));
}

/// Where a destination index falls in the source: a whole index, and the weight of the next one.
struct SourceIndex {
  std::size_t whole;
  double fraction;
};

/// The scale is single precision and everything computed with it is double: that is what shops' pictures were made
/// with.
SourceIndex sourceIndex(float scale, int at) {
  const double exact = static_cast<double>(scale) * at;
  const auto whole = static_cast<std::size_t>(exact);
  return {whole, exact - static_cast<double>(whole)};
}

float scaleOf(int source, int destination) {
  return static_cast<float>(static_cast<double>(source - 1) / static_cast<double>(destination));
}

/// Two source rows and the weight of the second.
struct RowPair {
  const std::uint8_t* first;
  const std::uint8_t* second;
  double fraction;
};

/// Two bytes of a row of the source, each between the two rows.
Two between(const RowPair& rows, std::size_t one, std::size_t other) {
  const Two above{static_cast<double>(rows.first[one]), static_cast<double>(rows.first[other])};
  const Two below{static_cast<double>(rows.second[one]), static_cast<double>(rows.second[other])};
  return toWhole((1 - rows.fraction) * above + rows.fraction * below);
}

/// No value is above 255: it lies between two bytes.
void resampleRow(const RowPair& rows, const std::vector<SourceIndex>& columns, std::uint8_t* to) {
  for (const SourceIndex& column : columns) {
    const std::size_t left = column.whole * colourChannels, right = left + colourChannels;
    const double weight = column.fraction;
    const Two leftBlueGreen = between(rows, left, left + 1), rightBlueGreen = between(rows, right, right + 1);
    const Two reds = between(rows, left + 2, right + 2);
    const Two blueGreen = (1 - weight) * leftBlueGreen + weight * rightBlueGreen;
    *to++ = toByte(blueGreen[0]);
    *to++ = toByte(blueGreen[1]);
    *to++ = toByte((1 - weight) * reds[0] + weight * reds[1]);
  }
}

}  // namespace

bool cDIBSection::Resample(cDIBSection& destination) const {
  if (pixels_.isEmpty() || destination.pixels_.isEmpty()) return false;
  const float xScale = scaleOf(Width(), destination.Width());
  const float yScale = scaleOf(Height(), destination.Height());
  std::vector<SourceIndex> columns;
  columns.reserve(static_cast<std::size_t>(destination.Width()));
  for (int x = 0; x < destination.Width(); ++x) columns.push_back(sourceIndex(xScale, x));
  for (int y = 0; y < destination.Height(); ++y) {
    const SourceIndex row = sourceIndex(yScale, y);
    const std::uint8_t* const first = pixels_.data() + row.whole * BytesPerScanLine();
    const std::size_t written = static_cast<std::size_t>(y) * destination.BytesPerScanLine();
    resampleRow({first, first + BytesPerScanLine(), row.fraction}, columns, destination.pixels_.data() + written);
  }
  return true;
}

}  // namespace kv
