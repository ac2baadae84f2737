// The reduction, against a separate calculation of the same rules, pixel by pixel.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <random>

#include "media/bitmap/dib_section.h"
#include "support/test_seed.h"

namespace kv {
namespace {

/// A bitmap of this size, every byte of it and of its padding by chance.
cDIBSection noise(int width, int height, std::mt19937& chance) {
  cDIBSection made;
  EXPECT_TRUE(made.Create(width, height));
  std::uniform_int_distribution<int> value(0, 255);
  for (std::size_t i = 0; i < made.pixels().byteCount(); ++i) {
    made.DIBSectionBitsPtr()[i] = static_cast<std::uint8_t>(value(chance));
  }
  return made;
}

/// One byte of the source, in the order of memory; 0 outside of it, where only weights of 0 reach.
double byteAt(const cDIBSection& source, int x, int y, int channel) {
  if (x >= source.Width() || y >= source.Height()) return 0;
  const std::size_t row = static_cast<std::size_t>(y) * source.BytesPerScanLine();
  return source.DIBSectionBitsPtr()[row + static_cast<std::size_t>(x * 3 + channel)];
}

int slowByte(const cDIBSection& source, const cDIBSection& to, int x, int y, int channel) {
  const float xScale = static_cast<float>((source.Width() - 1.0) / to.Width());
  const float yScale = static_cast<float>((source.Height() - 1.0) / to.Height());
  const double sx = double{xScale} * x, sy = double{yScale} * y;
  const int ix = static_cast<int>(std::floor(sx)), iy = static_cast<int>(std::floor(sy));
  const double fx = sx - ix, fy = sy - iy;
  const auto column = [&](int at) {
    return std::nearbyint((1 - fy) * byteAt(source, at, iy, channel) + fy * byteAt(source, at, iy + 1, channel));
  };
  const double value = std::nearbyint((1 - fx) * column(ix) + fx * column(ix + 1));
  return static_cast<int>(std::min(value, 255.0));
}

/// The first pixel that differs from the slow calculation; empty when none does.
std::string firstDifference(const cDIBSection& source, const cDIBSection& to) {
  for (int y = 0; y < to.Height(); ++y) {
    for (int x = 0; x < to.Width(); ++x) {
      for (int channel = 0; channel < 3; ++channel) {
        const int made = static_cast<int>(byteAt(to, x, y, channel));
        const int wanted = slowByte(source, to, x, y, channel);
        if (made == wanted) continue;
        return std::to_string(source.Width()) + "x" + std::to_string(source.Height()) + " to " +
               std::to_string(to.Width()) + "x" + std::to_string(to.Height()) + ": (" + std::to_string(x) + ", " +
               std::to_string(y) + ") is " + std::to_string(made) + " and not " + std::to_string(wanted);
      }
    }
  }
  return {};
}

TEST(Resample, EqualsASlowCalculationOverRandomSizes) {
  ASSERT_EQ(std::fegetround(), FE_TONEAREST);
  std::mt19937 chance(test::seed());
  std::uniform_int_distribution<int> side(1, 40);
  for (int i = 0; i < test::operationsOf(1000); ++i) {
    const cDIBSection source = noise(side(chance), side(chance), chance);
    cDIBSection reduced;
    ASSERT_TRUE(reduced.Create(side(chance), side(chance)));
    ASSERT_TRUE(source.Resample(reduced));
    ASSERT_EQ(firstDifference(source, reduced), "");
  }
}

TEST(Resample, OfALargePictureEqualsTheSlowCalculation) {
  std::mt19937 chance(test::seed());
  const cDIBSection source = noise(1201, 803, chance);
  cDIBSection reduced;
  ASSERT_TRUE(reduced.Create(180, 120));
  ASSERT_TRUE(source.Resample(reduced));
  EXPECT_EQ(firstDifference(source, reduced), "");
}

/// A bitmap one row high, of these grey values.
cDIBSection greyRow(const std::vector<std::uint8_t>& values) {
  cDIBSection made;
  EXPECT_TRUE(made.Create(static_cast<int>(values.size()), 1));
  for (std::size_t i = 0; i < values.size() * 3; ++i) made.DIBSectionBitsPtr()[i] = values[i / 3];
  return made;
}

TEST(Resample, OneToOneIsASlightBlurAndNoCopy) {
  const cDIBSection source = greyRow({0, 90, 180});
  cDIBSection same;
  ASSERT_TRUE(same.Create(3, 1));
  ASSERT_TRUE(source.Resample(same));
  EXPECT_EQ(same.DIBSectionBitsPtr()[3], 60) << "two thirds of the way to 90";
  EXPECT_EQ(same.DIBSectionBitsPtr()[6], 120);
}

TEST(Resample, AHalfIsRoundedToTheEvenNumber) {
  for (const auto& [high, wanted] : std::vector<std::pair<std::uint8_t, int>>{{1, 0}, {3, 2}, {5, 2}, {7, 4}}) {
    const cDIBSection source = greyRow({0, high});
    cDIBSection doubled;
    ASSERT_TRUE(doubled.Create(2, 1));
    ASSERT_TRUE(source.Resample(doubled));
    EXPECT_EQ(doubled.DIBSectionBitsPtr()[3], wanted) << int{high};
  }
}

TEST(Resample, TheLastPixelOfTheSourceIsNeverReached) {
  const cDIBSection source = greyRow({10, 10, 10, 250});
  cDIBSection reduced;
  ASSERT_TRUE(reduced.Create(2, 1));
  ASSERT_TRUE(source.Resample(reduced));
  EXPECT_EQ(reduced.DIBSectionBitsPtr()[3], 10) << "index 1.5 of 3";
}

TEST(Resample, WorksFromTheBottomRowUp) {
  cDIBSection source;
  ASSERT_TRUE(source.Create(1, 4));
  const std::uint8_t top = 200;
  std::fill_n(source.DIBSectionBitsPtr() + source.BytesPerScanLine() * 3, 3, top);
  cDIBSection reduced;
  ASSERT_TRUE(reduced.Create(1, 2));
  ASSERT_TRUE(source.Resample(reduced));
  EXPECT_EQ(reduced.pixels().row(0)[0], 0) << "the top row of the source is the one that is left out";
}

TEST(Resample, ASourceOnePixelWideOrHighReadsNothingThatCounts) {
  for (const auto& [width, height] : std::vector<std::pair<int, int>>{{1, 7}, {7, 1}, {1, 1}}) {
    cDIBSection source;
    ASSERT_TRUE(source.Create(width, height));
    for (int y = 0; y < height; ++y) {  // the padding holds another value
      std::uint8_t* const row = source.DIBSectionBitsPtr() + static_cast<std::size_t>(y) * source.BytesPerScanLine();
      std::fill_n(row, source.BytesPerScanLine(), std::uint8_t{255});
      std::fill_n(row, width * 3, std::uint8_t{40});
    }
    cDIBSection scaled;
    ASSERT_TRUE(scaled.Create(5, 5));
    ASSERT_TRUE(source.Resample(scaled));
    for (int y = 0; y < 5; ++y) EXPECT_EQ(scaled.pixels().row(y)[7], 40) << width << "x" << height;
  }
}

TEST(Resample, NeedsTwoBitmaps) {
  cDIBSection none, one;
  ASSERT_TRUE(one.Create(2, 2));
  EXPECT_FALSE(none.Resample(one));
  EXPECT_FALSE(one.Resample(none));
}

}  // namespace
}  // namespace kv
