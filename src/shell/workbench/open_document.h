#pragma once
// Opening a file or an address with the program that the desktop has for it.

#include <functional>
#include <string>

#include "platform/files/settings.h"

namespace kv {

/// Asks the desktop to open a file or address, with a working folder that may be empty. A result of 32 or above is a
/// success.
using DocumentOpener = std::function<int(const std::string& file, const std::string& folder)>;
inline constexpr int openedWell = 32;

/// ApriDocumento (open a document): true on failure. With an empty `file` nothing happens. When the first attempt fails
/// and `cartella` is given, the full path is tried once more, unless the setting `previewretry` is other than "on"; an
/// empty setting is stored as "on".
bool ApriDocumento(const std::string& file, const std::string& cartella, Settings& settings,
                   const DocumentOpener& open);

}  // namespace kv
