#include "shell/workbench/fields/connection_settings.h"

#include "shell/workbench/fields/current_row.h"

namespace kv {
namespace {

Result<> storeText(CatalogueSets& sets, std::string_view column, const std::string& text) {
  if (settingText(sets, column) == text) return {};
  return sets.store(EditedSet::Generale, column, Value(text));
}

}  // namespace

FullAddresses addressesOf(CatalogueSets& sets) {
  return NormalizzaURL({settingText(sets, "URL"), settingText(sets, "cartella"), settingText(sets, "cartellaCGI")});
}

Result<> followConnection(CatalogueSets& sets, std::string_view column, std::string_view oldText) {
  if (column == "folderFTP" || column == "folderCGI") {
    const std::string_view web = column == "folderFTP" ? "cartella" : "cartellaCGI";
    const std::string current = settingText(sets, web);
    const std::string wanted =
        suggestedWebFolder(current, oldText, settingText(sets, column), isSettingOn(sets, "serverNT"));
    if (wanted == current) return {};
    if (auto stored = storeText(sets, web, wanted); !stored) return stored;
    column = web;
  }
  if (column != "URL" && column != "cartella" && column != "serverNT") return {};
  if (auto stored = storeText(sets, "CGIsearch", std::string(defaultCGIsearch)); !stored) return stored;
  return storeText(sets, "CGIordine", std::string(defaultCGIordine));
}

}  // namespace kv
