#include "store/shop/session_start.h"

#include <utility>

#include "platform/files/files.h"
#include "store/shop/compact.h"
#include "store/shop/open_shop.h"
#include "store/shop/server_path.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

// A setting that can't be stored is no reason not to start: it is settled anew each time.
void settleSettings(Session& session, Surroundings& with) {
  if (with.settings.get(settingsSection, "smartbuild").empty())
    static_cast<void>(with.settings.set(settingsSection, "smartbuild", "1"));
  session.smartBuild = wantsSmartBuild(with.settings);
  static_cast<void>(with.settings.set(settingsSection, "Path", with.applicationFolder));
}

void tearDown(Session& session, const Surroundings& with) {
  releaseCatalogue(session, with);
  Session fresh;
  // These speak about the load that follows, or about the program and not the shop.
  fresh.quiet = session.quiet;
  fresh.silentReload = session.silentReload;
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

LoadResult startSession(Session& session, Surroundings& with) {
  settleSettings(session, with);
  return loadSession(session, with);
}

LoadResult loadSession(Session& session, Surroundings& with) {
  session.numberFormats = {"0", "0"};
  session.ShopFolder = with.applicationFolder;
  const std::string named = readServerPath(with.applicationFolder);
  if (!named.empty()) {
    session.ShopFolder = named;
    recoverCatalogue(named);
    if (!fileExists(joinPath(named, catalogueFile))) {
      const std::string text =
          "La cartella '" + named + "' non contiene un negozio valido.\nSi desidera aprire un altro negozio?";
      const Answer answer = with.user.question({text, Buttons::YesNo, Answer::Yes, Icon::Question});
      if (answer == Answer::Yes && ApriNegozio(session, with, "*")) return LoadResult::Replaced;
      return LoadResult::Failed;
    }
  } else {
    recoverCatalogue(session.ShopFolder);
  }
  return CaricaNegozio(session, with);
}

LoadResult RiavviaSessione(Session& session, Surroundings& with) {
  tearDown(session, with);
  if (!with.hooks.reload) return loadSession(session, with);
  with.hooks.reload();
  return session.catalogue.isOpen() ? LoadResult::Opened : LoadResult::Failed;
}

void closeSession(Session& session, Surroundings& with) {
  releaseCatalogue(session, with);
  if (session.compactOnExit) CompattaCatalogo(session.ShopFolder, with);
}

}  // namespace kv
