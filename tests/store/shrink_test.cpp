// How a failing series of steps becomes a short one.
#include "support/shrink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using Steps = std::vector<int>;

Steps hundred() {
  Steps steps(100);
  std::iota(steps.begin(), steps.end(), 0);
  return steps;
}

/// Fails when a step 17 comes before a step 80.
bool failsOfTwo(const Steps& steps) {
  const auto first = std::ranges::find(steps, 17);
  return std::find(first, steps.end(), 80) != steps.end();
}

TEST(Shrink, OnlyTheStepsThatItTakesAreLeft) {
  EXPECT_THAT(shrink<int>(hundred(), failsOfTwo, 100000), ElementsAre(17, 80));
}

TEST(Shrink, WithLittleToSpendTheSeriesStillFails) {
  const Steps left = shrink<int>(hundred(), failsOfTwo, 300);
  EXPECT_TRUE(failsOfTwo(left));
  EXPECT_LT(left.size(), 100U);
}

TEST(Shrink, WhatAlwaysFailsNeedsNoStep) {
  EXPECT_THAT(shrink<int>(
                  hundred(), [](const Steps&) { return true; }, 100000),
              ElementsAre());
}

}  // namespace
}  // namespace kv::test
