#include "platform/database/statement_gate.h"

#include <atomic>

#include "platform/database/engine.h"

namespace kv {
namespace {

std::atomic<StatementGate*> statementGate{nullptr};

/// The cache that may hold the statement of a text; null where there is none, or the text is too long for it.
engine::StatementCache* cacheFor(sqlite3* handle, std::string_view sql) {
  if (sql.size() > engine::StatementCache::longestText) return nullptr;
  engine::StatementCache* cache = engine::cacheOf(handle);
  return cache != nullptr && cache->refresh(handle) ? cache : nullptr;
}

}  // namespace

StatementGate* setStatementGate(StatementGate* gate) { return statementGate.exchange(gate); }

namespace engine {

int ask(std::string_view sql) {
  StatementGate* gate = statementGate.load(std::memory_order_acquire);
  return gate == nullptr ? SQLITE_OK : gate->refusal(sql);
}

int prepare(sqlite3* handle, std::string_view sql, unsigned flags, sqlite3_stmt** statement, const char** tail) {
  *statement = nullptr;
  if (const int code = ask(sql); code != SQLITE_OK) return code;
  return sqlite3_prepare_v3(handle, sql.data(), static_cast<int>(sql.size()), flags, statement, tail);
}

int step(sqlite3_stmt* statement) {
  if (StatementGate* gate = statementGate.load(std::memory_order_acquire)) {
    const char* sql = sqlite3_sql(statement);
    if (const int code = gate->refusal(sql == nullptr ? "" : sql); code != SQLITE_OK) return code;
  }
  return sqlite3_step(statement);
}

int borrow(sqlite3* handle, std::string_view sql, sqlite3_stmt** statement, const char** tail) {
  *statement = nullptr;
  if (const int code = ask(sql); code != SQLITE_OK) return code;
  StatementCache* cache = cacheFor(handle, sql);
  const char* end = sql.data() + sql.size();
  if (cache != nullptr) *statement = cache->take(sql);
  if (*statement == nullptr) {
    const int code = sqlite3_prepare_v3(handle, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                        statement, &end);
    if (code != SQLITE_OK) return code;
    // Only a text that is one statement and nothing else is found again by its text.
    if (cache != nullptr && *statement != nullptr && end == sql.data() + sql.size()) cache->lend(*statement);
  }
  if (tail != nullptr) *tail = end;
  return SQLITE_OK;
}

void giveBack(sqlite3_stmt* statement) {
  if (statement == nullptr) return;
  if (StatementCache* cache = cacheOf(sqlite3_db_handle(statement))) {
    cache->giveBack(statement);
  } else {
    sqlite3_finalize(statement);
  }
}

}  // namespace engine
}  // namespace kv
