#pragma once
// Telling two states of a file apart by what is in it.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// SHA-256 of a file's bytes as 64 lower-case hexadecimal digits, read in pieces. Failures as readBytes.
Result<std::string> fileDigest(const std::string& path);

}  // namespace kv
