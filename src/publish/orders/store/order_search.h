#pragma once
// How orders are found in their file: the text that is searched, and the statement of a filter. For the order store.

#include <string>
#include <vector>

#include "platform/database/database.h"
#include "publish/orders/store/order_store.h"

namespace kv {

/// All that a search looks into, in lower case.
std::string searchedText(const DeskOrder& order);

/// The order of a kept text. Corrupt, naming `path`, when it is none; other failures as readJson.
Result<DeskOrder> keptOrder(std::string_view text, const std::string& path);

/// A query over the orders that pass a filter, newest first. It outlives its statement.
class OrderQuery {
 public:
  /// columns: of the table `ordini`, as SQL.
  OrderQuery(std::string_view columns, const OrderLookup& filter);
  /// The statement with the filter's values bound. Failures as Database::prepare.
  Result<Statement> prepare(Database& database) const;

 private:
  void require(std::string_view condition, std::string value);

  std::string sql_;
  std::vector<std::string> values_;
};

}  // namespace kv
