#pragma once
// Work in a process of its own: what a library does to bytes from anywhere can then cost no more than an answer. A
// crash, endless work or endless memory there becomes an Error here.

#include <functional>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// What the work may use.
struct IsolationLimits {
  std::size_t memory = std::size_t{512} << 20;  ///< bytes, besides what this process has
  std::size_t output = std::size_t{64} << 20;   ///< bytes
  unsigned seconds = 30;                        ///< of the processor
};

/// Receives the result of the work, in pieces of any size.
using IsolatedOutput = std::function<void(std::string_view bytes)>;

/// Runs `work` in a copy of this process, without standard output and error, and gives what it writes. Nothing that it
/// changes in memory or closes is seen here. Malformed when it breaks off or goes beyond a limit, Other when no process
/// can be made.
Result<std::string> runIsolated(const IsolationLimits& limits, const std::function<void(const IsolatedOutput&)>& work);

}  // namespace kv
