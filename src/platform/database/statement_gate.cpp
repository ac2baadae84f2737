#include "platform/database/statement_gate.h"

#include <atomic>

#include "platform/database/engine.h"

namespace kv {
namespace {

std::atomic<StatementGate*> statementGate{nullptr};

}  // namespace

StatementGate* setStatementGate(StatementGate* gate) { return statementGate.exchange(gate); }

namespace engine {

int prepare(sqlite3* handle, std::string_view sql, unsigned flags, sqlite3_stmt** statement, const char** tail) {
  *statement = nullptr;
  if (StatementGate* gate = statementGate.load(std::memory_order_acquire)) {
    if (const int code = gate->refusal(sql); code != SQLITE_OK) return code;
  }
  return sqlite3_prepare_v3(handle, sql.data(), static_cast<int>(sql.size()), flags, statement, tail);
}

int step(sqlite3_stmt* statement) {
  if (StatementGate* gate = statementGate.load(std::memory_order_acquire)) {
    const char* sql = sqlite3_sql(statement);
    if (const int code = gate->refusal(sql == nullptr ? "" : sql); code != SQLITE_OK) return code;
  }
  return sqlite3_step(statement);
}

}  // namespace engine
}  // namespace kv
