#include "publish/run/file_choice.h"

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "publish/settings/publish_settings.h"

namespace kv {
namespace {

/// Both sides of the comparison without case; the list keeps one form for all of its names.
std::string listForm(std::string_view text) { return foldCase(text); }

}  // namespace

std::string CaricaListaFiles(const std::string& shopFolder) {
  const auto text = readText(joinPath(shopFolder, "kvftp.dat"));
  if (!text) return {};
  std::string list = "#";
  for (std::string_view line : splitLines(*text)) {
    if (line.starts_with('#')) line.remove_prefix(1);
    list += std::string(baseName(line)) + "#";
  }
  return listForm(list);
}

bool CaricaFile(std::string_view path, const FileChoice& choice) {
  const std::string_view name = baseName(path);
  if (endsWithIgnoringCase(name, ".sc")) return false;
  if (choice.shopOnly && choice.list.find(listForm("#" + std::string(name) + "#")) == std::string::npos) return false;
  return acceptsType(choice.types, name);
}

}  // namespace kv
