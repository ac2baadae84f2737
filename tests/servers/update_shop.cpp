// update_shop SHOP: what a publish run does for the database of a built shop whose online folder is the host's own: the
// SQL files are made, as a difference where that is possible, and the host loads them. Prints "full" or "difference",
// the number of rows, and what the user would be told. For online_update.py.

#include <cstdio>
#include <string>

#include "platform/database/database.h"
#include "platform/files/files.h"
#include "platform/files/settings.h"
#include "platform/ports/clock.h"
#include "platform/text/public_address.h"
#include "publish/update/database_update.h"
#include "sqlexport/incremental_export.h"
#include "support/scripted_user.h"

namespace kv::test {
namespace {

UpdateJob jobOf(const std::string& shop) {
  auto catalogue = Database::open(joinPath(shop, "catalog.mdb"), OpenMode::ReadOnly);
  auto published = catalogue ? readPublishedShop(*catalogue) : Result<PublishedShop>(fail(catalogue.error()));
  if (!published) {
    std::fprintf(stderr, "%s: %s\n", published.error().where.c_str(), published.error().what.c_str());
    std::exit(1);
  }
  const auto folder = catalogue->scalar("SELECT cartella FROM generale");
  const std::string base = publicAddress(published->URL, folder ? asText(*folder) : std::string());
  return {shop, joinPath(shop, "online"), base, std::move(*published)};
}

int update(const std::string& shop) {
  ScriptedUser user;
  MemorySettings settings;
  const LockStatements lock;
  const UpdateJob job = jobOf(shop);
  ExportReport report;
  exportForPublishing({shop, job.onlineFolder, user, settings, lock}, job.shop, false, &report);
  const auto http = makeHttpClient();
  const std::string tag = updateDatabase(job, {*http, systemRandom(), user, [] { return true; }, {}});
  std::printf("%s %lld\n%s\n", report.incremental ? "difference" : "full", static_cast<long long>(report.rows),
              tag.c_str());
  for (const Shown& shown : user.shown) std::printf("%s\n", asText(shown).c_str());
  return 0;
}

}  // namespace
}  // namespace kv::test

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  return kv::test::update(argv[1]);
}
