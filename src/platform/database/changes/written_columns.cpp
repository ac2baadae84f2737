#include "platform/database/changes/written_columns.h"

namespace kv {
namespace {

thread_local const WrittenColumns* latestPromise = nullptr;

}  // namespace

WrittenColumns::WrittenColumns(const Database& database, const TableInfo& table,
                               const std::vector<std::string>& columns)
    : database_(&database), table_(table.name), former_(latestPromise) {
  for (const std::string& column : columns) {
    const int index = table.columnIndex(column);
    if (index >= 0) columns_.push_back(static_cast<std::size_t>(index));
  }
  latestPromise = this;
}

WrittenColumns::~WrittenColumns() { latestPromise = former_; }

const std::vector<std::size_t>* WrittenColumns::of(const Database& database, std::string_view table) {
  const WrittenColumns* promise = latestPromise;
  const bool concerns = promise != nullptr && promise->database_ == &database && promise->table_ == table;
  return concerns ? &promise->columns_ : nullptr;
}

}  // namespace kv
