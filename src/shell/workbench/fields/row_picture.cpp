#include "shell/workbench/fields/row_picture.h"

#include <array>
#include <utility>

#include "shell/workbench/fields/current_row.h"

namespace kv {

std::string pictureName(CatalogueSets& sets, const RowPicture& picture) {
  if (!isOnRow(sets, picture.set)) return {};
  return asText(sets.edited(picture.set).get("immagine" + std::to_string(picture.number)));
}

Result<bool> hasPicture(CatalogueSets& sets, const RowPicture& picture) {
  if (!isOnRow(sets, picture.set)) return false;
  if (auto read = sets.edited(picture.set).load(); !read) return fail(read.error());
  return !pictureName(sets, picture).empty();
}

Result<> storePicture(CatalogueSets& sets, const RowPicture& picture, const std::string& name, ImageSize size) {
  if (!isOnRow(sets, picture.set)) return {};
  Recordset& rows = sets.edited(picture.set);
  const std::string digit = std::to_string(picture.number);
  const std::array<std::pair<std::string, Value>, 3> fields{{{"immagine" + digit, Value(name)},
                                                             {"imgX" + digit, Value(std::int64_t{size.width})},
                                                             {"imgY" + digit, Value(std::int64_t{size.height})}}};
  if (auto begun = rows.edit(); !begun) return begun;
  Result<> done;
  for (const auto& [column, value] : fields) {
    if (done) done = rows.set(column, value);
  }
  if (done) done = rows.update();
  if (!done) rows.cancelUpdate();
  return done;
}

}  // namespace kv
