#pragma once
// Choosing a shop: opening a folder and making a new one. Both restart the session on the new folder; a folder
// that is refused leaves the running session as it was.

#include <string>

#include "store/shop/session.h"

namespace kv {

/// ApriNegozio (open a shop): validates a folder and switches to it. `path` is the folder itself, or "*": the user
/// chooses, and the working folders of what was chosen are not tested. True when the folder was accepted; the session
/// then is the one that RiavviaSessione has made, which may have failed to load (its catalogue is not open).
/// Shows its own messages. When it returns false, serverpath.net and the session are as they were.
bool ApriNegozio(Session& session, Environment& env, std::string path);

/// NuovoNegozio (new shop): asks for a folder, copies the application's model shop into it and opens it. The folder
/// may hold files, but no catalogue. True when the new shop was accepted by ApriNegozio.
bool NuovoNegozio(Session& session, Environment& env);

}  // namespace kv
