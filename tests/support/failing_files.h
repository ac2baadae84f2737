#pragma once
// Files whose n-th call fails while the object lives: an opening, a read, a write, a closing (where a disk says that
// bytes are lost), a rename, a removal. Which kinds of calls count can be chosen.

#include <cerrno>
#include <set>
#include <string>

#include "platform/files/file_gate.h"
#include "support/failure_point.h"

namespace kv::test {

/// A gate before the file calls of this process while it lives; the one that was there comes back after it.
class FailingFiles final : public FileGate {
 public:
  /// failing: the call that fails, from 1; 0: none, the calls are only counted. number: the errno it fails with.
  explicit FailingFiles(std::int64_t failing = 0, AfterFailure after = AfterFailure::Works, int number = EIO)
      : point_(failing, after), number_(number), before_(setFileGate(this)) {}
  FailingFiles(const FailingFiles&) = delete;
  FailingFiles& operator=(const FailingFiles&) = delete;
  ~FailingFiles() override { setFileGate(before_); }

  /// Only these steps count and fail; none given: all.
  void onlyAt(std::set<FileStep> steps) { steps_ = std::move(steps); }
  /// Only files whose path ends so count and fail.
  void onlyFor(std::string ending) { ending_ = std::move(ending); }

  /// The errno for a call that is to fail, else 0.
  int refusal(FileStep step, const std::string& path) override {
    if (!steps_.empty() && !steps_.contains(step)) return 0;
    if (!path.ends_with(ending_)) return 0;
    return point_.next() ? number_ : 0;
  }
  /// Calls that counted so far, those that failed included.
  std::int64_t calls() const { return point_.calls(); }
  /// Whether the call that is to fail has been reached.
  bool hasFailed() const { return point_.hasFailed(); }

 private:
  FailurePoint point_;
  int number_;
  std::set<FileStep> steps_;  ///< that count; empty: all
  std::string ending_;        ///< of the paths that count
  FileGate* before_;
};

}  // namespace kv::test
