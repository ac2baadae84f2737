#pragma once
// One command at a time, however long its server takes: what the connections of all protocols share. For the sources of
// platform/transfer.

#include <functional>
#include <string>

#include "platform/transfer/patience.h"
#include "platform/transfer/transfer.h"

namespace kv {

/// Whether nothing more can be said over the connection after a failure of this code.
bool endsConnection(int code);

/// Runs one command of a transfer at a time.
class CommandRunner {
 public:
  /// What a command does; its text becomes that of the completion.
  using Work = std::function<Result<std::string>(Patience& patience)>;

  /// Processes events while a command waits, false cancels it; may be empty.
  std::function<bool()> yield;

  /// Whether a command is running.
  bool isBusy() const { return isBusy_; }
  /// Runs a command. transferOther within another one; its waits end with transferCancelled after abort().
  TransferCompletion run(int silenceSeconds, const Work& work);
  /// Ends the running command at its next look.
  void abort() { isAborted_ = true; }

 private:
  bool isBusy_ = false;
  bool isAborted_ = false;
};

}  // namespace kv
