#include "shell/workbench/local_site.h"

#include <algorithm>
#include <array>

#include "platform/files/files.h"

namespace kv {
namespace {

constexpr std::string_view startingHost = "Preparo il negozio su questa macchina: può richiedere un minuto...";

struct NeededProgram {
  std::string_view pattern;   ///< of its file's name
  std::string_view packages;  ///< that bring it
};
constexpr std::array<NeededProgram, 4> neededPrograms{
    {{"python3", "python3"}, {"php-fpm*", "php-fpm php-mysql"}, {"nginx", "nginx"}, {"mariadbd", "mariadb-server"}}};

/// Shows a caption on the screen as long as it lives.
class Notice {
 public:
  Notice(UserPort& user, std::string_view caption) : user_(user) { user_.progress({caption, 0, 0}); }
  Notice(const Notice&) = delete;
  Notice& operator=(const Notice&) = delete;
  ~Notice() { user_.progress({}); }

 private:
  UserPort& user_;
};

}  // namespace

std::vector<std::string> missingPackages(const std::vector<std::string>& programFolders) {
  std::vector<std::string> packages;
  for (const NeededProgram& needed : neededPrograms) {
    const bool isThere = std::ranges::any_of(
        programFolders, [&](const std::string& folder) { return !listFiles(folder, needed.pattern).empty(); });
    if (!isThere) packages.emplace_back(needed.packages);
  }
  return packages;
}

std::string missingPackagesText(const std::vector<std::string>& packages) {
  std::string text =
      "Per vedere il negozio su questa macchina mancano dei programmi.\n"
      "Si installano, da amministratore, con il comando:\n\n"
      "sudo apt install";
  for (const std::string& package : packages) text += " " + package;
  return text;
}

bool isBuilt(const Session& session) { return fileStamp(entryPath(session.ShopFolder, "kvftp.dat")).has_value(); }

Result<std::string> serveShop(const std::string& shopFolder, const LocalHost& host, UserPort& user) {
  const Notice notice(user, startingHost);
  if (auto started = host.start(shopFolder); !started) return fail(started.error());
  for (;;) {
    const HostReport report = host.wait();
    if (!report.address.empty()) return report.address;
    if (!report.isRunning) return fail(ErrorKind::Other, shopFolder, report.failure);
    if (!user.yield()) {
      host.stop();
      return fail(ErrorKind::Cancelled, shopFolder, "cancelled");
    }
  }
}

}  // namespace kv
