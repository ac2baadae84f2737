#pragma once
// The pictures of the current rows: three columns each, for the file in the shop's picture folder and its size.

#include <string>

#include "platform/image/image.h"
#include "store/catalogue/catalogue_sets.h"

namespace kv {

/// A picture of the current row of a set.
struct RowPicture {
  EditedSet set = EditedSet::Generale;
  int number = 0;  ///< 0 to 2 of an article, 0 and 1 of a department or the shop
};

/// The file name of the picture; empty when there is none, or no row.
/// Without folder; the file may be missing.
std::string pictureName(CatalogueSets& sets, const RowPicture& picture);
/// Whether the row has a picture; false on no row. Failures: as Recordset::load.
Result<bool> hasPicture(CatalogueSets& sets, const RowPicture& picture);
/// Stores file name and size in pixels; an empty name and no size clear the three columns. Nothing on no row.
/// Failures: as Recordset::update; the row is as before then.
/// The file itself is neither copied nor deleted here.
Result<> storePicture(CatalogueSets& sets, const RowPicture& picture, const std::string& name, ImageSize size);

}  // namespace kv
