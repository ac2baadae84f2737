#pragma once
// Long files read in pieces, so that they take no memory.

#include <functional>
#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// Hands the bytes of a file on in pieces of at most 64 KiB. The first failure of `take` ends the reading and is
/// returned; other failures as readBytes.
Result<> readPieces(const std::string& path, const std::function<Result<>(std::string_view)>& take);

}  // namespace kv
