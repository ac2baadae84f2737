#pragma once
// What is worth a picture: every tab and page of the main window, its menus, every dialog.

#include <span>

#include "stage.h"

class QDialog;

namespace kv::scenes {

struct Scene {
  const char* name;  ///< of the picture, without ".png"
  void (*play)(Stage& stage, const QString& name);
};

/// Those of the main window, its tabs and menus, and the dialogs of the shop as a whole.
std::span<const Scene> windowScenes();
/// Those of the dialogs of selling: prices, shipping, payment, variants, pictures, publishing.
std::span<const Scene> tradeScenes();
/// Those of what comes from other programs: shops, an accounting package, a bank's passwords.
std::span<const Scene> exchangeScenes();
/// That of a shop being sent to its server.
std::span<const Scene> publishScenes();

/// Those of orders on paper, in files and in sums.
std::span<const Scene> salesScenes();

/// Those of the first start and of no shop, of a long text, of the folders of a server.
std::span<const Scene> startScenes();

/// Goes to the department of the shop with the most articles, and to one of them.
void goToArticle(Stage& stage);
/// Takes the dialog that a command opens.
void takeEntry(Stage& stage, std::string_view command, const QString& name);
/// Shows a dialog of its own and takes it; `arrange` fills it first.
void takeShown(Stage& stage, QDialog& dialog, const QString& name, const std::function<void(QWidget&)>& arrange = {});

/// All of them, in the order in which they are played over one shop; each leaves the windows as it found them.
std::span<const Scene> sceneTable();

}  // namespace kv::scenes
