#pragma once
// What the user is asked and told of files on the server that the shop no longer has.

#include <string>
#include <vector>

#include "platform/ports/user_port.h"

namespace kv {

/// Whether files of ours may be deleted in a folder of the server; default No. Of many names the first are shown, with
/// their number.
Question cleanUpQuestion(const std::string& folder, const std::vector<std::string>& names);
/// The message for files that the server keeps all the same.
std::string notRemovedText(const std::vector<std::string>& names);

}  // namespace kv
