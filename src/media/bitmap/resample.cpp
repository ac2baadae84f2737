// The reduction of a bitmap. Both bitmaps are read and written in the order of memory, bottom row first, without a copy
// of either. A source one pixel wide or high has its neighbours read from the padding, the next row or the row after
// the buffer; their weight is 0.
#include <algorithm>
#include <vector>

#include "media/bitmap/dib_section.h"

namespace kv {
namespace {

constexpr int colourChannels = 3;
constexpr double highest = 255;

/// The nearest whole number, a tie to the even one, of a number from 0 to 2 to the power of 51: adding this constant
/// leaves no room for a fraction. (std::nearbyint is a call for each of nine numbers in every pixel.)
double toWhole(double value) {
  constexpr double noFraction = 6755399441055744.0;  // 1.5 times 2 to the power of 52
  return (value + noFraction) - noFraction;
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

/// One byte of a source column between the two rows.
double between(const RowPair& rows, std::size_t at) {
  return toWhole((1 - rows.fraction) * rows.first[at] + rows.fraction * rows.second[at]);
}

void resampleRow(const RowPair& rows, const std::vector<SourceIndex>& columns, std::uint8_t* to) {
  for (const SourceIndex& column : columns) {
    const std::size_t left = column.whole * colourChannels;
    for (std::size_t channel = 0; channel < colourChannels; ++channel) {
      const double value = (1 - column.fraction) * between(rows, left + channel) +
                           column.fraction * between(rows, left + colourChannels + channel);
      *to++ = static_cast<std::uint8_t>(std::min(toWhole(value), highest));
    }
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
