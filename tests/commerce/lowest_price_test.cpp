// The lowest price of the thirty days before a reduction.
#include "commerce/prices/lowest_price.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kv::test {
namespace {

double day(double n) { return 86400 * n; }
PriceState asked(double n, int price) { return {day(n), Money::ofUnits(price), false}; }
PriceState reduced(double n, int price) { return {day(n), Money::ofUnits(price), true}; }
PriceState gone(double n) { return {day(n), std::nullopt, false}; }

/// "price in days", or "none".
std::string lowest(const std::vector<PriceState>& states, double now) {
  const auto found = lowestBefore(states, day(now));
  if (!found) return "none";
  return std::to_string(found->price.tenThousandths() / 10000) + " in " + std::to_string(found->days);
}

TEST(LowestPriceBefore, AnArticleThatWasNeverSoldHasNone) { EXPECT_EQ(lowest({}, 10), "none"); }

TEST(LowestPriceBefore, IsTheLowestOfTheThirtyDays) {
  EXPECT_EQ(lowest({asked(0, 9), asked(20, 7), asked(25, 8)}, 40), "7 in 30");
}

TEST(LowestPriceBefore, APriceThatEndedBeforeTheThirtyDaysDoesNotCount) {
  EXPECT_EQ(lowest({asked(0, 5), asked(10, 9)}, 40), "9 in 30");
}

TEST(LowestPriceBefore, APriceThatReachesIntoTheThirtyDaysCounts) {
  EXPECT_EQ(lowest({asked(0, 5), asked(10.5, 9)}, 40), "5 in 30");
}

TEST(LowestPriceBefore, AnEarlierOfferCountsOnceItHasEnded) {
  EXPECT_EQ(lowest({asked(0, 9), reduced(20, 4), asked(22, 9)}, 40), "4 in 30");
}

TEST(LowestPriceBefore, ARunningReductionIsComparedWithWhatWasBeforeItsFirstStep) {
  const std::vector<PriceState> states{asked(0, 9), asked(12, 8), reduced(20, 7), reduced(30, 6)};
  EXPECT_EQ(lowest(states, 31), "8 in 20");
  EXPECT_EQ(lowest(states, 400), "8 in 20");
}

TEST(LowestPriceBefore, AnArticleThatIsNewTellsItsOwnDays) {
  EXPECT_EQ(lowest({asked(3, 9)}, 10.2), "9 in 8");
  EXPECT_EQ(lowest({asked(3, 9)}, 3.001), "9 in 1");
}

TEST(LowestPriceBefore, AnArticleThatWasReducedFromTheStartHasNone) {
  EXPECT_EQ(lowest({reduced(0, 9), reduced(10, 8)}, 40), "none");
}

TEST(LowestPriceBefore, DaysOffSaleAreNoPriceAndEndAReduction) {
  EXPECT_EQ(lowest({asked(0, 9), reduced(5, 4), gone(20)}, 40), "4 in 30");
  EXPECT_EQ(lowest({asked(0, 9), gone(5)}, 40), "none");
  EXPECT_EQ(lowest({asked(0, 9), reduced(5, 4), gone(20), reduced(30, 6)}, 40), "4 in 30");
}

TEST(LowestPriceBefore, AStateOfNoDurationIsNoPrice) {
  EXPECT_EQ(lowest({asked(0, 9), asked(20, 3), asked(20, 8)}, 40), "8 in 30");
}

}  // namespace
}  // namespace kv::test
