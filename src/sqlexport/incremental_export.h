#pragma once
// The difference between a build and the database that the host is known to hold, as MySQL text: for each language a
// file that deletes rows and one that inserts rows, published under the names of the full export.

#include <cstdint>
#include <string>

#include "sqlexport/full_export.h"
#include "sqlexport/last_run.h"

namespace kv {

/// ExportChangedRows (export the changed rows): writes the rows that CompareDatabases has left in the database into
/// `loadFilePath`, and the deletions of old ones, fifty keys a line, into `dropFilePath`. A failure is shown to the
/// user with its description, the files keep what was written until then, and the result is false. A cancel is a
/// failure of which the user isn't told. `rows`: rows written.
bool ExportChangedRows(const DatabaseExport& job, const SqlStyle& style, UserPort& user, std::int64_t* rows = nullptr);

/// ExportIncrementalSql (incremental export): makes sure that the .sql files of the shop's languages, holding the
/// difference between db/sql.mdb and db/last.mdb, are in the online folder. Files of the last call are published again
/// unchanged, without reading a database, unless the separator has changed since. False when the caller must run the
/// full export: the build has stored no number of languages, the databases can't be compared, or a file couldn't be
/// written. What was written of a difference is then deleted. After a cancel, which is asked for as by ExportFullSql,
/// the report says so and there is nothing to run.
bool ExportIncrementalSql(const ExportContext& context, const std::string& sec, ExportReport* report = nullptr);

/// The export of a publish run: the difference when it is wanted and CanUseIncremental, asked without a question, says
/// so; the full export otherwise, and when the difference can't be made. False when the user has cancelled it.
bool exportForPublishing(const ExportContext& context, const PublishedShop& shop, bool allRecords,
                         ExportReport* report = nullptr);

}  // namespace kv
