#pragma once
// What chance begins with in the tests that use it, and how long they go on. Both come from the environment, so that
// `make soak` runs the same tests for longer.

#include <cstdlib>

namespace kv::test {

/// The whole number that an environment variable holds; `usual` when it is not set.
inline unsigned numberFromEnvironment(const char* name, unsigned usual) {
  const char* asked = std::getenv(name);
  return asked == nullptr ? usual : static_cast<unsigned>(std::strtoul(asked, nullptr, 10));
}

/// 1, or KORVANE_TEST_SEED, which runs another series of operations.
inline unsigned seed() { return numberFromEnvironment("KORVANE_TEST_SEED", 1); }
/// How many seeds are tried, from seed() on: `usual`, or KORVANE_TEST_SEEDS.
inline unsigned seeds(unsigned usual) { return numberFromEnvironment("KORVANE_TEST_SEEDS", usual); }
/// How many operations a series has: KORVANE_TEST_OPERATIONS, or `usual`.
inline int operationsOf(int usual) {
  return static_cast<int>(numberFromEnvironment("KORVANE_TEST_OPERATIONS", static_cast<unsigned>(usual)));
}

}  // namespace kv::test
