#pragma once
// A store whose n-th call of the engine fails while the object lives: a statement is not prepared, or a step of it is
// not made. Rolling back always works, as it does in the engine: it only forgets.

#include <string>
#include <utility>

#include "platform/database/database.h"
#include "platform/database/statement_gate.h"
#include "support/failure_point.h"

namespace kv::test {

class FailingStore final : public StatementGate {
 public:
  static constexpr int inputOutputError = 10;  ///< the engine's code SQLITE_IOERR
  static constexpr int fullDisk = 13;          ///< SQLITE_FULL

  /// failing: the call that fails, from 1; 0: none, the calls are only counted. code: what it fails with.
  explicit FailingStore(std::int64_t failing = 0, AfterFailure after = AfterFailure::Works, int code = inputOutputError)
      : point_(failing, after), code_(code), before_(setStatementGate(this)) {}
  FailingStore(const FailingStore&) = delete;
  FailingStore& operator=(const FailingStore&) = delete;
  ~FailingStore() override { setStatementGate(before_); }

  /// Only statements that begin so count and fail.
  void onlyFor(std::string beginning) { beginning_ = std::move(beginning); }
  /// The failure undoes the open transaction of a database, as the engine does when a disk is full. It must outlive
  /// this object.
  void undoTransactionOf(Database& database) { undone_ = &database; }

  int refusal(std::string_view sql) override {
    if (sql.starts_with("ROLLBACK") || !sql.starts_with(beginning_)) return 0;
    if (!point_.next()) return 0;
    if (undone_ != nullptr) undo();
    return code_;
  }
  /// Calls so far, those that failed included.
  std::int64_t calls() const { return point_.calls(); }
  bool hasFailed() const { return point_.hasFailed(); }

 private:
  void undo() {
    Database* const database = std::exchange(undone_, nullptr);
    ignore(database->execute("ROLLBACK"), "it fails where no transaction is open");
  }

  FailurePoint point_;
  int code_;
  std::string beginning_;
  StatementGate* before_;
  Database* undone_ = nullptr;
};

}  // namespace kv::test
