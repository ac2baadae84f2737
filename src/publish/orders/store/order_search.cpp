#include "publish/orders/store/order_search.h"

#include "platform/text/text.h"

namespace kv {
namespace {

/// Sorts after every time of its day.
constexpr std::string_view endOfDay = " 99";

}  // namespace

std::string searchedText(const DeskOrder& order) {
  std::string text;
  const auto add = [&text](std::string_view part) {
    if (!part.empty()) text.append(part).append("\n");
  };
  for (const std::string* part : {&order.code, &order.name, &order.email, &order.method, &order.summary}) add(*part);
  for (const auto& [name, value] : order.fields) add(value);
  for (const DeskOrderLine& line : order.lines) {
    for (const std::string* part : {&line.code, &line.title, &line.choices, &line.shopTitle, &line.shopChoices}) {
      add(*part);
    }
  }
  for (const DeskOrderNote& note : order.notes) add(note.text);
  return foldCase(text);
}

Result<DeskOrder> keptOrder(std::string_view text, const std::string& path) {
  auto value = readJson(text);
  if (!value && value.error().kind != ErrorKind::Malformed) return fail(value.error());
  if (!value) return fail(ErrorKind::Corrupt, path, value.error().what);
  auto order = deskOrder(*value);
  if (!order) return fail(ErrorKind::Corrupt, path, order.error().what);
  return order;
}

OrderQuery::OrderQuery(std::string_view columns, const OrderLookup& filter) {
  sql_.append("SELECT ").append(columns).append(" FROM ordini WHERE 1 = 1");
  const std::string search(trim(filter.search));
  if (!search.empty()) require("instr(cerca, ?) > 0", foldCase(search));
  if (filter.state == openOrders) {
    std::string marks;
    for (const std::string& state : openOrderStates()) {
      marks += marks.empty() ? "?" : ", ?";
      values_.push_back(state);
    }
    sql_ += " AND stato IN (" + marks + ")";
  } else if (!filter.state.empty()) {
    require("stato = ?", filter.state);
  }
  if (!filter.from.empty()) require("creato >= ?", filter.from);
  if (!filter.to.empty()) require("creato <= ?", filter.to + std::string(endOfDay));
  sql_ += " ORDER BY creato DESC, id DESC, riga DESC";
}

void OrderQuery::require(std::string_view condition, std::string value) {
  sql_.append(" AND ").append(condition);
  values_.push_back(std::move(value));
}

Result<Statement> OrderQuery::prepare(Database& database) const {
  auto query = database.prepare(sql_);
  if (!query) return query;
  for (std::size_t i = 0; i < values_.size(); ++i) query->bind(static_cast<int>(i) + 1, values_[i]);
  return query;
}

}  // namespace kv
