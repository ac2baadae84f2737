#include "platform/transfer/patience.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/transfer/side_by_side.h"
#include "platform/transfer/transfer.h"

namespace kv {

tl::unexpected<Error> transferFailure(int code, std::string text) {
  const ErrorKind kind = code == transferCancelled ? ErrorKind::Cancelled : ErrorKind::Other;
  return fail(kind, "transfer", std::move(text), code);
}

std::string socketText(int number) {
  switch (number) {
    case ECONNREFUSED:
      return "connessione rifiutata";
    case ECONNRESET:
    case EPIPE:
    case ECONNABORTED:
      return "connessione interrotta";
    case ETIMEDOUT:
      return "nessuna risposta";
    case EHOSTUNREACH:
    case ENETUNREACH:
    case ENETDOWN:
      return "host non raggiungibile";
    default:
      return "errore di rete (" + std::generic_category().message(number) + ")";
  }
}

Patience::Patience(std::function<bool()> yield, int silenceSeconds)
    : yield_(std::move(yield)), silence_(std::max(silenceSeconds, 1) * 1000) {}

Result<> Patience::await(std::span<pollfd> descriptors) {
  // Steps are counted rather than measured: a dialog that is open during a step is no silence of the server.
  for (int waited = 0; waited < silence_; waited += step) {
    const int ready = pollSideBySide(descriptors, step);
    if (ready > 0) return {};
    if (ready < 0 && errno != EINTR) return transferFailure(transferNoConnection, socketText(errno));
    if (auto paused = pause(); !paused) return paused;
  }
  return transferFailure(transferSilence, "il server non risponde da " + std::to_string(silence_ / 1000) + " secondi");
}

Result<> Patience::await(int descriptor, short events) {
  pollfd one{descriptor, events, 0};
  return await({&one, 1});
}

Result<> Patience::pause() {
  if (isSideBySide()) ignore(pollSideBySide({}, 0), "whatever is ready is asked about again");
  if (!yield_ || yield_()) return {};
  return transferFailure(transferCancelled, "operazione annullata");
}

bool waitFor(int milliseconds, const std::function<bool()>& yield) {
  for (int waited = 0; waited < milliseconds; waited += Patience::step) {
    ignore(pollSideBySide({}, std::min(Patience::step, milliseconds - waited)), "only time is to pass");
    if (yield && !yield()) return false;
  }
  return true;
}

}  // namespace kv
