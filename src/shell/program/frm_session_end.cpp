#include "shell/program/frm_session_end.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>

#include "platform/ports/result.h"

namespace kv {
namespace {

constexpr std::array<int, 3> signalsToEnd{SIGINT, SIGTERM, SIGHUP};
constexpr int askAgainMilliseconds = 200;

/// A handler may do little more than write a byte; the event loop sees it at the other end.
/// Source: signal-safety(7).
std::array<int, 2> wire{-1, -1};

extern "C" void wakeEventLoop(int) {
  const int kept = errno;
  const char byte = 0;
  ignore(write(wire[1], &byte, 1), "a full wire rings already");
  errno = kept;
}

void handleSignals(void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  // The handler is used up by the first signal, so the second finds the default: the end of the process.
  action.sa_flags = static_cast<int>(SA_RESETHAND | static_cast<unsigned>(SA_RESTART));
  sigemptyset(&action.sa_mask);
  for (const int signal : signalsToEnd) {
    struct sigaction before {};
    // What whoever started the program wanted ignored stays ignored: nohup(1), a shell's background job.
    if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) continue;
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace

SessionEnd::SessionEnd(QObject* parent) : QObject(parent) {
  if (pipe(wire.data()) != 0) return;
  again_.setInterval(askAgainMilliseconds);
  connect(&again_, &QTimer::timeout, &QCoreApplication::quit);
  auto* ear = new QSocketNotifier(wire[0], QSocketNotifier::Read, this);
  connect(ear, &QSocketNotifier::activated, this, [this, ear] {
    ear->setEnabled(false);
    again_.start();
    QCoreApplication::quit();
  });
  handleSignals(wakeEventLoop);
}

SessionEnd::~SessionEnd() {
  if (wire[0] < 0) return;
  handleSignals(SIG_DFL);
  for (int& end : wire) {
    close(end);
    end = -1;
  }
}

}  // namespace kv
