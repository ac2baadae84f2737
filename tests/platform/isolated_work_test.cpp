// Work in a process of its own: what comes back, and what a crash, endless work and endless memory become.
#include "platform/files/isolated_work.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

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
  EXPECT_EQ(*runIsolated({}, [](const IsolatedOutput&) {}), "");
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

TEST(IsolatedWork, EndlessMemoryIsBounded) {
  IsolationLimits limits;
  limits.memory = std::size_t{64} << 20;
  EXPECT_EQ(kindOfEnd(limits,
                      [](const IsolatedOutput&) {
                        std::vector<std::unique_ptr<char[]>> kept;
                        for (;;) {
                          kept.push_back(std::make_unique<char[]>(std::size_t{1} << 20));
                          std::memset(kept.back().get(), 1, std::size_t{1} << 20);
                        }
                      }),
            ErrorKind::Malformed);
}

}  // namespace
}  // namespace kv
