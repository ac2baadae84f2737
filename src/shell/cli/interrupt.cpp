#include "shell/cli/interrupt.h"

#include <csignal>

namespace kv {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteInterrupt(int) { interrupted = 1; }

}  // namespace

void noteInterrupts() {
  struct sigaction action {};
  action.sa_handler = noteInterrupt;
  // The handler is used up by the first signal, so the second finds the default: the end of the process.
  action.sa_flags = static_cast<int>(SA_RESETHAND | static_cast<unsigned>(SA_RESTART));
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool wasInterrupted() { return interrupted != 0; }

}  // namespace kv
