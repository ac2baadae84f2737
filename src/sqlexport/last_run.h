#pragma once
// What is remembered of the last database that a host confirmed: `db/last.mdb`, a copy of it, and `db/last.ini`, which
// says where it went. Both exist together or not at all; with them the next publish run may send a difference.

#include <array>
#include <cstddef>
#include <functional>
#include <string>

#include "platform/database/database.h"
#include "platform/ports/result.h"
#include "platform/ports/user_port.h"

namespace kv {

/// Where a shop and its database are, as the columns of `generale` of these names hold it.
struct PublishedShop {
  std::string hostname, URL, db_hostname, db_dbname;
  std::string db_security;  ///< the token of the last build
};
/// The columns of the open catalogue; empty texts when `generale` has no row. Failures as Database::prepare.
Result<PublishedShop> readPublishedShop(Database& catalogue);

/// The lines of last.ini. Eleven are read; those that the file doesn't have are empty, and only the first five mean
/// something: hostname, URL, db_hostname, db_dbname, and the number of languages.
using LastRun = std::array<std::string, 11>;
/// The number of lines that are written.
inline constexpr std::size_t lastRunLines = 5;

/// The path of last.mdb and last.ini of a shop folder.
std::string lastDatabasePath(const std::string& shopFolder);
std::string lastRunPath(const std::string& shopFolder);

/// The lines of last.ini; all empty when there is no such file.
LastRun readLastRun(const std::string& shopFolder);
/// Makes db/sql.mdb the base of the next difference: deletes last.mdb, writes last.ini and then copies sql.mdb, so that
/// a kill at any moment leaves either the whole base or none. After a failure there is none. goOn: asked every few MiB
/// of the copy; false ends it as Cancelled.
Result<> keepLastRun(const std::string& shopFolder, const PublishedShop& shop, double languages,
                     const std::function<bool()>& goOn = {});
/// Deletes last.mdb: the next publish run is a full one. One that isn't there is no failure.
Result<> forgetLastRun(const std::string& shopFolder);

/// Where CanUseIncremental looks.
struct LastRunFolders {
  std::string shopFolder;    ///< holds db/last.mdb
  std::string onlineFolder;  ///< holds the number of languages of the last build
};
/// CanUseIncremental (may the difference be used): whether the host is known to hold last.mdb: it is there with its
/// last.ini, and number of languages, host and name of the database are the same as now. When the FTP host has changed
/// and the address of the site hasn't, the user is asked whether the database is the same one (default No), unless
/// `askUser` is false, which counts as yes; when both have changed it isn't. Texts are compared without regard to case.
bool CanUseIncremental(const LastRunFolders& folders, const PublishedShop& shop, UserPort& user, bool askUser);

}  // namespace kv
