#include "builder/run/light_pictures.h"

#include <algorithm>

#include "media/bitmap/light_picture.h"
#include "platform/files/settings.h"
#include "platform/text/text.h"

namespace kv {
namespace {

constexpr std::string_view lightFolderName = "leggere";
constexpr std::string_view madeListName = "elenco.txt";
constexpr std::string_view shopBuildFile = "costruzione.ini";
constexpr std::string_view picturesSection = "Immagini";
constexpr std::string_view lightKey = "Leggere";
constexpr char columnEnd = '|';  // in no name of a picture

std::string stampOf(const FileStamp& stamp) {
  return std::to_string(stamp.size) + " " + std::to_string(stamp.changedAt);
}

}  // namespace

bool wantsLightPictures(const std::string& shopFolder) {
  const std::string path = entryPath(shopFolder, shopBuildFile);
  return fileExists(path) && FileSettings(path).get(picturesSection, lightKey) == "1";
}

// A shop that never had them gets no file.
Result<> storeLightPictures(const std::string& shopFolder, bool wanted) {
  if (wanted == wantsLightPictures(shopFolder)) return {};
  return FileSettings(entryPath(shopFolder, shopBuildFile)).set(picturesSection, lightKey, wanted ? "1" : "0");
}

LightFolder::LightFolder(const std::string& shopFolder) : folder_(joinPath(shopFolder, lightFolderName)) {
  const auto list = readBytes(joinPath(folder_, madeListName));
  if (!list) return;
  for (const std::string_view line : splitLines(*list)) {
    std::vector<std::string> columns;
    for (std::size_t at = 0; at <= line.size();) {
      const std::size_t end = std::min(line.find(columnEnd, at), line.size());
      columns.emplace_back(line.substr(at, end - at));
      at = end + 1;
    }
    if (columns.size() < 2) continue;
    made_[columns[0]] = {columns[1], {columns.begin() + 2, columns.end()}, false};
  }
}

Result<LightFolder::Made> LightFolder::make(const std::string& picture, std::string stamp,
                                            const std::vector<std::string>& taken) const {
  Made made{std::move(stamp), {}, true};
  const auto bytes = readBytes(picture);
  if (!bytes) return fail(bytes.error());
  for (const LightPicture& form : lightPicturesOf(*bytes)) {
    std::string name = std::string(baseName(picture)) + lightSuffix(form.width);
    if (std::ranges::find(taken, name) != taken.end()) continue;
    if (auto created = createFolders(folder_); !created) return fail(created.error());
    if (auto written = writeBytes(joinPath(folder_, name), form.bytes); !written) return fail(written.error());
    made.names.push_back(std::move(name));
  }
  return made;
}

Result<std::vector<std::string>> LightFolder::formsOf(const std::string& picture,
                                                      const std::vector<std::string>& taken) {
  const std::string name(baseName(picture));
  const auto stamp = fileStamp(picture);
  if (!stamp) return fail(stamp.error());
  if (stamp->size > mostPictureBytes) return std::vector<std::string>();
  Made& made = made_[name];
  const auto isThere = [this](const std::string& form) { return fileExists(joinPath(folder_, form)); };
  if (made.stamp != stampOf(*stamp) || !std::ranges::all_of(made.names, isThere)) {
    drop(made);
    auto fresh = make(picture, stampOf(*stamp), taken);
    if (!fresh) return fail(fresh.error());
    made = std::move(*fresh);
    changed_ = true;
  }
  made.isAsked = true;
  return made.names;
}

void LightFolder::drop(const Made& made) const {
  for (const std::string& form : made.names) {
    ignore(deleteFile(joinPath(folder_, form)), "the next build of the picture writes over it");
  }
}

Result<> LightFolder::finish() {
  std::string list;
  for (auto each = made_.begin(); each != made_.end();) {
    if (!each->second.isAsked) {
      drop(each->second);
      each = made_.erase(each);
      changed_ = true;
      continue;
    }
    list += each->first + columnEnd + each->second.stamp;
    for (const std::string& form : each->second.names) list += columnEnd + form;
    list += "\r\n";
    ++each;
  }
  if (!changed_) return {};
  if (auto created = createFolders(folder_); !created) return created;
  return writeBytes(joinPath(folder_, madeListName), list);
}

std::vector<std::string> LightFolder::discard() {
  std::vector<std::string> names;
  for (const auto& [picture, made] : made_) {
    drop(made);
    names.insert(names.end(), made.names.begin(), made.names.end());
  }
  ignore(deleteFile(joinPath(folder_, madeListName)), "without forms it lists nothing");
  ignore(removeFolder(folder_), "a merchant's own file may be in it");
  made_.clear();
  return names;
}

}  // namespace kv
