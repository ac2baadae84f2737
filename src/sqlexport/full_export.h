#pragma once
// The whole build database as MySQL text: for each language a drop file, which removes the shop's tables, and a load
// file, which creates them and inserts every row. The files are made once for a build, under names that nobody can
// guess (`<sec>db.sc`), and published as plain copies (`db.sql`).

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files/settings.h"
#include "platform/ports/user_port.h"
#include "sqlexport/sql_style.h"

namespace kv {

/// Where an export reads and writes, and what it goes by. References outlive it.
struct ExportPlace {
  std::string shopFolder;
  std::string onlineFolder;
  UserPort& user;
  const Settings& settings;
  const LockStatements& lock;
};

/// What a full export did, for whoever tells it.
struct ExportReport {
  int languages = 0;                   ///< exported now; 0 when the files of an earlier export were good
  std::int64_t rows = 0;               ///< written now
  bool failed = false;                 ///< the user was told of a failure
  std::vector<std::string> published;  ///< names of the files copied, in order
  std::vector<std::string> unwritten;  ///< names of those that were to be copied and could not be written
};

/// ExportFullSql (full export): makes sure that the .sql files of the shop's languages stand in the online folder.
/// `sec` is db_security of `generale`. Load files of the last export are published again as they are, unless the
/// separator has changed since. Nothing happens when there are none and the build noted no number of languages.
/// Failing deletions and copies are passed over.
void ExportFullSql(const ExportPlace& place, const std::string& sec, ExportReport* report = nullptr);

/// One load file and one drop file to be made.
struct DatabaseExport {
  std::string databasePath;
  std::string loadFilePath;
  std::string dropFilePath;
  std::string languageSuffix;
  std::string sec;
};

/// ExportDatabaseSql (export a database): writes the two files. On a failure the user is told its description, and
/// the files keep what was written until then. False then; true otherwise. `rows` counts those written.
bool ExportDatabaseSql(const DatabaseExport& job, const SqlStyle& style, UserPort& user, std::int64_t* rows = nullptr);

}  // namespace kv
