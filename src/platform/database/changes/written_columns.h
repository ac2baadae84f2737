#pragma once
// What a change of many rows tells the recorder of changes beforehand: the engine reports each row with all its fields,
// and looking at those of a wide table takes longer than writing it.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"

namespace kv {

/// A promise about the statements that a database runs while it lives: of this table they update these columns and no
/// other. A recorder looks at no other field then; one that changes all the same is not recorded. The
/// latest promise counts.
class WrittenColumns {
 public:
  /// Columns that the table hasn't are left out. The database outlives the object and is not moved.
  WrittenColumns(Database& database, const TableInfo& table, const std::vector<std::string>& columns);
  ~WrittenColumns();
  WrittenColumns(const WrittenColumns&) = delete;
  WrittenColumns& operator=(const WrittenColumns&) = delete;

  /// The indexes of the columns that were promised for a table, by its name as declared; null without a promise.
  static const std::vector<std::size_t>* of(const Database& database, std::string_view table);

 private:
  Database& database_;
  std::string table_;
  std::vector<std::size_t> columns_;
  const WrittenColumns* former_;
};

}  // namespace kv
