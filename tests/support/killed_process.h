#pragma once
// A program that is killed in the middle of its work.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <random>

#include "support/test_seed.h"

namespace kv::test {

/// Processes that do the same work. The first one comes to its end, which says how long the work takes; each other one
/// is killed at a moment of chance within that time.
class KilledProcess {
 public:
  void run(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      work();
      ::_exit(0);
    }
    if (longest_ > 0) {
      ::usleep(std::uniform_int_distribution<unsigned>(0, longest_)(chance_));
      ::kill(child, SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    if (longest_ > 0) return;
    const auto taken = std::chrono::steady_clock::now() - begin;
    longest_ = static_cast<unsigned>(std::chrono::duration_cast<std::chrono::microseconds>(taken).count()) + 1;
  }

 private:
  std::mt19937 chance_{seed()};
  unsigned longest_ = 0;  // microseconds that the work takes; 0: not known yet
};

}  // namespace kv::test
