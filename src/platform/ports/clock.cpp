#include "platform/ports/clock.h"

#include <sys/random.h>

#include <ctime>

namespace kv {
namespace {

class SystemClock final : public Clock {
 public:
  double now() override {
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
  }
};

std::uint32_t randomWord() {
  std::uint32_t word = 0;
  // Up to 256 bytes come in one piece once the system's pool is seeded; only before that can a signal interrupt.
  while (::getrandom(&word, sizeof word, 0) != static_cast<ssize_t>(sizeof word)) {
  }
  return word;
}

class SystemRandom final : public RandomSource {
 public:
  std::uint32_t below(std::uint32_t limit) override {
    if (limit <= 1) return 0;
    // Rejecting the words below 2^32 modulo limit leaves a multiple of limit, so that each remainder is equally likely.
    const std::uint32_t surplus = (0U - limit) % limit;
    for (;;) {
      const std::uint32_t word = randomWord();
      if (word >= surplus) return word % limit;
    }
  }
};

}  // namespace

Clock& systemClock() {
  static SystemClock clock;
  return clock;
}

RandomSource& systemRandom() {
  static SystemRandom random;
  return random;
}

}  // namespace kv
