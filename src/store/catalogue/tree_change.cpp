#include "store/catalogue/tree_change.h"

#include <algorithm>

namespace kv {
namespace {

Result<Statement> prepareWith(Database& database, std::string_view sql, std::initializer_list<Value> values) {
  auto statement = database.prepare(sql);
  if (!statement) return statement;
  int parameter = 0;
  for (const Value& value : values) statement->bind(++parameter, value);
  return statement;
}

/// The keys with the group one position further.
std::vector<std::int64_t> shifted(std::vector<std::int64_t> keys, const std::vector<std::int64_t>& group,
                                  int direzione) {
  const auto holds = [&](std::int64_t key) { return std::ranges::find(group, key) != group.end(); };
  if (direzione > 0) std::ranges::reverse(keys);
  for (std::size_t i = 1; i < keys.size(); ++i) {
    if (holds(keys[i]) && !holds(keys[i - 1])) std::swap(keys[i], keys[i - 1]);
  }
  if (direzione > 0) std::ranges::reverse(keys);
  return keys;
}

}  // namespace

Result<> TreeChange::keep() {
  kept_ = true;
  auto done = sets_.session().catalogue.commit();
  sets_.suppress(false);
  return done;
}

Result<> TreeChange::keepAndShow(const std::string& department, bool recounted) {
  auto lists = readLists(sets_.session(), {department, 0});
  if (!lists) return fail(lists.error());
  if (recounted) {
    auto articles = countAllArticles(sets_.session());
    if (!articles) return fail(articles.error());
    lists->articles = *articles;
  }
  if (auto kept = keep(); !kept) return kept;
  sets_.show(std::move(*lists));
  return {};
}

Result<> TreeChange::keepArticles(Recordset articles) {
  auto ofShop = countAllArticles(sets_.session());
  if (!ofShop) return fail(ofShop.error());
  if (auto kept = keep(); !kept) return kept;
  sets_.showArticles(std::move(articles), *ofShop);
  return {};
}

Result<> TreeChange::keepAndShowArticle(const std::string& department, std::int64_t article) {
  auto articles = readArticles(sets_.session(), department);
  if (!articles) return fail(articles.error());
  if (auto found = articles->seek("ID", Value(article)); !found) return fail(found.error());
  return keepArticles(std::move(*articles));
}

Result<> TreeChange::keepAndShowPosition(const std::string& department, std::size_t position) {
  auto articles = readArticles(sets_.session(), department);
  if (!articles) return fail(articles.error());
  if (articles->size() > 0) articles->moveTo(std::min(position, articles->size() - 1));
  return keepArticles(std::move(*articles));
}

Result<CurrentDepartment> readCurrent(CatalogueSets& sets) {
  Recordset& rows = sets.dataCategorie();
  if (auto read = rows.load(); !read) return fail(read.error());
  const Value parent = rows.get("genitore");
  return CurrentDepartment{asInteger(rows.get("contatore")), asText(rows.get("ID")),
                           isNull(parent) ? std::string(treeRoot) : asText(parent), asInteger(rows.get("livello")),
                           asFlag(rows.get("hafigli"))};
}

std::optional<std::size_t> OrderedList::positionOf(std::int64_t key) const {
  const auto found = std::ranges::find(keys, key);
  if (found == keys.end()) return std::nullopt;
  return static_cast<std::size_t>(found - keys.begin());
}

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
  if (!statement_) {
    auto prepared = database_.prepare(update_);
    if (!prepared) return fail(prepared.error());
    statement_ = std::move(*prepared);
  }
  statement_->bind(1, order);
  statement_->bind(2, key);
  return statement_->execute();
}

Result<> writeShifted(Database& database, const OrderedList& list, const std::vector<std::int64_t>& group,
                      int direzione, std::string_view update) {
  const std::vector<std::int64_t> wanted = shifted(list.keys, group, direzione);
  OrderWriter orders(database, update);
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i] == list.keys[i]) continue;
    if (auto moved = orders.write(wanted[i], list.orders[i]); !moved) return moved;
  }
  return {};
}

}  // namespace kv
