#include "store/upgrade/script_patches.h"

#include "platform/files/files.h"
#include "store/shop/session.h"
#include "store/shop/shop_folders.h"
#include "store/upgrade/patch_table.h"
#include "store/upgrade/script_search.h"

namespace kv {
namespace {

constexpr std::string_view allSwitch = "NoScUpKor";
constexpr std::string_view cartScript = "js2.js";
constexpr std::string_view phpScripts[] = {"lognew.php", "funcs.php",   "kvsearch.php",
                                           "output.php", "kvorder.php", "logcheck.php"};

bool isMet(const ScriptPatch& patch, std::string_view fileName, const PatchFacts& facts) {
  const std::string setting = facts.settings.get(settingsSection, patch.setting);
  if (patch.onlyWhenOn ? setting != "1" : !setting.empty()) return false;
  if (fileName.find(patch.file) == std::string_view::npos) return false;
  if (patch.needs == PatchNeeds::SingleItemSearch) return facts.singleItemSearch;
  return patch.needs == PatchNeeds::Nothing || facts.limitedToCustomers;
}

/// `compact`: the file as it was read, without spaces.
bool isDue(const ScriptPatch& patch, std::string_view compact) {
  const auto holds = [&](std::string_view text) { return compact.find(withoutSpace(text)) != std::string_view::npos; };
  if (!holds(patch.key.empty() ? patch.search : patch.key)) return false;
  if (!patch.newForm.empty() && holds(patch.newForm)) return false;
  // A replacement with its own search text in it would be put in again at each run.
  const bool findsItself = TrovaPatch(patch.replacement, patch.search).isFound();
  return !findsItself || !holds(patch.replacement);
}

void patchFile(const std::string& file, std::span<const ScriptPatch> patches, const PatchFacts& facts) {
  const auto script = readBytes(file);
  if (!script || script->find(patchedMark) != std::string::npos) return;
  const std::string compact = withoutSpace(*script);
  std::string patched = *script;
  for (const ScriptPatch& patch : patches) {
    if (!isMet(patch, baseName(file), facts) || !isDue(patch, compact)) continue;
    patched = SostituisciPatch(patched, patch.search, patch.replacement);
  }
  // What a writer of an earlier release left beside the script when it was killed.
  const std::string unfinished = file + ".tmpupd";
  if (fileExists(unfinished)) ignore(deleteFile(unfinished), "it is no part of the site");
  if (patched == *script) return;
  ignore(writeBytes(file, patched), "a locked script stays as it is, and the build goes on");
}

}  // namespace

PatchFacts readPatchFacts(Database& catalogue, const Settings& settings) {
  const auto isOn = [&](const std::string& column) {
    const auto value = catalogue.scalar("SELECT " + column + " FROM generale");
    return value && asFlag(*value);
  };
  PatchFacts facts{settings};
  facts.singleItemSearch = isOn("singleitem_search");
  facts.limitedToCustomers = isOn("regobbl") || isOn("regprices") || isOn("reglist");
  return facts;
}

void PatchPhp(const std::string& file, const PatchFacts& facts) { patchFile(file, phpPatches(), facts); }
void PatchJs(const std::string& file, const PatchFacts& facts) { patchFile(file, jsPatches(), facts); }

void PatchScript(std::string folder, const PatchFacts& facts) {
  if (!facts.settings.get(settingsSection, allSwitch).empty()) return;
  folder = withoutTrailingSeparator(folder);
  const auto pathOf = [&](std::string_view name) { return findEntry(folder, name).value_or(joinPath(folder, name)); };
  PatchJs(pathOf(cartScript), facts);
  for (const std::string_view name : phpScripts) PatchPhp(pathOf(name), facts);
}

}  // namespace kv
