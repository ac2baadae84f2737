#pragma once
// Waiting for the other side without a thread: in short steps, the caller's events between them, and never without an
// end. Every failure of this room carries one of the codes of transfer.h as its number. For the sources of
// platform/transfer.

#include <poll.h>

#include <functional>
#include <span>
#include <string>

#include "platform/ports/result.h"

namespace kv {

/// A failure with a code of transfer.h and a text for the user, in Italian.
tl::unexpected<Error> transferFailure(int code, std::string text);
/// The Italian text for an errno of a socket, "connessione rifiutata" and so on.
std::string socketText(int number);

/// How long a step may wait, and who is let in meanwhile.
class Patience {
 public:
  /// yield: processes events, false cancels; may be empty. silenceSeconds: at least 1.
  Patience(std::function<bool()> yield, int silenceSeconds);

  /// Waits until one of the descriptors has one of its events (poll(2)), whose `revents` are then set.
  /// transferCancelled, or transferSilence after silenceSeconds without any.
  Result<> await(std::span<pollfd> descriptors);
  /// The same for one descriptor.
  Result<> await(int descriptor, short events);
  /// Lets the caller process events during work that doesn't wait. transferCancelled.
  Result<> pause();
  /// The longest that a step waits before the caller is let in, in milliseconds.
  static constexpr int step = 40;

 private:
  std::function<bool()> yield_;
  int silence_;  // milliseconds
};

}  // namespace kv
