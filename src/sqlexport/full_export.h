#pragma once
// The whole build database as MySQL text: for each language a drop file, which removes the shop's tables, and a load
// file, which creates them and inserts every row. The files are made once for a build, under names that nobody
// can guess (`<sec>db.sc`), and published as plain copies (`db.sql`).

#include <cstdint>
#include <string>

#include "platform/files/settings.h"
#include "platform/ports/user_port.h"
#include "sqlexport/export_files.h"
#include "sqlexport/sql_style.h"

namespace kv {

/// The folders, the user and the settings of an export. References outlive it.
struct ExportContext {
  std::string shopFolder;    ///< holds db/sql.mdb
  std::string onlineFolder;  ///< receives the files
  UserPort& user;            ///< sees the failures
  const Settings& settings;
  const LockStatements& lock;
};

/// ExportFullSql (full export): makes sure that the .sql files of the shop's languages are in the online folder.
/// `sec` is db_security of `generale`. Load files of the last export are published again unchanged, unless the
/// separator has changed since. Nothing happens when there are none and the build has stored no number of languages.
/// Failures of deletions and copies are ignored. The user's cancel is asked for before each table and every few
/// milliseconds; after one nothing of the export is left, and the report says so.
void ExportFullSql(const ExportContext& context, const std::string& sec, ExportReport* report = nullptr);

/// One load file and one drop file to be written.
struct DatabaseExport {
  std::string databasePath;  ///< of the build database
  std::string loadFilePath;
  std::string dropFilePath;
  std::string languageSuffix;  ///< "" for language 1
  std::string sec;             ///< db_security, the first line of both files
};

/// ExportDatabaseSql (export a database): writes the two files. A failure is shown to the user with its
/// description, the files keep what was written until then, and the result is false. A cancel is a failure of which
/// the user isn't told. `rows`: the number written.
bool ExportDatabaseSql(const DatabaseExport& job, const SqlStyle& style, UserPort& user, std::int64_t* rows = nullptr);

}  // namespace kv
