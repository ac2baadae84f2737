#pragma once
// One measurement of a whole run, in a process of its own, so that its peak memory is its own; with what the runs
// share.

#include <functional>
#include <string>

#include "platform/ports/user_port.h"

namespace kv::bench {

/// What one measured process used.
struct Measured {
  double wall = 0;     // seconds of the measured part
  double cpu = 0;      // seconds of the whole process
  double peakMiB = 0;  // of the whole process
  double written = 0;  // what the work counted
  bool ok = false;
};

/// What the measured part of a process reports: its seconds, and a count of its own, pages or bytes.
struct Timed {
  double wall = 0;
  double written = 0;
};

/// Runs `work` in a child of this process; `ok` is false when it died or reported no time.
Measured inOwnProcess(const std::function<Timed()>& work);

/// Takes over `one` where it is the first or faster.
void keepFaster(Measured& best, const Measured& one);

/// The seconds that `work` took; 0 when it returned false.
double secondsOf(const std::function<bool()>& work);

/// "met" or "MISSED".
const char* verdict(bool met);

/// A user who gives the preset answers; warnings go to the standard error.
class SilentUser final : public UserPort {
 public:
  void message(const std::string& text, Icon icon) override;
  Answer question(const Question& question) override;
  std::string chooseFolder(const std::string& prompt, const std::string& initial) override;
  void progress(const Progress& progress) override;
  bool yield() override;
};

/// An empty folder for temporary files, which goes with everything in it at the end.
class FreshFolder {
 public:
  FreshFolder();
  ~FreshFolder();
  FreshFolder(const FreshFolder&) = delete;
  FreshFolder& operator=(const FreshFolder&) = delete;
  /// Without a "/" at the end.
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace kv::bench
