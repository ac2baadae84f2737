#pragma once
// Time and random numbers as interfaces, so that a test can fix both.

#include <cstdint>

namespace kv {

/// The source of the present time.
class Clock {
 public:
  virtual ~Clock() = default;
  /// Seconds since 1970-01-01 00:00 UTC, with fraction.
  virtual double now() = 0;
};

/// The source of random numbers.
class RandomSource {
 public:
  virtual ~RandomSource() = default;
  /// A whole number from 0 to limit - 1, each equally likely. limit is at least 1.
  virtual std::uint32_t below(std::uint32_t limit) = 0;
};

/// The machine's clock. The object lives as long as the program.
Clock& systemClock();
/// The operating system's random numbers, fit for a security token. The object lives as long as the program.
RandomSource& systemRandom();

}  // namespace kv
