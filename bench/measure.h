#pragma once
// One measurement of a whole run, in a process of its own, so that its peak memory is its own.

#include <functional>

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

/// Makes `best` the measurement that took less time; one that failed counts only as long as there is no other.
void keepFaster(Measured& best, const Measured& one);

/// "met" or "MISSED".
const char* verdict(bool met);
/// Prints a ratio with the bar that it must not pass.
void printBar(const char* name, double ratio, double bar);

}  // namespace kv::bench
