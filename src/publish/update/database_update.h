#pragma once
// The online database update: once all files of a publish run are on the host, one request per language has the host
// load the SQL files. Only when each of them is answered with "OK" does the build's database become the base of the
// next difference; before the first request that base goes, so that no end of the program in between leaves a false
// one.

#include <functional>
#include <string>

#include "platform/ports/clock.h"
#include "platform/ports/user_port.h"
#include "platform/transfer/http_client.h"
#include "sqlexport/last_run.h"
#include "store/shop/session.h"

namespace kv {

/// What is to be updated: the shop as it is now.
struct UpdateJob {
  std::string shopFolder;    ///< receives db1.log to db4.log and php.log; holds db/sql.mdb
  std::string onlineFolder;  ///< holds the number of languages of the build
  std::string siteBase;      ///< "http://host/folder", without a closing slash
  PublishedShop shop;
  std::string orderKey{};  ///< goes to the shop's database with each request; empty: the shop has none
};
/// The job of an open shop. Failures as Database::prepare.
Result<UpdateJob> updateJobOf(Session& session);

/// Who takes part in an update. References outlive it.
struct UpdateParts {
  HttpClient& http;
  RandomSource& random;
  UserPort& user;  ///< warned when the SQL files can be read over the web
  /// Processes events; false cancels the update. Called at least every 50 ms.
  std::function<bool()> yield;
  /// Shows the text of all answers so far, lines separated by "\n". May be empty.
  std::function<void(const std::string& answers)> show;
  /// Tells when a load was confirmed, for the history of published prices. Outlives the update.
  Clock* clock = &systemClock();
};

/// The script of a language, 1 to 4: "updatedb.php", "updatedb_l2.php".
std::string updateScript(int language);
/// An answer without the line ends and tabs at its end, then without the spaces at both.
std::string cleanAnswer(std::string_view answer);

/// UpdateDB (update the database): asks the host to load the SQL files of each language and stores the answers in
/// db<n>.log. Empty when every language answered "OK", else all answers, each followed by two line ends (CR LF); then
/// php.log receives the host's diagnostics page. Cancelled when `yield` said so.
Result<std::string> UpdateDB(const UpdateJob& job, const UpdateParts& parts);

/// The whole update with what follows from its result. "OK"; or the text that the user is to read; or an empty text
/// when the update was cancelled.
std::string updateDatabase(const UpdateJob& job, const UpdateParts& parts);

/// The question before an update is interrupted, default No.
Question interruptQuestion();

}  // namespace kv
