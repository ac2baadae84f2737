#pragma once
// Files that hold account data: readable and writable by their owner alone.

#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// Replaces a file by the Windows-1252 bytes of UTF-8 text, in one step, and gives it the permission bits 0600 whatever
/// the old file had; at no moment are the new bytes readable by other users. Failures as writeBytes.
Result<> writePrivateText(const std::string& path, std::string_view text);

}  // namespace kv
