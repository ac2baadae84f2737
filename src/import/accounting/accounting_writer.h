#pragma once
// Writes a plan of an accounting import into the catalogue, inside the transaction of its caller.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "import/accounting/accounting_plan.h"

namespace kv {

/// Writes departments and articles of a plan. Each row is one statement, so that a failure leaves no half row.
class AccountingWriter {
 public:
  /// department, model: as in AccountingRequest. All but the texts outlive this object.
  AccountingWriter(Database& catalogue, AccountingPlan& plan, const AccountingOptions& options)
      : catalogue_(catalogue), plan_(plan), options_(options) {}

  /// Finds where new departments come: after `department` under its parent, or at the end of the top level.
  Result<> start(const std::string& department, const std::string& model);
  /// Writes one planned department; nothing unless it is new.
  Result<> writeDepartment(const PlannedDepartment& department);
  /// Writes one planned article; nothing unless it is new or changed.
  Result<> writeArticle(const PlannedArticle& article);

 private:
  /// Moves the orders of later departments, so that so many new ones fit.
  Result<> makeRoom(std::int64_t count);
  /// Prepares the statements that every article needs.
  Result<> prepareArticles();
  /// The order after the last article of a department.
  Result<std::int64_t> nextOrder(const std::string& department);
  /// Adds an article that the catalogue doesn't have.
  Result<> insertArticle(const PlannedArticle& article);
  /// Changes one that it has, in the columns that were asked for.
  Result<> updateArticle(const PlannedArticle& article);
  /// The values that both statements share.
  void bindFields(Statement& statement, const PlannedArticle& article) const;

  Database& catalogue_;
  AccountingPlan& plan_;
  const AccountingOptions& options_;
  std::string parent_;
  std::string model_;
  std::int64_t level_ = 1;
  std::int64_t order_ = 0;  // of the department before the next new one
  std::optional<Statement> insert_, update_;
  std::unordered_map<std::string, std::int64_t> orders_;  // folded department -> the highest of its articles
};

}  // namespace kv
