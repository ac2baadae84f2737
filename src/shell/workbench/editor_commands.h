#pragma once
// The commands whose buttons stand among the editors: those of a picture, and those of a variant slot.

#include "shell/workbench/fields/editor_table.h"

namespace kv {

/// The two command numbers of a picture; -1 where it has none.
struct PictureCommands {
  int choose = -1;
  int clear = -1;
};
/// The commands of the picture that the editor shows.
PictureCommands pictureCommands(const Editor& editor);
/// The number of the command that defines a variant slot, 1 to 4.
int variantCommand(int slot);

}  // namespace kv
