#pragma once
// What mdbtools' library reads from a Jet database. It follows lengths and pointers of the file as they come, so these
// routines are called in a process of their own alone (platform/files/isolated_work.h).

#include <string>
#include <vector>

#include "platform/files/isolated_work.h"

namespace kv {

/// A table and some of its columns, names in any case.
struct JetQuery {
  std::string table;
  std::vector<std::string> columns;
};

/// Gives, as rows of three fields for jetRows, the name of each table that isn't the database's own with the name and
/// the number of the type of each of its columns. A failure in the stream when the file is no such database.
void listJetColumns(const std::string& path, const IsolatedOutput& output);

/// Gives the fields of the rows of a table, deleted rows left out, for jetRows. A failure in the stream when the table
/// or a column isn't there, or when the file has fewer rows than it says. A text is cut at a million bytes.
void readJetTable(const std::string& path, const JetQuery& query, const IsolatedOutput& output);

}  // namespace kv
