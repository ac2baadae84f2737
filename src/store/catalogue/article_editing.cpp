// The commands of articles: insert, delete, and the exchange with a neighbour for both lists.

#include "platform/database/recordset.h"
#include "store/catalogue/tree_change.h"
#include "store/catalogue/tree_editing.h"
#include "store/shop/order_numbers.h"

namespace kv {
namespace {

constexpr std::string_view articlesInOrder =
    "SELECT ID, ordinamento FROM articoli WHERE catID = ? ORDER BY ordinamento, ID";

}  // namespace

bool TreeEditing::ask(const std::string& text, Answer preset) const {
  return user_.question({text, Buttons::YesNo, preset, Icon::Question}) == Answer::Yes;
}

Result<std::int64_t> TreeEditing::NuovoArticolo(std::int64_t ordine) {
  Database& catalogue = sets_.session().catalogue;
  auto added = runWith(catalogue, "INSERT INTO articoli (ordinamento, catID) VALUES (?, ?)",
                       {Value(ordine), Value(sets_.department())});
  if (!added) return fail(added.error());
  auto ID = catalogue.scalar("SELECT last_insert_rowid()");
  if (!ID) return fail(ID.error());
  return asInteger(*ID);
}

Result<> TreeEditing::insertArticle(bool after) {
  if (!sets_.onDepartment()) return {};
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  Database& catalogue = sets_.session().catalogue;
  auto list = readOrder(catalogue, articlesInOrder, Value(sets_.department()));
  if (!list) return fail(list.error());
  std::optional<std::size_t> current;
  if (sets_.onArticle()) current = sets_.dataArticoli().position();
  const OrderPlan plan = after ? planAfter(list->orders, current) : planBefore(list->orders, current);
  OrderWriter orders(catalogue, writeArticleOrder);
  for (std::size_t i = 0; i < plan.moved.size(); ++i) {
    if (auto moved = orders.write(list->keys[plan.firstMoved + i], plan.moved[i]); !moved) return moved;
  }
  auto ID = NuovoArticolo(plan.order);
  if (!ID) return fail(ID.error());
  if (auto kept = change.keep(); !kept) return kept;
  if (auto again = sets_.requeryArticles(); !again) return again;
  if (auto counted = sets_.recount(); !counted) return counted;
  auto found = sets_.goToArticle(*ID);
  return found ? Result<>() : fail(found.error());
}

Result<> TreeEditing::InserisciArticoloDopo() { return insertArticle(true); }
Result<> TreeEditing::InserisciArticoloPrima() { return insertArticle(false); }

Result<> TreeEditing::EliminaArticolo() {
  if (!sets_.onArticle()) return {};
  if (!ask("Eliminare l'articolo selezionato?", Answer::No)) return {};
  const std::size_t place = sets_.dataArticoli().position();
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto deleted = runWith(sets_.session().catalogue, "DELETE FROM articoli WHERE ID = ?", {Value(sets_.article())});
  if (!deleted) return deleted;
  if (auto kept = change.keep(); !kept) return kept;
  if (auto again = sets_.requeryArticles(); !again) return again;
  if (auto counted = sets_.recount(); !counted) return counted;
  const std::size_t left = sets_.dataArticoli().size();
  sets_.goToArticlePlace(left > 0 && place >= left ? left - 1 : place);
  return {};
}

Result<> TreeEditing::Sposta(int direzione, TreeList list) {
  const bool articles = list == TreeList::Articles;
  if (articles ? !sets_.onArticle() : !sets_.onDepartment()) return {};
  Recordset& rows = articles ? sets_.dataArticoli() : sets_.dataFratelli();
  const std::size_t place = rows.position();
  if (direzione < 0 ? place == 0 : place + 1 >= rows.size()) return {};
  const char* key = articles ? "ID" : "contatore";
  const std::int64_t ID = asInteger(rows.get(key));
  const std::string department = sets_.department();
  const Value order = rows.get("ordinamento");
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  rows.moveTo(direzione < 0 ? place - 1 : place + 1);
  const Value neighbour = rows.get(key);
  const Value neighboursOrder = rows.get("ordinamento");
  const std::string update =
      "UPDATE " + std::string(articles ? "articoli" : "categorie") + " SET ordinamento = ? WHERE " + key + " = ?";
  Database& catalogue = sets_.session().catalogue;
  if (auto done = runWith(catalogue, update, {order, neighbour}); !done) return done;
  if (auto done = runWith(catalogue, update, {neighboursOrder, Value(ID)}); !done) return done;
  if (auto kept = change.keep(); !kept) return kept;
  if (!articles) return finishAt(department);
  if (auto again = sets_.requeryArticles(); !again) return again;
  auto found = sets_.goToArticle(ID);
  return found ? Result<>() : fail(found.error());
}

}  // namespace kv
