#pragma once
// Compaction of the catalogue at every tenth close. Whatever fails, the shop keeps a catalog.mdb.

#include <functional>
#include <string>

#include "store/shop/session.h"

namespace kv {

/// CompattaCatalogo (compact the catalogue): counts this close in the setting `Times` and, at the tenth, rewrites
/// catalog.mdb without its gaps, unless the setting `Compact` is "0". The catalogue must be closed. The file as it
/// was stays as catalog.tmp until the next time. Silent: a failure leaves the files in their last state.
/// The status window is progress with a caption; an empty caption hides it.
void CompattaCatalogo(const std::string& shopFolder, Environment& env);

/// How a file gets a new name; renameFile outside of tests.
using Rename = std::function<Result<>(const std::string& from, const std::string& to)>;

/// Writes the compacted catalogue and swaps it in. The catalogue is held exclusively from before it is read until the
/// new file has its name, so that no other program's change can get lost. InUse when another program has it.
Result<> compactCatalogue(const std::string& shopFolder, const Rename& rename);

/// Puts catalog.tm0 in the place of catalog.mdb, which becomes catalog.tmp. When the second renaming fails the first
/// is taken back.
Result<> swapInCompacted(const std::string& shopFolder, const Rename& rename);

/// Puts back the catalogue of a shop whose compaction was cut off between the two renamings, which is told by
/// catalog.tmp and catalog.tm0 without a catalog.mdb.
void recoverCatalogue(const std::string& shopFolder);

}  // namespace kv
