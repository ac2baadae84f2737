// The order of the rows of a sheet against a plain comparison of what they hold.

#include "shell/sheet/row_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

namespace kv::test {
namespace {

template <class Held>
using Rows = std::vector<std::pair<ShopPlace, Held>>;

template <class Held>
std::vector<std::int64_t> compared(Rows<Held> rows, bool descending) {
  std::ranges::sort(rows, [&](const auto& one, const auto& other) {
    if (one.second != other.second) return descending ? other.second < one.second : one.second < other.second;
    return one.first < other.first;
  });
  std::vector<std::int64_t> IDs;
  for (const auto& [place, held] : rows) IDs.push_back(place.ID);
  return IDs;
}

template <class Held>
std::vector<std::int64_t> ordered(const Rows<Held>& rows, bool descending) {
  RowOrder order;
  for (const auto& [place, held] : rows) order.add(place, held);
  return order.sorted(descending);
}

/// Rows whose positions are in no order of their own; some ranks and positions are equal.
template <class Held, class Draw>
Rows<Held> drawn(std::mt19937& random, std::size_t count, Draw&& draw) {
  Rows<Held> rows;
  for (std::size_t i = 0; i < count; ++i)
    rows.push_back({{random() % 3, static_cast<std::int64_t>(random() % 5) - 2, 0}, draw()});
  for (std::size_t i = 0; i < count; ++i) rows[i].first.ID = static_cast<std::int64_t>(count - i);
  return rows;
}

TEST(TheOrderOfRows, IsThatOfTheBytesOfTheirTexts) {
  std::mt19937 random(7);
  const std::vector<std::string> pieces{
      "",        "a", "b", std::string(1, '\0'), "\xff", "vaso blu", "vaso blu ", "piatto fondo", std::string(8, '\0'),
      "\xc3\xa9"};
  for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{20}, std::size_t{3000}}) {
    const auto rows = drawn<std::string>(random, count, [&] {
      std::string text = random() % 4 == 0 ? "" : "Ciotola in ceramica dipinta ";
      for (auto left = random() % 4; left > 0; --left) text += pieces[random() % pieces.size()];
      return text;
    });
    EXPECT_EQ(ordered(rows, false), compared(rows, false)) << count;
    EXPECT_EQ(ordered(rows, true), compared(rows, true)) << count;
  }
}

TEST(TheOrderOfRows, IsThatOfTheirNumbers) {
  std::mt19937 random(11);
  const std::vector<double> numbers{0, -0.0, -1, 1, 0.5, -0.5, 1e300, -1e300, 9007199254740993.0, 22};
  const auto rows = drawn<double>(random, 500, [&] { return numbers[random() % numbers.size()]; });
  EXPECT_EQ(ordered(rows, false), compared(rows, false));
  EXPECT_EQ(ordered(rows, true), compared(rows, true));
}

}  // namespace
}  // namespace kv::test
