#include "media/choice/picture_folder.h"

#include "media/choice/picture_names.h"
#include "platform/files/files.h"
#include "platform/files/trees.h"

namespace kv {

std::optional<PictureFolder> openPictureFolder(const std::string& path) {
  const std::string folder = absolutePath(path);
  if (folder.empty() || !isEmptyFolder(folder)) return std::nullopt;  // the question fails where a listing does
  PictureFolder opened{folder, {}, pictureFiles(folder)};
  if (!isRoot(folder)) opened.folders.emplace_back("..");
  for (std::string& name : listFolders(folder)) opened.folders.push_back(std::move(name));
  return opened;
}

PictureFolder firstPictureFolder(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    if (auto opened = openPictureFolder(path)) return *opened;
  }
  return openPictureFolder("/").value_or(PictureFolder{"/", {}, {}});
}

}  // namespace kv
