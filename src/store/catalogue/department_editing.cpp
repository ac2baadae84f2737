// The commands of departments: insert, sub-department, delete.

#include "platform/database/recordset.h"
#include "store/catalogue/tree_change.h"
#include "store/catalogue/tree_editing.h"
#include "store/shop/order_numbers.h"

namespace kv {
namespace {

constexpr const char* hasChildren =
    "Non è consentito eliminare un reparto che contiene sottoreparti.\n"
    "Per cancellare questo reparto è necessario rimuovere i sottoreparti.";
constexpr const char* hasArticles = "Il reparto contiene articoli che saranno cancellati. Eliminarlo comunque?";
constexpr const char* lastOne = "Almeno un reparto deve essere definito: non è possibile eliminare questo reparto";

}  // namespace

/// Adds the row through a record set of its own: the one that is shown has no draft then that a failure leaves open.
Result<TreeEditing::NewDepartment> TreeEditing::addDepartment(const DepartmentPlan& plan) {
  auto rows = departmentsToAdd(sets_.session());
  if (!rows) return fail(rows.error());
  if (auto begun = rows->addNew(); !begun) return fail(begun.error());
  const std::int64_t contatore = asInteger(rows->get("contatore"));
  const std::string key = departmentKey(contatore);
  std::vector<std::pair<std::string_view, Value>> fields{{"ordinamento", Value(plan.ordine)},
                                                         {"genitore", Value(plan.genitore)},
                                                         {"ID", Value(key)},
                                                         {"pagina", Value(key)},
                                                         {"livello", Value(plan.livello)},
                                                         {"template", Value(model_)},
                                                         {"titolo", Value(std::string("Nuovo Reparto"))}};
  if (plan.sideBySide) fields.emplace_back("affiancati", Value(std::string(" ")));
  for (const auto& [column, value] : fields) {
    if (auto set = rows->set(column, value); !set) return fail(set.error());
  }
  if (auto done = rows->update(); !done) return fail(done.error());
  return NewDepartment{contatore, key, plan.livello};
}

Result<TreeEditing::NewDepartment> TreeEditing::NuovoReparto(bool after) {
  auto current = readCurrent(sets_);
  if (!current) return fail(current.error());
  Database& catalogue = sets_.session().catalogue;
  auto list = readOrder(catalogue, siblingsInOrder, Value(current->genitore));
  if (!list) return fail(list.error());
  const auto position = list->positionOf(current->contatore);
  const OrderPlan plan = after ? planAfter(list->orders, position) : planBefore(list->orders, position);
  OrderWriter orders(catalogue, writeDepartmentOrder);
  for (std::size_t i = 0; i < plan.moved.size(); ++i) {
    if (auto moved = orders.write(list->keys[plan.firstMoved + i], plan.moved[i]); !moved) return fail(moved.error());
  }
  return addDepartment({plan.order, current->genitore, current->livello, true});
}

Result<> TreeEditing::insertDepartment(bool after) {
  if (!sets_.onDepartment()) return {};
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto made = NuovoReparto(after);
  if (!made) return fail(made.error());
  return change.keepAndShow(made->ID);
}

Result<> TreeEditing::InserisciRepartoDopo() { return insertDepartment(true); }
Result<> TreeEditing::InserisciRepartoPrima() { return insertDepartment(false); }

Result<TreeEditing::NewDepartment> TreeEditing::addUnderCurrent() {
  if (!sets_.onDepartment()) return addUnder(std::string(treeRoot), 1);
  auto current = readCurrent(sets_);
  if (!current) return fail(current.error());
  return addUnder(current->ID, current->livello + 1);
}

Result<TreeEditing::NewDepartment> TreeEditing::addUnder(const std::string& parent, std::int64_t level) {
  Database& catalogue = sets_.session().catalogue;
  auto last = scalarWith(catalogue,
                         "SELECT ordinamento FROM categorie WHERE COALESCE(genitore, '###') = ? "
                         "ORDER BY livello DESC, ordinamento DESC, contatore DESC LIMIT 1",
                         {Value(parent)});
  if (!last) return fail(last.error());
  auto made = addDepartment({isNull(*last) ? 1 : asInteger(*last) + 1, parent, level, false});
  if (!made || parent == treeRoot) return made;
  auto marked = runWith(catalogue, "UPDATE categorie SET hafigli = 1 WHERE ID = ?", {Value(parent)});
  if (!marked) return fail(marked.error());
  return made;
}

Result<> TreeEditing::NuovoSottoreparto() {
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto made = addUnderCurrent();
  if (!made) return fail(made.error());
  return change.keepAndShow(made->ID);
}

Result<> TreeEditing::EliminaReparto() {
  if (!sets_.onDepartment()) return {};
  auto current = readCurrent(sets_);
  if (!current) return fail(current.error());
  if (current->hafigli) {
    user_.message(hasChildren, Icon::Exclamation);
    return {};
  }
  if (sets_.departmentArticles() > 0 && !ask(hasArticles, Answer::No)) return {};
  auto count = sets_.session().catalogue.scalar("SELECT COUNT(*) FROM categorie");
  if (!count) return fail(count.error());
  if (asInteger(*count) < 2) {
    user_.message(lastOne, Icon::Exclamation);
    return {};
  }
  return deleteDepartment(current->ID, current->genitore);
}

Result<> TreeEditing::deleteDepartment(const std::string& department, const std::string& parent) {
  Database& catalogue = sets_.session().catalogue;
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  for (const char* statement : {"DELETE FROM categorie WHERE ID = ?", "DELETE FROM articoli WHERE catID = ?"}) {
    if (auto done = runWith(catalogue, statement, {Value(department)}); !done) return done;
  }
  if (parent != treeRoot) {
    auto left = runWith(catalogue,
                        "UPDATE categorie SET hafigli = 0 WHERE ID = ?1 AND NOT EXISTS "
                        "(SELECT 1 FROM categorie WHERE genitore = ?1)",
                        {Value(parent)});
    if (!left) return left;
  }
  return change.keepAndShow(parent, true);
}

}  // namespace kv
