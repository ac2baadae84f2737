#pragma once
// Telling two states of a file or of bytes apart by what is in them.

#include <functional>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// SHA-256 of a file's bytes as 64 lower-case hexadecimal digits, read in pieces. goOn: asked every MiB;
/// false ends the reading. Failures as readBytes, Cancelled.
Result<std::string> fileDigest(const std::string& path, const std::function<bool()>& goOn = {});

/// SHA-256 of bytes in memory, written likewise.
std::string bytesDigest(std::string_view bytes);

}  // namespace kv
