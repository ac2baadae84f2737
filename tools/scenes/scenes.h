#pragma once
// What is worth a picture: every tab and page of the main window, its menus, every dialog.

#include <span>

#include "stage.h"

namespace kv::scenes {

struct Scene {
  const char* name;  ///< of the picture, without ".png"
  void (*play)(Stage& stage, const QString& name);
};

/// In the order in which they are played over one shop; each leaves the windows as it found them.
std::span<const Scene> sceneTable();

}  // namespace kv::scenes
