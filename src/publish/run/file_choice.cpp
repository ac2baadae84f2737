#include "publish/run/file_choice.h"

#include <algorithm>

#include "platform/files/files.h"
#include "platform/text/text.h"
#include "publish/settings/publish_settings.h"

namespace kv {
namespace {

/// Both sides of the comparison without case; the list keeps one form for all of its names.
std::string listForm(std::string_view text) { return foldCase(text); }

}  // namespace

BuiltFiles CaricaListaFiles(const std::string& shopFolder) {
  const auto text = readBytes(entryPath(shopFolder, "kvftp.dat"));
  if (!text) return {};
  BuiltFiles list;
  for (std::string_view line : splitLines(*text)) {
    if (line.starts_with('#')) line.remove_prefix(1);
    if (!baseName(line).empty()) list.insert(listForm(baseName(line)));
  }
  return list;
}

bool CaricaFile(std::string_view path, const FileChoice& choice) {
  const std::string_view name = baseName(path);
  if (endsWithIgnoringCase(name, ".sc")) return false;
  if (choice.shopOnly && choice.list.count(listForm(name)) == 0) return false;
  return acceptsType(choice.types, name);
}

std::vector<std::string> surplusFiles(std::vector<std::string> sent, const FileChoice& choice,
                                      const std::vector<std::string>& localFolders) {
  if (choice.list.empty()) return {};
  FileChoice listed = choice;
  listed.shopOnly = true;
  const auto isWanted = [&](const std::string& name) {
    for (const char* other : {".sql", ".sc", ".ric", ".ris"}) {
      if (endsWithIgnoringCase(name, other)) return true;
    }
    if (!acceptsType(choice.types, name) || CaricaFile(name, listed)) return true;
    return CaricaFile(name, choice) && std::any_of(localFolders.begin(), localFolders.end(), [&](const auto& folder) {
             return fileExists(joinPath(folder, name));
           });
  };
  std::erase_if(sent, isWanted);
  return sent;
}

int sendingRank(const std::string& name) {
  if (endsWithIgnoringCase(name, ".sql")) return 2;
  for (const char* page : {".php", ".htm", ".html", ".shtm", ".shtml", ".asp"}) {
    if (endsWithIgnoringCase(name, page)) return 1;
  }
  return 0;
}

std::vector<std::string> inSendingOrder(std::vector<std::string> names) {
  std::stable_sort(names.begin(), names.end(), [](const std::string& one, const std::string& other) {
    return sendingRank(one) < sendingRank(other);
  });
  return names;
}

}  // namespace kv
