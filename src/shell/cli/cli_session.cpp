#include "shell/cli/cli_session.h"

#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "store/shop/load_shop.h"
#include "store/shop/session_start.h"
#include "store/shop/shop_check.h"
#include "store/shop/shop_folders.h"

namespace kv {

CliSession::CliSession(Environment& env) : env_(env) { session.smartBuild = wantsSmartBuild(env.settings); }

CliSession::~CliSession() {
  env_.hooks.reload = nullptr;
  closeSession(session, env_);
}

bool CliSession::isShop(const std::string& shop) {
  if (isRoot(shop)) {
    env_.user.message(
        "La cartella '" + shop + "' è la root di un disco: non è consentito aprire un negozio in questa posizione",
        Icon::Exclamation);
    return false;
  }
  const ShopCheck check = validateShop(shop);
  if (!check.ok) env_.user.message(check.message, Icon::Exclamation);
  return check.ok;
}

bool CliSession::open(const std::string& shop) {
  if (!isShop(shop)) return false;
  env_.hooks.reload = [this, shop](const LoadOptions& options) {
    session.ShopFolder = shop;
    ignore(CaricaNegozio(session, env_, options), "it has told the user of any failure");
  };
  session.ShopFolder = shop;
  return CaricaNegozio(session, env_) == LoadResult::Opened;
}

bool CliSession::openToLook(const std::string& shop) {
  if (!isShop(shop)) return false;
  auto catalogue = Database::open(entryPath(shop, catalogueFile), OpenMode::ReadOnly);
  Result<> read = catalogue ? Result<>() : Result<>(fail(catalogue.error()));
  if (read) {
    session.ShopFolder = shop;
    session.catalogue = std::move(*catalogue);
    read = readLanguages(session);
  }
  if (!read) env_.user.message(failureText(read.error()), Icon::Critical);
  return read.has_value();
}

bool CliSession::hasTemplate() const {
  const std::string folder = joinPath(env_.applicationFolder, session.templatePath);
  return !session.templatePath.empty() && !listFiles(folder, "modello*.htm").empty();
}

}  // namespace kv
