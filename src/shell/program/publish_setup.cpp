#include "shell/program/publish_setup.h"

#include <utility>

#include "platform/files/files.h"
#include "platform/ports/failure_text.h"
#include "publish/update/database_update.h"
#include "sqlexport/incremental_export.h"

namespace kv {
namespace {

constexpr const char* builtFirst = "E' necessario costruire il negozio prima di aggiornare il sito";

}  // namespace

Result<PublishSetup> PublishSetup::of(Session& session, Environment& env, LockStatements& lock) {
  auto job = publishJobOf(session);
  if (!job) return fail(job.error());
  PublishSetup setup(session, env, lock);
  setup.job = std::move(*job);
  setup.settings = AvanzateTrasf(session.ShopFolder, env.settings, lock);
  setup.way = readFirewallSettings(session.ShopFolder);
  return setup;
}

bool PublishSetup::exportSql(UserPort& user) {
  const auto shop = readPublishedShop(session_->catalogue);
  if (!shop) {
    user.message(failureText(shop.error()), Icon::Exclamation);
    return true;
  }
  return exportForPublishing({session_->ShopFolder, session_->onlineFolder, user, env_->settings, *lock_}, *shop,
                             settings.allRecords);
}

std::string PublishSetup::updateDatabase(UserPort& user, HttpClient& http, const std::function<bool()>& yield) const {
  const auto update = updateJobOf(*session_);
  if (!update) return failureText(update.error());
  return kv::updateDatabase(*update, {http, env_->random, user, yield, {}, &env_->clock});
}

bool isBuilt(const std::string& shopFolder, UserPort& user) {
  if (readBytes(entryPath(shopFolder, "kvftp.dat"))) return true;
  user.message(builtFirst, Icon::Exclamation);
  return false;
}

}  // namespace kv
