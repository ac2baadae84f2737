#pragma once
// Files that hold passwords: nobody but their owner may read them, not even for the moment in which they are written.
// And the file that nobody has asked for, of a program that crashes.

#include <string>
#include <string_view>

#include "platform/ports/result.h"

namespace kv {

/// Takes every permission from group and others; the owner's own stay. Missing when the file isn't there, ReadOnly when
/// it is another user's. A file system without permissions is no failure.
Result<> restrictToOwner(const std::string& path);

/// Replaces a file as writeBytes does; the new one is restricted to its owner before the first byte is in it.
/// Failures as writeBytes, and the old file stays.
Result<> writePrivateBytes(const std::string& path, std::string_view bytes);

/// Has no core file written of this process, and of those it starts, from now on: its memory holds passwords.
void forbidCoreFiles();

}  // namespace kv
