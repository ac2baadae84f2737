// Work in a process of its own: what comes back, and what a crash, endless work and endless memory become.
#include "platform/files/isolated_work.h"
#include "support/value_of.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <new>
#include <stdexcept>

namespace kv {
namespace {

using Work = std::function<void(const IsolatedOutput&)>;

ErrorKind kindOfEnd(const IsolationLimits& limits, const Work& work) {
  const auto result = runIsolated(limits, work);
  return result ? ErrorKind::Other : result.error().kind;
}

TEST(IsolatedWork, GivesWhatTheWorkWrites) {
  const std::string large(300000, 'x');
  const auto result = runIsolated({}, [&](const IsolatedOutput& output) {
    output("a");
    output(large);
    output("");
    output("z");
  });
  ASSERT_TRUE(result);
  EXPECT_EQ(*result, "a" + large + "z");
  EXPECT_EQ(test::valueOf(runIsolated({}, [](const IsolatedOutput&) {})), "");
}

TEST(IsolatedWork, ChangesNothingHere) {
  int count = 1;
  ASSERT_TRUE(runIsolated({}, [&](const IsolatedOutput&) { count = 2; }));
  EXPECT_EQ(count, 1);
}

TEST(IsolatedWork, ACrashIsAFailure) {
  EXPECT_EQ(kindOfEnd({},
                      [](const IsolatedOutput& output) {
                        output("half");
                        ::raise(SIGSEGV);
                      }),
            ErrorKind::Malformed);
  EXPECT_EQ(kindOfEnd({}, [](const IsolatedOutput&) { throw std::runtime_error("x"); }), ErrorKind::Malformed);
}

TEST(IsolatedWork, EndlessOutputIsBounded) {
  IsolationLimits limits;
  limits.output = 100000;
  EXPECT_EQ(kindOfEnd(limits,
                      [](const IsolatedOutput& output) {
                        for (;;) output("more and more");
                      }),
            ErrorKind::Malformed);
}

// The memory is asked of the system, as an allocator does: that of the sanitizers does not outlive a refusal.
TEST(IsolatedWork, EndlessMemoryIsBounded) {
  IsolationLimits limits;
  limits.memory = std::size_t{64} << 20;
  EXPECT_EQ(kindOfEnd(limits,
                      [](const IsolatedOutput&) {
                        constexpr std::size_t piece = std::size_t{1} << 20;
                        for (;;) {
                          void* memory =
                              ::mmap(nullptr, piece, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                          if (memory == MAP_FAILED) throw std::bad_alloc();
                          std::memset(memory, 1, piece);
                        }
                      }),
            ErrorKind::Malformed);
}

TEST(IsolatedWork, SilenceWithoutEndIsBounded) {
  IsolationLimits limits;
  limits.silence = 1;
  EXPECT_EQ(kindOfEnd(limits,
                      [](const IsolatedOutput&) {
                        for (;;) ::pause();
                      }),
            ErrorKind::Malformed);
}

}  // namespace
}  // namespace kv
