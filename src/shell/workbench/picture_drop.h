#pragma once
// Pictures that are dropped or pasted on a picture, an article or a department, without the dialog of pictures.

#include <string>
#include <vector>

#include "shell/workbench/fields/row_picture.h"

namespace kv {

class Workbench;

/// The number of a RowPicture that means the pictures of the row that are free, in their order.
inline constexpr int freePictures = -1;

/// How many pictures a row of a set has.
int picturesOfRow(EditedSet set);

/// Brings files into the image folder as the dialog of pictures would with the settings of its last OK, and stores them
/// in the current row as one step of the history: the first in the picture `target`, whatever it shows, the others in
/// those that are free. Nothing on no row. Whether the location that photos tell is left out is asked once; what is too
/// long for the catalogue, what can't be read, what there is no picture left for, and what came after one that couldn't
/// be written, is told by name.
void takePictures(Workbench& bench, const RowPicture& target, const std::vector<std::string>& files);

}  // namespace kv
