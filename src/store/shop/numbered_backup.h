#pragma once
// Numbered backups: whole copies of the catalogue in the shop folder, catalog.000 to catalog.999, made before an import
// replaces its rows. None is ever overwritten or deleted.

#include <string>
#include <vector>

#include "store/shop/session.h"

namespace kv {

/// The names of the numbered backups of a shop, sorted: catalog.* that end in a point and three digits.
std::vector<std::string> numberedBackups(const std::string& shopFolder);

/// CreaBackup (make a backup): copies the catalogue to the number after the last one, and gives the copy's name. An
/// open catalogue is copied through the engine, which keeps its lock. An empty text when the copy can't be made, and
/// after catalog.999; then no file is left. A file of such a name is a whole copy, whenever the program was killed.
std::string CreaBackup(Session& session, const std::string& shopFolder);

}  // namespace kv
