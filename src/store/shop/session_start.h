#pragma once
// The life of a session: found and loaded at the start, torn down and loaded again when the shop changes, closed at
// the end. A change of shop never reuses a session.

#include <string>

#include "store/shop/load_shop.h"
#include "store/shop/session.h"

namespace kv {

/// The menu entries that depend on optional files of the application folder.
struct OptionalEntries {
  std::string manual;         ///< path of the template manual, the PDF being preferred; empty hides its entry
  bool orders = false;        ///< mnuSO: ordsync.exe is there
  bool availability = false;  ///< mnuFMgiac: ogg.exe is there
  bool accounting = false;    ///< mnuImportaOG: gwimp.exe is there
};
/// Looks for these files.
OptionalEntries optionalEntries(const std::string& applicationFolder);

/// Whether the settings turn on incremental build: "1", or nothing stored yet.
bool wantsSmartBuild(const Settings& settings);

/// Starts the program: stores the settings `Path` and, when it has no value, `smartbuild`, then loads
/// the session.
LoadResult startSession(Session& session, Environment& env, const LoadOptions& options = {});

/// Finds the shop folder (serverpath.net, else the application folder) and loads it. For a named folder without a
/// catalogue the user is asked for another shop. Failed: the program ends.
LoadResult loadSession(Session& session, Environment& env, const LoadOptions& options = {});

/// RiavviaSessione (restart the session): tears it down and loads it again, through the hook `reload` when the
/// program sets one. Nothing of the session survives but smartBuild.
LoadResult RiavviaSessione(Session& session, Environment& env, const LoadOptions& options = {});

/// Closes the program's session: the catalogue is closed and, when the user quits (compactOnExit), CompattaCatalogo
/// runs.
void closeSession(Session& session, Environment& env);

}  // namespace kv
