#pragma once
// Tables of a Jet database (Jet 3 and Jet 4, "*.mdb"), for reading alone. Accounting programs of the time keep their
// data in such files. Each is read in a process of its own with bounded memory and time: a damaged file is an Error.

#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/value.h"
#include "platform/ports/result.h"

namespace kv {

/// Bytes at the start of a file that isJetStart needs.
inline constexpr std::size_t jetStartSize = 19;
/// Whether the first bytes of a file are those of a Jet database.
bool isJetStart(std::string_view start);

/// A table of a Jet database and its columns, in the order of the file.
struct JetTableInfo {
  std::string name;
  std::vector<std::string> columns;
  std::vector<ColumnType> types;  ///< of each column; one that isn't known here is Text
};

/// A Jet database whose tables are known.
class JetFile {
 public:
  /// Reads which tables there are, the database's own ones left out. Missing when there is no such file, Malformed when
  /// it is no Jet database, a damaged one, or one that a password encrypts.
  static Result<JetFile> open(const std::string& path);

  const std::vector<JetTableInfo>& tables() const { return tables_; }
  /// The fields of the rows of a table for the columns that are named, deleted rows left out. Names ignore case. Whole
  /// numbers and flags give int64, Single and Double give double, currency gives Money; Null and an empty text are both
  /// Null. A text is cut at a million bytes; pictures and other bytes are Null. Missing when there is no such table or
  /// column, Malformed when the file is damaged.
  Result<std::vector<std::vector<Value>>> rows(std::string_view table, const std::vector<std::string>& columns) const;
  /// Creates a table of the same columns with the rows of this one in `target`. Failures as rows and
  /// Database::createTable.
  Result<> copyTable(const JetTableInfo& table, Database& target) const;

 private:
  explicit JetFile(std::string path) : path_(std::move(path)) {}
  std::string path_;
  std::vector<JetTableInfo> tables_;
};

}  // namespace kv
