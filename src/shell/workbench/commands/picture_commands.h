#pragma once
// The commands that set and clear the pictures of articles, departments and shop.

#include <string>

#include "shell/workbench/commands/command_rows.h"

namespace kv {

/// Setting and clearing the seven pictures: three of an article, two of a department, two logos.
std::vector<Command> pictureCommands();

/// The names of the two commands of a picture.
struct PictureCommandNames {
  std::string choose, clear;
};
/// The commands of the picture `number` of a set: "article.picture1.set" and "article.picture1.clear".
PictureCommandNames pictureCommandNames(EditedSet set, int number);

}  // namespace kv
