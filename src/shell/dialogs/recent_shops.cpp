#include "shell/dialogs/recent_shops.h"

#include <algorithm>

#include "platform/files/files.h"
#include "store/shop/session.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

std::string recentKey(std::size_t index) { return "NegozioRecente" + std::to_string(index + 1); }

std::vector<std::string> rememberedShops(const Settings& settings) {
  std::vector<std::string> folders;
  for (std::size_t i = 0; i < mostRecentShops; ++i) {
    if (std::string folder = settings.get(settingsSection, recentKey(i)); !folder.empty()) {
      folders.push_back(std::move(folder));
    }
  }
  return folders;
}

}  // namespace

std::vector<std::string> recentShops(const Settings& settings) {
  std::vector<std::string> folders = rememberedShops(settings);
  std::erase_if(folders, [](const std::string& folder) { return !fileExists(entryPath(folder, catalogueFile)); });
  return folders;
}

void rememberShop(Settings& settings, const std::string& folder) {
  if (folder.empty()) return;
  const std::vector<std::string> before = rememberedShops(settings);
  std::vector<std::string> folders = before;
  std::erase(folders, folder);
  folders.insert(folders.begin(), folder);
  if (folders.size() > mostRecentShops) folders.resize(mostRecentShops);
  for (std::size_t i = 0; i < folders.size(); ++i) {
    if (i < before.size() && before[i] == folders[i]) continue;
    ignore(settings.set(settingsSection, recentKey(i), folders[i]), "the next opening stores it");
  }
}

}  // namespace kv
