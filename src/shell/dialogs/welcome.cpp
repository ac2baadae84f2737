#include "shell/dialogs/welcome.h"

#include "platform/files/files.h"
#include "platform/files/user_folders.h"
#include "platform/text/text.h"
#include "shell/dialogs/recent_shops.h"
#include "store/shop/backup_copies.h"
#include "store/shop/open_shop.h"

namespace kv {
namespace {

/// A name below Negozi that nothing has yet: "negozio", "negozio 2", ...
std::string freeShopFolder() {
  const std::string first = joinPath(joinPath(homeFolder(), "Negozi"), "negozio");
  std::string folder = first;
  for (int number = 2; folderExists(folder) || fileExists(folder); ++number) {
    folder = first + " " + std::to_string(number);
  }
  return folder;
}

}  // namespace

WelcomeFacts welcomeFacts(const Session& session, const Environment& env) {
  WelcomeFacts facts{freeShopFolder(), recentShops(env.settings), false};
  std::erase(facts.recent, session.ShopFolder);
  facts.hasCopies = !session.ShopFolder.empty() && !backupCopies(session.ShopFolder).empty();
  return facts;
}

std::string typedShopFolder(const std::string& text) {
  const std::string typed(trim(text));
  if (typed.empty()) return {};
  const bool isBelowHome = typed == "~" || typed.starts_with("~/");
  return absolutePath(isBelowHome ? homeFolder() + typed.substr(1) : typed);
}

std::string nearestFolder(std::string folder) {
  while (!folder.empty() && !isRoot(folder) && !folderExists(folder)) folder = std::string(folderOf(folder));
  return folder;
}

std::string welcomeRefusal(const std::string& folder) {
  if (folder.empty()) return "Indicare la cartella del nuovo negozio";
  return newShopRefusal(folder);
}

bool carryOutWelcome(const WelcomeChoice& choice, Session& session, Environment& env,
                     const std::function<bool()>& restoreCopy) {
  switch (choice.what) {
    case Welcome::Stay:
      return false;
    case Welcome::EmptyShop:
      return makeNewShop(session, env, choice.folder, NewShop::Empty);
    case Welcome::ModelShop:
      return makeNewShop(session, env, choice.folder, NewShop::Model);
    case Welcome::Open:
      return ApriNegozio(session, env, "*");
    case Welcome::Recent:
      return ApriNegozio(session, env, choice.folder);
    case Welcome::RestoreCopy:
      return restoreCopy && restoreCopy();
  }
  return false;
}

}  // namespace kv
