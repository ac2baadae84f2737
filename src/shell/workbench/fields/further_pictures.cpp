#include "shell/workbench/fields/further_pictures.h"

#include "media/choice/numbered_pictures.h"
#include "platform/files/files.h"

namespace kv {

std::string furtherPictures(const std::string& path) {
  const std::string name(baseName(path));
  const std::string folder = path.substr(0, path.size() - name.size());
  const auto found = numberedPictures(name, [&](const std::string& file) { return fileExists(folder + file); });
  if (found.empty()) return {};
  std::string list;
  for (const std::string& file : found) list += (list.empty() ? "" : ", ") + file;
  return (found.size() == 1 ? "E un'altra: " : "E altre " + std::to_string(found.size()) + ": ") + list;
}

}  // namespace kv
