#pragma once
// The application folder is per user, because the program writes into it: it is filled from the installed data at
// the first start. A later release adds new files and updates a shipped file unless the merchant changed it.

#include <string>

#include "platform/ports/result.h"

namespace kv {

/// The path of this user's application folder: $XDG_DATA_HOME/korvane, else ~/.local/share/korvane.
std::string userApplicationFolder();

/// How many files one update has added, replaced and left alone.
struct ApplicationUpdate {
  int added = 0;    ///< files that weren't there
  int renewed = 0;  ///< files that the merchant had left as shipped
  int kept = 0;     ///< files that the merchant had changed or deleted
};

/// Brings `folder` up to the installed data in `installed`. The list "installed.lst" in `folder` holds the SHA-256
/// and the path of every file as it was shipped; a file whose digest differs from it belongs to the merchant and
/// stays, and so does the absence of one that was shipped before. `folder` is created when missing. The list is
/// written last, so that an interrupted update is done again. A second call with nothing new copies nothing.
Result<ApplicationUpdate> prepareApplicationFolder(const std::string& installed, const std::string& folder);

}  // namespace kv
