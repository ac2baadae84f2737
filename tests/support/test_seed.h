#pragma once
// What chance begins with in the tests that use it.

#include <cstdlib>

namespace kv::test {

/// 1, or the number in KORVANE_TEST_SEED, which runs another row of operations.
inline unsigned seed() {
  const char* asked = std::getenv("KORVANE_TEST_SEED");
  return asked == nullptr ? 1U : static_cast<unsigned>(std::strtoul(asked, nullptr, 10));
}

}  // namespace kv::test
