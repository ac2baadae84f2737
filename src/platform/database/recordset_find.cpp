// Finding rows of a record set. A condition is answered by one query for all rows it holds for; the answer is kept
// until something is written, so that finding first and next costs no further query.

#include <algorithm>

#include "platform/database/recordset.h"
#include "platform/database/recordset_state.h"

namespace kv {
namespace {

// With at most this many rows the query is limited to them, however large the table is.
constexpr std::size_t fewRows = 400;
constexpr std::size_t mostConditions = 20000;

/// A condition that keeps a search to the rows of a short record set; empty for a long one.
std::string amongKeys(const std::vector<std::int64_t>& keys) {
  if (keys.size() > fewRows) return {};
  std::string sql = " AND kv_row IN (";
  for (const std::int64_t each : keys) sql += (sql.back() == '(' ? "" : ",") + std::to_string(each);
  return sql + ")";
}

}  // namespace

void Recordset::State::forgetFound() {
  foundIndexes.clear();
  indexOfKey.clear();
  foundCounter = -1;
}

/// The indexes, ascending, of the rows for which a condition holds now. `bound` is the value of ?1.
Result<std::vector<std::size_t>> Recordset::State::search(std::string_view condition, const Value* bound) {
  auto list = prepare(shape->rowsSql + "(" + std::string(condition) + "\n)" + amongKeys(keys));
  if (!list) return fail(list.error());
  if (bound != nullptr) list->bind(1, *bound);
  if (indexOfKey.size() != keys.size()) {
    indexOfKey.clear();
    for (std::size_t index = 0; index < keys.size(); ++index) indexOfKey.emplace(keys[index], index);
  }
  std::vector<std::size_t> matching;
  for (;;) {
    auto more = list->step();
    if (!more) return fail(more.error());
    if (!*more) break;
    const auto index = indexOfKey.find(list->integer(0));
    if (index != indexOfKey.end()) matching.push_back(index->second);
  }
  std::sort(matching.begin(), matching.end());
  return matching;
}

Result<const std::vector<std::size_t>*> Recordset::State::indexesOf(std::string_view condition) {
  const std::int64_t counter = engine::changeCounter(rowsHandle());
  std::int64_t otherWriters = 0;
  auto stepped = version.step();
  if (!stepped) return fail(stepped.error());
  if (*stepped) otherWriters = version.integer(0);
  version.reset();
  if (counter != foundCounter || otherWriters != foundVersion || foundIndexes.size() >= mostConditions) {
    foundIndexes.clear();
    foundCounter = counter;
    foundVersion = otherWriters;
  }
  auto known = foundIndexes.find(condition);
  if (known == foundIndexes.end()) {
    auto searched = search(condition, nullptr);
    if (!searched) return fail(searched.error());
    known = foundIndexes.emplace(condition, std::move(*searched)).first;
  }
  return &known->second;
}

Result<bool> Recordset::findFirst(std::string_view condition) {
  auto indexes = state_->indexesOf(condition);
  if (!indexes) return fail(indexes.error());
  if ((*indexes)->empty()) return false;
  state_->moveTo(static_cast<std::ptrdiff_t>((*indexes)->front()));
  return true;
}

Result<bool> Recordset::findLast(std::string_view condition) {
  auto indexes = state_->indexesOf(condition);
  if (!indexes) return fail(indexes.error());
  if ((*indexes)->empty()) return false;
  state_->moveTo(static_cast<std::ptrdiff_t>((*indexes)->back()));
  return true;
}

Result<bool> Recordset::findNext(std::string_view condition) {
  auto indexes = state_->indexesOf(condition);
  if (!indexes) return fail(indexes.error());
  const auto next = std::partition_point((*indexes)->begin(), (*indexes)->end(), [&](std::size_t index) {
    return static_cast<std::ptrdiff_t>(index) <= state_->cursor;
  });
  if (next == (*indexes)->end()) return false;
  state_->moveTo(static_cast<std::ptrdiff_t>(*next));
  return true;
}

Result<bool> Recordset::findPrevious(std::string_view condition) {
  auto indexes = state_->indexesOf(condition);
  if (!indexes) return fail(indexes.error());
  const auto next = std::partition_point((*indexes)->begin(), (*indexes)->end(), [&](std::size_t index) {
    return static_cast<std::ptrdiff_t>(index) < state_->cursor;
  });
  if (next == (*indexes)->begin()) return false;
  state_->moveTo(static_cast<std::ptrdiff_t>(*(next - 1)));
  return true;
}

Result<bool> Recordset::seek(std::string_view column, const Value& value) {
  const int at = columnIndex(column);
  if (at < 0) return fail(ErrorKind::Missing, state_->where(), "no such column: " + std::string(column));
  const ColumnInfo& info = state_->shape->columns[static_cast<std::size_t>(at)];
  // The text sought may be longer than the column; then no row has it.
  ColumnInfo unsized = info;
  unsized.size = 0;
  auto wanted = engine::valueForColumn(unsized, value, state_->where());
  if (!wanted) return false;
  const std::string name =
      engine::quoted(state_->memory ? state_->shape->origins[static_cast<std::size_t>(at)] : info.name);
  auto indexes = state_->search(name + " IS ?1", &*wanted);
  if (!indexes) return fail(indexes.error());
  if (indexes->empty()) return false;
  state_->moveTo(static_cast<std::ptrdiff_t>(indexes->front()));
  return true;
}

}  // namespace kv
