#pragma once
// A publish run of the open shop, put together from the shop's files and columns; what the window and the command line
// share.

#include <functional>
#include <string>

#include "platform/transfer/http_client.h"
#include "publish/run/publish_run.h"
#include "sqlexport/sql_style.h"
#include "store/shop/session.h"

namespace kv {

class PublishSetup {
 public:
  /// Reads what the run needs, and puts the choices for the SQL files into force (AvanzateTrasf). References outlive
  /// the object. Failures as Database::prepare.
  static Result<PublishSetup> of(Session& session, Environment& env, LockStatements& lock);

  PublishJob job;
  PublishSettings settings;
  FirewallSettings way;

  /// The choices of the run as they are now.
  UploadOptions options() const { return uploadOptions(job, settings, way); }
  /// Makes the SQL files, whole or as a difference; failures are shown to `user`. False when that user has cancelled
  /// it.
  bool exportSql(UserPort& user);
  /// Has the host load the SQL files, without a window. "OK", a text that the user is to read, or empty when `yield`
  /// has cancelled it.
  std::string updateDatabase(UserPort& user, HttpClient& http, const std::function<bool()>& yield) const;

 private:
  PublishSetup(Session& session, Environment& env, LockStatements& lock)
      : session_(&session), env_(&env), lock_(&lock) {}
  Session* session_;
  Environment* env_;
  LockStatements* lock_;
};

/// Whether the shop has been built; else the user is told to.
bool isBuilt(const std::string& shopFolder, UserPort& user);

}  // namespace kv
