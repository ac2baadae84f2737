#include "platform/database/changes/written_columns.h"

namespace kv {

WrittenColumns::WrittenColumns(Database& database, const TableInfo& table, const std::vector<std::string>& columns)
    : database_(database), table_(table.name), former_(database.written_) {
  for (const std::string& column : columns) {
    const int index = table.columnIndex(column);
    if (index >= 0) columns_.push_back(static_cast<std::size_t>(index));
  }
  database.written_ = this;
}

WrittenColumns::~WrittenColumns() { database_.written_ = former_; }

const std::vector<std::size_t>* WrittenColumns::of(const Database& database, std::string_view table) {
  const WrittenColumns* const promise = database.written_;
  return promise != nullptr && promise->table_ == table ? &promise->columns_ : nullptr;
}

}  // namespace kv
