#pragma once
// One measurement of a whole run, in a process of its own, so that its peak memory is its own.

#include <functional>
#include <string>

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

/// The seconds that `work` took; 0 when it returned false.
double secondsOf(const std::function<bool()>& work);

/// Runs a measurement in a fresh folder, which goes afterwards, and gives its exit status; `quick` when the first
/// argument is --quick.
int measureInFolder(int argc, char** argv, const std::function<int(const std::string& folder, bool quick)>& run);

/// "met" or "MISSED".
const char* verdict(bool met);

}  // namespace kv::bench
