#pragma once
// Compaction of the catalogue at every tenth close. Whatever fails, the shop keeps a catalog.mdb.

#include <functional>
#include <string>

#include "store/shop/session.h"

namespace kv {

/// CompattaCatalogo (compact the catalogue): counts this close in the setting `Times` and, at the tenth, rewrites
/// catalog.mdb without its gaps, unless the setting `Compact` is "0". The catalogue must be closed. The file as it
/// was stays as catalog.tmp until the next time. Silent: after a failure the files keep their last state.
/// The status window is progress with a caption; an empty caption hides it.
void CompattaCatalogo(const std::string& shopFolder, Environment& env);

/// The files that take part in an exchange of the catalogue, in its folder.
struct CatalogueExchange {
  explicit CatalogueExchange(const std::string& shopFolder);
  std::string catalogue;    ///< catalog.mdb
  std::string previous;     ///< catalog.tmp: the catalogue that was exchanged
  std::string replacement;  ///< catalog.tm0: the one to come
};

/// A routine that renames a file; renameFile outside of tests.
using Rename = std::function<Result<>(const std::string& from, const std::string& to)>;

/// Writes the compacted catalogue and swaps it in. The catalogue is held exclusively from before it is read until the
/// new file has its name, so that no other program's change can get lost. InUse when another program has it.
Result<> compactCatalogue(const std::string& shopFolder, const Rename& rename);

/// Renames catalog.mdb to catalog.tmp and catalog.tm0 to catalog.mdb. When the second renaming fails, the first one is
/// undone.
Result<> swapInCompacted(const std::string& shopFolder, const Rename& rename);

/// Restores the catalogue of a shop whose compaction was interrupted between the two renamings: there are catalog.tmp
/// and catalog.tm0 but no catalog.mdb.
void recoverCatalogue(const std::string& shopFolder);

}  // namespace kv
