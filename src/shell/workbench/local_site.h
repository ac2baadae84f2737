#pragma once
// The shop in the browser, from a web host on this machine that needs no root rights and ends with the program. A copy
// of the shop is built and served, so the shop itself stays as it is.

#include <functional>
#include <string>
#include <vector>

#include "platform/ports/user_port.h"
#include "store/shop/session.h"

namespace kv {

/// How far the host has come.
struct HostReport {
  bool isRunning = false;  ///< false: it has ended, or was never started
  std::string address;     ///< of the shop, once it is served; empty until then
  std::string failure;     ///< what it said last, when it has ended
};

/// The web host of this machine, as the workbench reaches it. The program fills it; without `start` there is none.
struct LocalHost {
  /// The folders in which its programs are looked for.
  std::vector<std::string> programFolders;
  /// Starts it with a copy of a shop. A host that runs is ended first.
  std::function<Result<>(const std::string& shopFolder)> start;
  /// Waits for news, for a twentieth of a second at most.
  std::function<HostReport()> wait;
  /// Ends it; nothing when none runs.
  std::function<void()> stop;
};

/// The Debian packages of the programs that are in none of these folders; empty when the host can run.
std::vector<std::string> missingPackages(const std::vector<std::string>& programFolders);
/// What the merchant is told when packages are missing: how to get them.
std::string missingPackagesText(const std::vector<std::string>& packages);

/// Whether the shop has been built.
bool isBuilt(const Session& session);

/// Starts the host with a shop and waits until it is served, with a word about it on the screen. The shop's address;
/// Cancelled when the user gave up, Other with what the host said when it ended.
Result<std::string> serveShop(const std::string& shopFolder, const LocalHost& host, UserPort& user);

}  // namespace kv
