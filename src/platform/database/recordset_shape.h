#pragma once
// What a record set knows of its source before it reads a row. Record sets of one source share it.

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/database/table_info.h"

namespace kv::engine {

/// Hash of a column name, equal for names that differ in case alone.
struct ColumnNameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const;
};
/// Whether two column names are equal, case ignored.
struct ColumnNameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};
/// Values by column name.
template <class T>
using ByColumnName = std::unordered_map<std::string, T, ColumnNameHash, ColumnNameEqual>;

/// The columns of a source and the statements that read its rows.
struct RecordsetShape {
  std::string schema;                       ///< "main" or an attached file
  std::string table;                        ///< as the engine spells it
  std::vector<ColumnInfo> columns;          ///< under the names of the source
  std::vector<std::string> origins;         ///< the table's column of each
  ByColumnName<std::size_t> columnIndexes;  ///< by the names of the source
  bool wholeTable = false;                  ///< the source asks for "*": its names are the table's own
  std::size_t factCalls = 0;                ///< calls of the engine that reading the columns of the table takes
  std::string rowsSql;                      ///< SELECT of kv_row over all rows of the table; ends with WHERE
  std::string fetchSql;                     ///< reads one row by its number
  std::string versionSql;                   ///< reads the engine's counter of changes by other connections
};

}  // namespace kv::engine
