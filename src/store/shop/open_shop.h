#pragma once
// Choosing a shop: opening a folder and making a new one. Both restart the session on the new folder; a folder
// that is refused leaves the running session as it was.

#include <optional>
#include <string>

#include "store/shop/session.h"

namespace kv {

/// ApriNegozio (open a shop): validates a folder and switches to it. `path` is the folder itself, or "*": the user
/// chooses, and the working folders of what was chosen are not tested. True when the folder was accepted; the session
/// then is the one that RiavviaSessione has made, which may have failed to load (its catalogue is not open).
/// Shows its own messages. When it returns false, serverpath.net and the session are as they were.
bool ApriNegozio(Session& session, Environment& env, std::string path);

/// The part of ApriNegozio before the session: validates a folder, asks what opening it asks, and makes it the folder
/// that the next start finds. Nothing when it was refused; serverpath.net is then as it was. The result is how the
/// folder is to be loaded.
std::optional<LoadOptions> chooseShop(Session& session, Environment& env, std::string path);

/// NuovoNegozio (new shop): asks for a folder, copies the application's model shop into it and opens it. The folder
/// may hold files, but no catalogue. True when the new shop was accepted by ApriNegozio.
bool NuovoNegozio(Session& session, Environment& env);

/// What a new shop holds.
enum class NewShop {
  Model,  ///< the model shop as it is
  Empty   ///< its settings and payment modules, in one language: one department, no article, picture or text of its own
};
/// Makes a new shop in a folder and opens it; folders that are missing are made. Messages and result as NuovoNegozio,
/// which an empty name ends quietly too.
bool makeNewShop(Session& session, Environment& env, const std::string& folder, NewShop kind);
/// Why no new shop can be made in a folder, in Italian; empty when one can.
std::string newShopRefusal(const std::string& folder);

}  // namespace kv
