#include "store/shop/session_start.h"

#include <utility>

#include "platform/files/files.h"
#include "store/shop/compact.h"
#include "store/shop/open_shop.h"
#include "store/shop/server_path.h"
#include "store/shop/shop_folders.h"
#include "store/shop/staged_pictures.h"

namespace kv {
namespace {

void storeStartSettings(Session& session, Environment& env) {
  if (env.settings.get(settingsSection, "smartbuild").empty())
    ignore(env.settings.set(settingsSection, "smartbuild", "1"), "the next start stores it");
  session.smartBuild = wantsSmartBuild(env.settings);
  ignore(env.settings.set(settingsSection, "Path", env.applicationFolder), "the next start stores it");
}

void tearDown(Session& session, const Environment& env) {
  releaseCatalogue(session, env);
  Session fresh;
  // This field concerns the program and not the shop.
  fresh.smartBuild = session.smartBuild;
  session = std::move(fresh);
}

}  // namespace

OptionalEntries optionalEntries(const std::string& applicationFolder) {
  OptionalEntries entries;
  for (const char* name : {"manuale_template2.pdf", "manuale_template2.rtf"}) {
    const std::string path = joinPath(applicationFolder, name);
    if (entries.manual.empty() && fileExists(path)) entries.manual = path;
  }
  entries.orders = fileExists(joinPath(applicationFolder, "ordsync.exe"));
  entries.availability = fileExists(joinPath(applicationFolder, "ogg.exe"));
  entries.accounting = fileExists(joinPath(applicationFolder, "gwimp.exe"));
  return entries;
}

bool wantsSmartBuild(const Settings& settings) {
  const std::string stored = settings.get(settingsSection, "smartbuild");
  return stored.empty() || stored == "1";
}

LoadResult startSession(Session& session, Environment& env, const LoadOptions& options) {
  storeStartSettings(session, env);
  return loadSession(session, env, options);
}

LoadResult loadSession(Session& session, Environment& env, const LoadOptions& options) {
  session.numberFormats = {"0", "0"};
  session.ShopFolder = env.applicationFolder;
  const std::string named = readServerPath(env.applicationFolder);
  if (!named.empty()) {
    session.ShopFolder = named;
    recoverCatalogue(named);
    recoverPictures(named);
    if (!fileExists(entryPath(named, catalogueFile))) {
      const std::string text =
          "La cartella '" + named + "' non contiene un negozio valido.\nSi desidera aprire un altro negozio?";
      const Answer answer = env.user.question({text, Buttons::YesNo, Answer::Yes, Icon::Question});
      if (answer == Answer::Yes && ApriNegozio(session, env, "*")) return LoadResult::Replaced;
      return LoadResult::Failed;
    }
  } else {
    recoverCatalogue(session.ShopFolder);
    recoverPictures(session.ShopFolder);
  }
  return CaricaNegozio(session, env, options);
}

LoadResult RiavviaSessione(Session& session, Environment& env, const LoadOptions& options) {
  tearDown(session, env);
  if (!env.hooks.reload) return loadSession(session, env, options);
  env.hooks.reload(options);
  return session.catalogue.isOpen() ? LoadResult::Opened : LoadResult::Failed;
}

void closeSession(Session& session, Environment& env) {
  releaseCatalogue(session, env);
  if (session.compactOnExit) CompattaCatalogo(session.ShopFolder, env);
}

}  // namespace kv
