#include "store/shop/order_numbers.h"

#include "platform/files/files.h"
#include "store/shop/shop_folders.h"

namespace kv {
namespace {

/// The renumbering of a table.
struct Renumbering {
  const char* inOrder;  ///< reads its numbers in their order
  const char* update;   ///< writes those that differ
};

constexpr int numberStep = 5;
constexpr int firstNumber = 100;
constexpr Renumbering renumberings[] = {
    {"SELECT ordinamento FROM articoli ORDER BY catID, ordinamento, ID",
     "UPDATE articoli SET ordinamento = wanted.position FROM (SELECT ID AS number, ordinamento AS present, "
     "95 + 5 * row_number() OVER (ORDER BY catID, ordinamento, ID) AS position FROM articoli) AS wanted "
     "WHERE articoli.ID = wanted.number AND wanted.position IS NOT wanted.present"},
    {"SELECT ordinamento FROM categorie ORDER BY livello, ordinamento, contatore",
     "UPDATE categorie SET ordinamento = wanted.position FROM (SELECT contatore AS number, ordinamento AS present, "
     "95 + 5 * row_number() OVER (ORDER BY livello, ordinamento, contatore) AS position FROM categorie) AS wanted "
     "WHERE categorie.contatore = wanted.number AND wanted.position IS NOT wanted.present"}};

/// Whether the numbers, in their order, are those that a renumbering gives. An index holds them, so that a look at all
/// of them costs a small part of what the update does before it finds nothing to write.
Result<bool> isNumbered(Database& catalogue, const char* inOrder) {
  auto row = catalogue.prepare(inOrder);
  if (!row) return fail(row.error());
  for (std::int64_t wanted = firstNumber;; wanted += numberStep) {
    const auto found = row->step();
    if (!found) return fail(found.error());
    if (!*found) return true;
    if (row->number(0) != static_cast<double>(wanted)) return false;
  }
}

Result<> renumber(Database& catalogue, const Renumbering& table) {
  const auto isDone = isNumbered(catalogue, table.inOrder);
  if (!isDone) return fail(isDone.error());
  return *isDone ? Result<>() : catalogue.execute(table.update);
}

void makeRoom(OrderPlan& plan, std::size_t first, std::size_t count) {
  plan.firstMoved = first;
  for (std::size_t i = first; i < count; ++i) {
    plan.moved.push_back(plan.order + 1 + static_cast<std::int64_t>(i - first));
  }
}

}  // namespace

OrderPlan planAfter(std::span<const std::int64_t> orders, std::optional<std::size_t> current) {
  OrderPlan plan;
  if (orders.empty()) return plan;
  const std::size_t index = current.value_or(orders.size() - 1);
  plan.order = orders[index] + 1;
  if (index + 1 < orders.size() && orders[index + 1] <= plan.order) makeRoom(plan, index + 1, orders.size());
  return plan;
}

OrderPlan planBefore(std::span<const std::int64_t> orders, std::optional<std::size_t> current) {
  OrderPlan plan;
  if (orders.empty()) return plan;
  const std::size_t index = current.value_or(0);
  plan.order = orders[index] - 1;
  if (index == 0 || orders[index - 1] < plan.order) return plan;
  plan.order = orders[index - 1] + 1;
  makeRoom(plan, index, orders.size());
  return plan;
}

Result<> renumberCatalogue(Database& catalogue) {
  if (auto begun = catalogue.begin(); !begun) return begun;
  for (const Renumbering& table : renumberings) {
    if (auto done = renumber(catalogue, table); !done) {
      catalogue.rollback();
      return done;
    }
  }
  return catalogue.commit();
}

void renumberShop(const std::string& shopFolder) {
  auto catalogue = ApriDatabase(entryPath(shopFolder, catalogueFile), false);
  if (catalogue) ignore(renumberCatalogue(*catalogue), "the session reports it when it opens the catalogue");
}

}  // namespace kv
