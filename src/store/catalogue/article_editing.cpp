// The commands of articles: insert, delete, and the exchange with a neighbour for both lists.

#include "platform/database/recordset.h"
#include "store/catalogue/tree_change.h"
#include "store/catalogue/tree_editing.h"
#include "store/shop/order_numbers.h"

namespace kv {
namespace {

/// The key before or after another one in a list; nothing at its end.
std::optional<std::int64_t> neighbourOf(const OrderedList& order, std::int64_t key, int direzione) {
  const auto position = order.positionOf(key);
  if (!position || (direzione < 0 ? *position == 0 : *position + 1 >= order.keys.size())) return std::nullopt;
  return order.keys[direzione < 0 ? *position - 1 : *position + 1];
}

}  // namespace

bool TreeEditing::ask(const std::string& text, Answer preset) const {
  return user_.question({text, Buttons::YesNo, preset, Icon::Question}) == Answer::Yes;
}

Result<std::int64_t> TreeEditing::NuovoArticolo(const std::string& department, std::int64_t ordine) {
  Database& catalogue = sets_.session().catalogue;
  auto added =
      runWith(catalogue, "INSERT INTO articoli (ordinamento, catID) VALUES (?, ?)", {Value(ordine), Value(department)});
  if (!added) return fail(added.error());
  auto ID = catalogue.scalar("SELECT last_insert_rowid()");
  if (!ID) return fail(ID.error());
  return asInteger(*ID);
}

Result<> TreeEditing::insertArticle(bool after) {
  if (!sets_.onDepartment()) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  Database& catalogue = sets_.session().catalogue;
  auto list = readOrder(catalogue, articlesInOrder, Value(at->department));
  if (!list) return fail(list.error());
  const auto current = list->positionOf(at->article);
  const OrderPlan plan = after ? planAfter(list->orders, current) : planBefore(list->orders, current);
  OrderWriter orders(catalogue, writeArticleOrder);
  for (std::size_t i = 0; i < plan.moved.size(); ++i) {
    if (auto moved = orders.write(list->keys[plan.firstMoved + i], plan.moved[i]); !moved) return moved;
  }
  auto ID = NuovoArticolo(at->department, plan.order);
  if (!ID) return fail(ID.error());
  return change.keepAndShowArticle(at->department, *ID);
}

Result<> TreeEditing::InserisciArticoloDopo() { return insertArticle(true); }
Result<> TreeEditing::InserisciArticoloPrima() { return insertArticle(false); }

Result<> TreeEditing::EliminaArticolo() {
  if (!sets_.onArticle()) return {};
  if (!ask("Eliminare l'articolo selezionato?", Answer::No)) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  const std::size_t position = sets_.dataArticoli().position();
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto deleted = runWith(sets_.session().catalogue, "DELETE FROM articoli WHERE ID = ?", {Value(at->article)});
  if (!deleted) return deleted;
  return change.keepAndShowPosition(at->department, position);
}

/// Exchanges the order numbers of a row of a table, known by its key, and of its neighbour in a list; false when the
/// list ends there.
Result<bool> TreeEditing::exchange(TreeList list, std::int64_t key, const Value& holder, int direzione) {
  Database& catalogue = sets_.session().catalogue;
  const bool articles = list == TreeList::Articles;
  auto order = readOrder(catalogue, articles ? articlesInOrder : siblingsInOrder, holder);
  if (!order) return fail(order.error());
  const auto next = neighbourOf(*order, key, direzione);
  if (!next) return false;
  const Value own(key);
  const Value neighbour(*next);
  const std::string_view table = articles ? "articoli WHERE ID = ?" : "categorie WHERE contatore = ?";
  const std::string read = "SELECT ordinamento FROM " + std::string(table);
  // A row may have no order number at all, and then passes that on.
  auto ownOrder = scalarWith(catalogue, read, {own});
  if (!ownOrder) return fail(ownOrder.error());
  auto neighboursOrder = scalarWith(catalogue, read, {neighbour});
  if (!neighboursOrder) return fail(neighboursOrder.error());
  const std::string_view update = articles ? writeArticleOrder : writeDepartmentOrder;
  if (auto done = runWith(catalogue, update, {*ownOrder, neighbour}); !done) return fail(done.error());
  if (auto done = runWith(catalogue, update, {*neighboursOrder, own}); !done) return fail(done.error());
  return true;
}

Result<> TreeEditing::Sposta(int direzione, TreeList list) {
  const bool articles = list == TreeList::Articles;
  if (articles ? !sets_.onArticle() : !sets_.onDepartment()) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  auto department = readCurrent(sets_);
  if (!department) return fail(department.error());
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto moved = articles ? exchange(list, at->article, Value(at->department), direzione)
                        : exchange(list, department->contatore, Value(department->genitore), direzione);
  if (!moved) return fail(moved.error());
  if (!*moved) return {};
  return articles ? change.keepAndShowArticle(at->department, at->article) : change.keepAndShow(at->department);
}

}  // namespace kv
