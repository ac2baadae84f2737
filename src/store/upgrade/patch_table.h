#pragma once
// The patches of the site's scripts as a table: when each applies, what it looks for and what it puts there. For the
// sources of this folder.

#include <span>
#include <string_view>

namespace kv {

/// The setting of the shop that a patch needs.
enum class PatchNeeds { Nothing, SingleItemSearch, LimitsToCustomers };

/// One patch. Search, key and new form are compared without spaces; the replacement goes in as it is.
struct ScriptPatch {
  std::string_view setting = {};  ///< of section AppIni: any value there turns the patch off
  std::string_view file = {};     ///< the name of the file holds it; empty: any file
  PatchNeeds needs = PatchNeeds::Nothing;
  std::string_view search = {};
  std::string_view replacement = {};
  std::string_view key = {};      ///< the file holds it; empty: the search text
  std::string_view newForm = {};  ///< the file doesn't hold it; empty: no such test
  bool onlyWhenOn = false;        ///< the other way round: applies when the setting is "1"
};

/// The patches of PHP scripts and of the JavaScript, in the order in which they are applied.
std::span<const ScriptPatch> phpPatches();
std::span<const ScriptPatch> jsPatches();

}  // namespace kv
