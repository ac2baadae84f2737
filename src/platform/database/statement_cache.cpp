#include "platform/database/statement_cache.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "platform/database/recordset_shape.h"

namespace kv::engine {
namespace {

// It reads no row, but like every statement it compares the schema it was prepared for with the one in the file, and
// is prepared again when they differ.
constexpr const char* probeSql = "SELECT 1 FROM main.sqlite_schema LIMIT 0";
constexpr int firstAttached = 2;  // after "main" and "temp"

std::size_t hashOf(std::string_view sql) { return std::hash<std::string_view>()(sql); }

}  // namespace

bool StatementCache::refresh(sqlite3* handle) {
  if (closed_ || paused_ || sqlite3_db_name(handle, firstAttached) != nullptr) return false;
  if (probe_ == nullptr && sqlite3_prepare_v3(handle, probeSql, -1, SQLITE_PREPARE_PERSISTENT, &probe_, nullptr) != 0) {
    return false;
  }
  const int code = sqlite3_step(probe_);
  sqlite3_reset(probe_);
  if (sqlite3_stmt_status(probe_, SQLITE_STMTSTATUS_REPREPARE, 1) != 0) clear();
  return code == SQLITE_DONE;
}

sqlite3_stmt* StatementCache::take(std::string_view sql) {
  const std::size_t hash = hashOf(sql);
  const auto found = std::find_if(idle_.rbegin(), idle_.rend(), [&](const Idle& each) {
    return each.hash == hash && each.size == sql.size() && sqlite3_sql(each.statement) == sql;
  });
  if (found == idle_.rend()) return nullptr;
  sqlite3_stmt* const statement = found->statement;
  idle_.erase(std::next(found).base());
  lent_.push_back(statement);
  return statement;
}

void StatementCache::giveBack(sqlite3_stmt* statement) {
  const auto lent = std::find(lent_.rbegin(), lent_.rend(), statement);
  if (lent == lent_.rend()) {
    sqlite3_finalize(statement);
    return;
  }
  lent_.erase(std::next(lent).base());
  sqlite3_reset(statement);
  sqlite3_clear_bindings(statement);
  if (idle_.size() >= mostStatements) {
    sqlite3_finalize(idle_.front().statement);
    idle_.erase(idle_.begin());
  }
  const std::string_view sql = sqlite3_sql(statement);
  idle_.push_back({hashOf(sql), sql.size(), statement});
}

std::shared_ptr<const RecordsetShape> StatementCache::shape(std::string_view source) const {
  const auto found = shapes_.find(source);
  return found == shapes_.end() ? nullptr : found->second;
}

void StatementCache::keepShape(std::string_view source, std::shared_ptr<const RecordsetShape> shape) {
  if (shapes_.size() >= mostShapes) shapes_.clear();
  shapes_.insert_or_assign(std::string(source), std::move(shape));
}

void StatementCache::clear() {
  for (const Idle& each : idle_) sqlite3_finalize(each.statement);
  idle_.clear();
  lent_.clear();
  shapes_.clear();
}

void StatementCache::pause() {
  clear();
  paused_ = true;
}

void StatementCache::close() {
  clear();
  sqlite3_finalize(std::exchange(probe_, nullptr));
  closed_ = true;
}

}  // namespace kv::engine
