#include "shell/cli/cli_session.h"

#include "platform/files/files.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
#include "store/shop/shop_check.h"

namespace kv {

CliSession::CliSession(Environment& env) : env_(env) { session.smartBuild = wantsSmartBuild(env.settings); }

CliSession::~CliSession() { closeSession(session, env_); }

bool CliSession::open(const std::string& shop) {
  if (isRoot(shop)) {
    env_.user.message(
        "La cartella '" + shop + "' è la root di un disco: non è consentito aprire un negozio in questa posizione",
        Icon::Exclamation);
    return false;
  }
  const ShopCheck check = validateShop(shop);
  if (!check.ok) {
    env_.user.message(check.message, Icon::Exclamation);
    return false;
  }
  session.ShopFolder = shop;
  return CaricaNegozio(session, env_) == LoadResult::Opened;
}

bool CliSession::hasTemplate() const {
  const std::string folder = joinPath(env_.applicationFolder, session.templatePath);
  return !session.templatePath.empty() && !listFiles(folder, "modello*.htm").empty();
}

}  // namespace kv
