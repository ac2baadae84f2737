#include "platform/transfer/command_runner.h"

namespace kv {
namespace {

constexpr int serverLeaves = transferOther + 421;

}  // namespace

bool endsConnection(int code) {
  return code == transferNoConnection || code == transferSilence || code == transferNotTrusted ||
         code == transferCancelled || code == serverLeaves;
}

TransferCompletion CommandRunner::run(int silenceSeconds, const Work& work) {
  if (isBusy_) return {transferOther, "un'altra operazione è in corso", {}};
  isBusy_ = true;
  isAborted_ = false;
  Patience patience([this] { return !isAborted_ && (!yield || yield()) && !isAborted_; }, silenceSeconds);
  const auto done = work(patience);
  isBusy_ = false;
  if (done) return {transferDone, *done, {}};
  return {done.error().number, done.error().what, {}};
}

}  // namespace kv
