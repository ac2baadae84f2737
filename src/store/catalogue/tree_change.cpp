#include "store/catalogue/tree_change.h"

namespace kv {
namespace {

Result<Statement> prepareWith(Database& database, std::string_view sql, std::initializer_list<Value> values) {
  auto statement = database.prepare(sql);
  if (!statement) return statement;
  int place = 0;
  for (const Value& value : values) statement->bind(++place, value);
  return statement;
}

}  // namespace

Result<> runWith(Database& database, std::string_view sql, std::initializer_list<Value> values) {
  auto statement = prepareWith(database, sql, values);
  if (!statement) return fail(statement.error());
  return statement->execute();
}

Result<Value> scalarWith(Database& database, std::string_view sql, std::initializer_list<Value> values) {
  auto statement = prepareWith(database, sql, values);
  if (!statement) return fail(statement.error());
  auto row = statement->step();
  if (!row) return fail(row.error());
  return *row ? statement->value(0) : Value(Null{});
}

Result<OrderedList> readOrder(Database& database, std::string_view sql, const Value& value) {
  auto rows = database.prepare(sql);
  if (!rows) return fail(rows.error());
  rows->bind(1, value);  // lives until the rows are read, as a bound text must
  OrderedList list;
  for (;;) {
    auto row = rows->step();
    if (!row) return fail(row.error());
    if (!*row) return list;
    list.keys.push_back(rows->integer(0));
    list.orders.push_back(rows->integer(1));
  }
}

Result<> OrderWriter::write(std::int64_t key, std::int64_t order) {
  if (!statement_) return fail(statement_.error());
  statement_->bind(1, order);
  statement_->bind(2, key);
  return statement_->execute();
}

}  // namespace kv
