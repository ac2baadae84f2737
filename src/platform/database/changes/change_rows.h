#pragma once
// Rows by their number, read and written field by field as the engine holds them. For the recorder of changes.

#include <sqlite3.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/database/changes/changes.h"

namespace kv {

/// A value of the engine as a cell of its own.
Cell cellOf(sqlite3_value* value);
/// Whether two values have the same type and content.
bool isSameValue(sqlite3_value* a, sqlite3_value* b);

/// The rows of one connection, for one run of reads or writes: its statements are prepared once.
class ChangeRows {
 public:
  /// The connection outlives the object. path: named in failures.
  ChangeRows(sqlite3* handle, std::string path) : handle_(handle), path_(std::move(path)) {}

  /// All fields of a row; empty when there is no row.
  Result<RowImage> read(const std::string& table, std::int64_t row);
  /// The fields `columns` of a row, at least one; empty when there is no such row or column.
  Result<RowImage> readFields(const std::string& table, std::int64_t row, const std::vector<std::size_t>& columns);
  /// Deletes a row; one that isn't there is no failure.
  Result<> remove(const std::string& table, std::int64_t row);
  /// Adds a row with the first fields of its table; those that are missing take their defaults. Malformed for more
  /// fields than there are.
  Result<> insert(const std::string& table, std::int64_t row, const RowImage& image);
  /// Writes the fields `columns` of a row.
  Result<> update(const std::string& table, std::int64_t row, const std::vector<std::size_t>& columns,
                  const RowImage& image);
  /// Whether writing these fields one row after the other could meet the unique key of a row that is yet to be written.
  Result<bool> areKeys(const std::string& table, const std::vector<std::size_t>& columns);

 private:
  struct Finisher {
    void operator()(sqlite3_stmt* statement) const;
  };
  using Prepared = std::unique_ptr<sqlite3_stmt, Finisher>;
  using Names = std::vector<std::string>;
  using Columns = std::vector<std::size_t>;
  /// Fields of unique keys; nothing when any field may be part of one.
  using Keys = std::optional<std::set<std::size_t>>;

  /// Reads some fields of a table's rows: all that were asked for so far.
  struct FieldReader {
    Prepared statement;
    std::set<std::size_t> columns;
    std::vector<int> indexes;  ///< in the answer, by column; -1: not read
    bool reads(const Columns& wanted) const;
  };

  Result<Prepared> prepare(const std::string& sql) const;
  Result<const FieldReader*> fieldReader(const std::string& table, const Columns& columns);
  Result<bool> stepTo(sqlite3_stmt* statement, std::int64_t row) const;
  Result<const Names*> namesOf(const std::string& table);
  Result<Keys> findKeys(const std::string& table) const;
  Result<sqlite3_stmt*> updater(const std::string& table, const Columns& columns);
  Result<> run(sqlite3_stmt* statement, std::int64_t row, const RowImage& image) const;
  tl::unexpected<Error> failed(int code) const;

  sqlite3* handle_;
  std::string path_;
  std::map<std::string, Prepared> readers_, deletions_;                 // by table
  std::map<std::pair<std::string, std::size_t>, Prepared> insertions_;  // by table and number of fields
  std::map<std::pair<std::string, Columns>, Prepared> updates_;
  std::map<std::string, FieldReader> fieldReaders_;  // by table
  std::map<std::string, Names> names_;
  std::map<std::string, Keys> keys_;
};

}  // namespace kv
