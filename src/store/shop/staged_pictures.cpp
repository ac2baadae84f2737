#include "store/shop/staged_pictures.h"

#include "platform/database/database.h"
#include "platform/files/listing.h"
#include "platform/files/trees.h"
#include "store/shop/price_history_file.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

constexpr std::int64_t importMark = 1;  // what importIsDue leaves

Result<> moveAll(const std::vector<std::string>& names, const std::string& from, const std::string& to) {
  for (const std::string& name : names) {
    if (auto moved = renameFile(joinPath(from, name), joinPath(to, name)); !moved) return moved;
  }
  return {};
}

Result<> moveSubfolders(const std::string& from, const std::string& to) {
  if (!folderExists(from)) return {};
  const auto names = readFolderNames(from);
  return names ? moveAll(*names, from, to) : Result<>(fail(names.error()));
}

Result<> removePictures(const std::string& folder) {
  if (!folderExists(folder)) return {};
  if (auto emptied = removeBelow(folder); !emptied) return emptied;
  return removeFolder(folder);
}

}  // namespace

StagedPictures::StagedPictures(const std::string& shopFolder)
    : own_(entryPath(shopFolder, "work")),
      staged_(joinPath(shopFolder, "work.importa")),
      old_(joinPath(shopFolder, "work.prima")) {}

Result<> StagedPictures::copyFrom(const std::string& folder) const {
  if (auto dropped = drop(); !dropped) return dropped;
  if (auto made = createFolder(staged_); !made) return made;
  // A list that can't be read is not an empty one: the shop's own pictures would go for nothing.
  const auto names = readFileNames(folder, "*");
  if (!names) return fail(names.error());
  for (const std::string& name : *names) {
    if (auto copied = copyFile(joinPath(folder, name), joinPath(staged_, name)); !copied) return copied;
  }
  return {};
}

Result<> StagedPictures::exchange() const {
  // Without them it was over but for the old ones.
  if (folderExists(staged_)) {
    if (auto swapped = swap(); !swapped) {
      ignore(restore(), "the next start tries again");
      return swapped;
    }
  }
  ignore(drop(), "the next import removes them");
  return {};
}

Result<> StagedPictures::swap() const {
  // Where its own folder can't be listed, the subfolders go along with the pictures, and drop() brings them back.
  if (auto moved = moveAll(listFolders(own_), own_, staged_); !moved) return moved;
  if (auto moved = moveSubfolders(old_, staged_); !moved) return moved;
  if (folderExists(own_)) {
    if (auto removed = removePictures(old_); !removed) return removed;
    if (auto moved = renameFile(own_, old_); !moved) return moved;
  }
  return renameFile(staged_, own_);
}

Result<> StagedPictures::restore() const {
  if (!folderExists(own_)) {
    auto made = folderExists(old_) ? renameFile(old_, own_) : createFolder(own_);
    if (!made) return made;
  }
  for (const std::string& folder : {staged_, old_}) {
    if (auto moved = moveSubfolders(folder, own_); !moved) return moved;
  }
  return {};
}

Result<> StagedPictures::drop() const {
  if (!isAny()) return {};
  if (auto restored = restore(); !restored) return restored;
  for (const std::string& folder : {staged_, old_}) {
    if (auto removed = removePictures(folder); !removed) return removed;
  }
  return {};
}

bool StagedPictures::isAny() const { return folderExists(staged_) || folderExists(old_); }

void recoverPictures(const std::string& shopFolder) {
  const StagedPictures pictures(shopFolder);
  const std::string path = entryPath(shopFolder, catalogueFile);
  if (!pictures.isAny() || !fileExists(path)) return;
  auto catalogue = Database::open(path, OpenMode::Exclusive);
  if (!catalogue) return;
  const auto due = catalogue->scalar("PRAGMA main.user_version");
  if (!due) return;
  if (asInteger(*due) == 0) return ignore(pictures.restore(), "the next start tries again");
  if (asInteger(*due) == importMark) {
    ignore(deleteFile(joinPath(shopFolder, priceHistoryFile)), "there may be none");
    ignore(catalogue->execute(picturesAreDue), "the next start tries again");
  }
  if (pictures.exchange()) ignore(catalogue->execute(noPicturesAreDue), "the next import does it");
}

}  // namespace kv
