#pragma once
// Which one of many calls fails, for the gates of files and store.

#include <cstdint>

namespace kv::test {

/// What becomes of the calls after the one that failed.
enum class AfterFailure {
  Works,    ///< it was a single failure
  FailsToo  ///< the disk is gone
};

/// Counts calls and tells which of them fail.
class FailurePoint {
 public:
  /// failing: the call that fails, from 1; 0 or less: none, the calls are only counted.
  FailurePoint(std::int64_t failing, AfterFailure after) : failing_(failing), after_(after) {}

  /// Counts a call; true when it is to fail.
  bool next() {
    ++calls_;
    if (failing_ <= 0 || calls_ < failing_) return false;
    return calls_ == failing_ || after_ == AfterFailure::FailsToo;
  }
  /// Calls counted so far.
  std::int64_t calls() const { return calls_; }
  bool hasFailed() const { return failing_ > 0 && calls_ >= failing_; }

 private:
  std::int64_t failing_;
  AfterFailure after_;
  std::int64_t calls_ = 0;
};

}  // namespace kv::test
