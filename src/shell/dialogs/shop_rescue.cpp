#include "shell/dialogs/shop_rescue.h"

#include "platform/ports/result.h"
#include "store/shop/backup_copies.h"
#include "store/shop/open_shop.h"
#include "store/shop/server_path.h"

namespace kv {
namespace {

std::string folderToRescue(const Session& session, const Environment& env) {
  if (!session.ShopFolder.empty()) return session.ShopFolder;
  const std::string named = readServerPath(env.applicationFolder);
  return named.empty() ? env.applicationFolder : named;
}

/// One choice; false when the user leaves.
bool tryRescue(Session& session, Environment& env, const RescuePorts& ports) {
  const std::string folder = folderToRescue(session, env);
  switch (ports.ask(folder)) {
    case Rescue::RestoreCopy: {
      const std::string copy = ports.chooseCopy(folder);
      if (copy.empty()) return true;
      session.ShopFolder = folder;
      RipristinaCopia(session, env, copy);
      return true;
    }
    case Rescue::OpenAnother:
      ApriNegozio(session, env, "*");
      return true;
    case Rescue::NewShop:
      NuovoNegozio(session, env);
      return true;
    case Rescue::Leave:
      return false;
  }
  return false;
}

}  // namespace

bool rescueShop(Session& session, Environment& env, const RescuePorts& ports) {
  while (!session.catalogue.isOpen()) {
    if (!tryRescue(session, env, ports)) return false;
  }
  return true;
}

std::string rescueText(const std::string& shopFolder) {
  return "Il negozio nella cartella\n" + shopFolder + "\nnon è stato aperto. Cosa si desidera fare?";
}

}  // namespace kv
