#include "import/tables/picture_taking.h"

#include "import/tables/picture_source.h"
#include "platform/files/files.h"

namespace kv {

PictureTaking::PictureTaking(const Settings& settings, UserPort& user, std::string shopFolder, std::string sheetFolder)
    : shopFolder_(std::move(shopFolder)),
      sheetFolder_(std::move(sheetFolder)),
      choice_(stored_, user, entryPath(shopFolder_, "work"), {}) {
  choice_.values = readLoadImage(settings);
}

Result<TakenPicture> PictureTaking::take(const std::string& cell) {
  const auto source = findPicture(cell, shopFolder_, sheetFolder_);
  if (!source) return fail(ErrorKind::Missing, cell, "no such picture");
  if (const auto known = taken_.find(source->path); known != taken_.end()) return known->second;
  TakenPicture picture{source->name, {}};
  if (picture.name.empty()) {
    const auto name = choice_.accept(source->path);
    if (!name) return fail(ErrorKind::Told, cell, "not written");
    if (name->empty()) return fail(ErrorKind::Missing, cell, "no picture");
    picture.name = *name;
    written_.push_back(joinPath(choice_.folder(), *name));
  }
  const auto size = shownSize(joinPath(choice_.folder(), picture.name));
  if (!size) return fail(size.error());
  picture.size = *size;
  taken_.emplace(source->path, picture);
  return picture;
}

void PictureTaking::drop() {
  for (const std::string& path : written_) ignore(deleteFile(path), "a picture that nothing mentions does no harm");
  written_.clear();
  taken_.clear();
}

}  // namespace kv
