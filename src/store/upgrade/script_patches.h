#pragma once
// Patches of the site's scripts that a merchant may have changed by hand: each is a search and replace that applies
// where the old line is found. They work on the copies of a build; the merchant's own scripts stay as they are. A
// script that has the mark of the patched generation is left alone, and so is one that can't be read or written.

#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/files/settings.h"

namespace kv {

/// In a script: it has been patched, or was written after the patches.
inline constexpr std::string_view patchedMark = "***1.0.7***";

/// What the patches depend on.
struct PatchFacts {
  const Settings& settings;       ///< switches of single patches; outlives this
  bool singleItemSearch = false;  ///< `singleitem_search`: search results link to the single article
  bool limitedToCustomers =
      false;  ///< one of `regobbl`, `regprices`, `reglist`: what visitors may see or do is limited
};

/// Reads what the patches depend on from the settings of the shop; a column that can't be read is off.
PatchFacts readPatchFacts(Database& catalogue, const Settings& settings);

/// PatchScript (patch the scripts): patches the seven scripts of a folder, unless the setting `NoScUpKor` has a value.
/// Silent.
void PatchScript(std::string folder, const PatchFacts& facts);

/// PatchPhp (patch a PHP script), PatchJs (patch a JavaScript): the patches of one file whose path is given; its name
/// decides which apply. A second run changes nothing. After a failed write the file is as it was.
void PatchPhp(const std::string& file, const PatchFacts& facts);
void PatchJs(const std::string& file, const PatchFacts& facts);

}  // namespace kv
