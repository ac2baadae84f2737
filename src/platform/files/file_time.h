#pragma once
// The time of the last change of a file, kept by whoever replaces a file without changing what it means.

#include <cstdint>
#include <string>

#include "platform/ports/result.h"

namespace kv {

/// Sets the time of a file's last change, in nanoseconds since 1970-01-01 00:00 UTC. Missing when it isn't there,
/// ReadOnly when the file belongs to somebody else.
Result<> setFileTime(const std::string& path, std::int64_t nanoseconds);

}  // namespace kv
