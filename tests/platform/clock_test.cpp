// The machine's time and random numbers.
#include "platform/ports/clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <set>

namespace kv {
namespace {

TEST(SystemClock, CountsSecondsFrom1970) {
  const auto before = static_cast<double>(std::time(nullptr));
  const double now = systemClock().now();
  // std::time may read a coarser clock, which lags by a tick.
  EXPECT_GE(now, before - 1);
  EXPECT_LE(now, static_cast<double>(std::time(nullptr)) + 2);
}

TEST(SystemRandom, StaysBelowItsLimitAndReachesEveryNumber) {
  std::set<std::uint32_t> seen;
  for (int i = 0; i < 2000; ++i) seen.insert(systemRandom().below(26));
  EXPECT_EQ(seen.size(), 26U);
  EXPECT_EQ(*seen.rbegin(), 25U);
}

TEST(SystemRandom, BelowOneIsZero) { EXPECT_EQ(systemRandom().below(1), 0U); }

TEST(SystemRandom, ALargeLimitIsNotBiasedTowardsSmallNumbers) {
  // With the remainder alone, numbers below a third of 2^32 would come twice as often: half of all, not a third.
  constexpr std::uint32_t limit = 0xAAAAAAAAU;
  int small = 0;
  constexpr int rounds = 20000;
  for (int i = 0; i < rounds; ++i) {
    const std::uint32_t number = systemRandom().below(limit);
    ASSERT_LT(number, limit);
    small += number < limit / 2 ? 1 : 0;
  }
  EXPECT_NEAR(small, rounds * 0.5, 700);  // ten standard deviations; the bias would be 3333
}

}  // namespace
}  // namespace kv
