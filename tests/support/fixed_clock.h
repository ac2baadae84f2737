#pragma once
// Time and chance as a test wants them.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "platform/ports/clock.h"

namespace kv::test {

/// Stays at `seconds` (since 1970-01-01 00:00 UTC) until the test sets it forward; `step` is added after each
/// look, for routines that measure a duration.
class FixedClock final : public Clock {
 public:
  explicit FixedClock(double at = 1000000000.0, double stepSeconds = 0) : seconds(at), step(stepSeconds) {}
  double now() override {
    const double result = seconds;
    seconds += step;
    return result;
  }
  double seconds;
  double step;
};

/// Gives the listed numbers in turn and starts again at the end, each brought below the limit by its remainder.
/// Without a list: 0, 1, 2, 3 ...
class FixedRandom final : public RandomSource {
 public:
  FixedRandom() = default;
  FixedRandom(std::initializer_list<std::uint32_t> numbers) : numbers_(numbers) {}
  std::uint32_t below(std::uint32_t limit) override {
    const std::size_t index = calls_++;
    const auto value = numbers_.empty() ? static_cast<std::uint32_t>(index) : numbers_[index % numbers_.size()];
    return value % limit;
  }
  std::size_t calls() const { return calls_; }

 private:
  std::vector<std::uint32_t> numbers_;
  std::size_t calls_ = 0;
};

}  // namespace kv::test
