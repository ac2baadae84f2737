// Ctrl-C: the first is noted, the second ends the program.

#include "shell/cli/interrupt.h"

#include <gtest/gtest.h>

#include <csignal>

namespace kv {
namespace {

[[noreturn]] void interrupt(int times) {
  noteInterrupts();
  bool noted = true;
  for (int i = 0; i < times; ++i) {
    std::raise(SIGINT);
    noted = noted && wasInterrupted();
  }
  std::_Exit(noted ? 0 : 1);
}

TEST(Interrupt, TheFirstIsNotedAndTheProgramGoesOn) { EXPECT_EXIT(interrupt(1), ::testing::ExitedWithCode(0), ""); }

TEST(Interrupt, TheSecondEndsTheProgram) { EXPECT_EXIT(interrupt(2), ::testing::KilledBySignal(SIGINT), ""); }

TEST(Interrupt, NothingIsNotedBeforeOne) { EXPECT_FALSE(wasInterrupted()); }

}  // namespace
}  // namespace kv
