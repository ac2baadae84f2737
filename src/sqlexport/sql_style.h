#pragma once
// What the merchant's settings and the dialect decide for every statement, and what load and drop files share: the
// first lines, and which tables belong to a language.

#include <string>
#include <string_view>

#include "platform/database/table_info.h"
#include "platform/files/output_file.h"
#include "platform/files/settings.h"
#include "sqlexport/sql_types.h"

namespace kv {

/// Whether LOCK TABLES and UNLOCK TABLES are written. One object of the program, which both exports read and the
/// reader of kvftp.ini sets; it keeps its value when there is nothing to read.
struct LockStatements {
  bool on = true;
};

/// Sets the lock by the line "LOCK:" of kvftp.ini in the shop folder: off for 0 (MySQL 4.x), on for any other value.
/// A file without that line, or none, changes nothing.
void readLockOption(const std::string& shopFolder, LockStatements& lock);

/// How the statements of one export are written.
struct SqlStyle {
  std::string separator = ";";  ///< ends each statement
  bool lockTables = true;       ///< LOCK TABLES and UNLOCK TABLES around the rows
  SqlTarget target = TARGET;
};

/// The style for an export now. The separator is the setting QS2 when that starts with ";", else ";".
SqlStyle sqlStyle(const Settings& settings, const LockStatements& lock);

/// The second line of a dump with the present setting: "#QS=" and QS2; empty when QS2 is.
std::string expectedMark(const Settings& settings);
/// Whether the file at `path` was made with another separator than the setting now asks for.
bool isStale(const std::string& path, const Settings& settings);

/// The number of languages that the build has stored in `<sec>.sc` of the online folder; 0 when there is no number.
double notedLanguages(const std::string& onlineFolder, const std::string& sec);

/// Whether a table goes into the files of a language: ordinary, and for a suffix its name contains that suffix,
/// without one it doesn't contain "_l".
bool isExported(const TableInfo& table, std::string_view languageSuffix);

/// Writes the line "#" and `sec`, and the line "#QS=" and the separator when it isn't ";".
void writeHead(OutputFile& out, const std::string& sec, const SqlStyle& style);

/// Writes CREATE TABLE, the warnings that are pending, and an empty line. A column whose type SQL lacks is a
/// failure; what was written until then stays.
Result<> writeDefinition(OutputFile& out, const TableInfo& table, const SqlStyle& style, ExportWarnings& warnings);

/// Writes what is pending, in Windows-1252, and forgets it.
void writeWarnings(OutputFile& out, ExportWarnings& warnings);

}  // namespace kv
