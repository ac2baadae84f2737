// The commands of departments: insert, sub-department, delete.

#include "platform/database/recordset.h"
#include "platform/numbers/number_form.h"
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

/// The key of a department, and its page: "cat" and the serial number with at least three digits.
std::string departmentKey(std::int64_t contatore) { return "cat" + formatNumber(contatore, "###000"); }

}  // namespace

/// Shows the tree as it now stands, and goes to a department.
Result<> TreeEditing::finishAt(const std::string& department) {
  if (auto built = sets_.CostruisciAlbero(1); !built) return built;
  auto found = sets_.goToDepartment(department);
  return found ? Result<>() : fail(found.error());
}

Result<std::string> TreeEditing::addDepartment(std::int64_t ordine, const std::string& genitore, std::int64_t livello,
                                               bool sideBySide) {
  Recordset& rows = sets_.dataCategorie();
  if (auto begun = rows.addNew(); !begun) return fail(begun.error());
  const std::string key = departmentKey(asInteger(rows.get("contatore")));
  std::vector<std::pair<std::string_view, Value>> fields{{"ordinamento", Value(ordine)},
                                                         {"genitore", Value(genitore)},
                                                         {"ID", Value(key)},
                                                         {"pagina", Value(key)},
                                                         {"livello", Value(livello)},
                                                         {"template", Value(model_)},
                                                         {"titolo", Value(std::string("Nuovo Reparto"))}};
  if (sideBySide) fields.emplace_back("affiancati", Value(std::string(" ")));
  for (const auto& [column, value] : fields) {
    if (auto set = rows.set(column, value); !set) {
      rows.cancelUpdate();
      return fail(set.error());
    }
  }
  if (auto done = rows.update(); !done) return fail(done.error());
  return key;
}

Result<std::string> TreeEditing::NuovoReparto(std::int64_t ordine) {
  Recordset& current = sets_.dataCategorie();
  const Value parent = current.get("genitore");
  return addDepartment(ordine, isNull(parent) ? std::string(treeRoot) : asText(parent),
                       asInteger(current.get("livello")), true);
}

Result<> TreeEditing::insertDepartment(bool after) {
  if (!sets_.onDepartment()) return {};
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  Database& catalogue = sets_.session().catalogue;
  Recordset& siblings = sets_.dataFratelli();
  OrderedList list;
  const std::size_t place = siblings.position();
  for (siblings.moveFirst(); !siblings.eof(); siblings.moveNext()) {
    list.keys.push_back(asInteger(siblings.get("contatore")));
    list.orders.push_back(asInteger(siblings.get("ordinamento")));
  }
  std::optional<std::size_t> current;
  if (place < list.keys.size()) current = place;
  const OrderPlan plan = after ? planAfter(list.orders, current) : planBefore(list.orders, current);
  OrderWriter orders(catalogue, writeDepartmentOrder);
  for (std::size_t i = 0; i < plan.moved.size(); ++i) {
    if (auto moved = orders.write(list.keys[plan.firstMoved + i], plan.moved[i]); !moved) return moved;
  }
  auto key = NuovoReparto(plan.order);
  if (!key) return fail(key.error());
  if (auto kept = change.keep(); !kept) return kept;
  return finishAt(*key);
}

Result<> TreeEditing::InserisciRepartoDopo() { return insertDepartment(true); }
Result<> TreeEditing::InserisciRepartoPrima() { return insertDepartment(false); }

Result<std::string> TreeEditing::addUnderCurrent() {
  Database& catalogue = sets_.session().catalogue;
  const std::string parent = sets_.department();
  const std::int64_t level = sets_.onDepartment() ? asInteger(sets_.dataCategorie().get("livello")) + 1 : 1;
  auto last = scalarWith(catalogue,
                         "SELECT ordinamento FROM categorie WHERE COALESCE(genitore, '###') = ? "
                         "ORDER BY livello DESC, ordinamento DESC, contatore DESC LIMIT 1",
                         {Value(parent)});
  if (!last) return fail(last.error());
  auto key = addDepartment(isNull(*last) ? 1 : asInteger(*last) + 1, parent, level, false);
  if (!key || parent == treeRoot) return key;
  auto marked = runWith(catalogue, "UPDATE categorie SET hafigli = 1 WHERE ID = ?", {Value(parent)});
  if (!marked) return fail(marked.error());
  return key;
}

Result<> TreeEditing::NuovoSottoreparto() {
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto key = addUnderCurrent();
  if (!key) return fail(key.error());
  if (auto kept = change.keep(); !kept) return kept;
  return finishAt(*key);
}

Result<> TreeEditing::EliminaReparto() {
  if (!sets_.onDepartment()) return {};
  if (asFlag(sets_.dataCategorie().get("hafigli"))) {
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
  return deleteDepartment();
}

Result<> TreeEditing::deleteDepartment() {
  Database& catalogue = sets_.session().catalogue;
  const Value ID(sets_.department());
  const Value held = sets_.dataCategorie().get("genitore");
  const std::string parent = isNull(held) ? std::string(treeRoot) : asText(held);
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  for (const char* statement : {"DELETE FROM categorie WHERE ID = ?", "DELETE FROM articoli WHERE catID = ?"}) {
    if (auto done = runWith(catalogue, statement, {ID}); !done) return done;
  }
  if (parent != treeRoot) {
    auto left = runWith(catalogue,
                        "UPDATE categorie SET hafigli = 0 WHERE ID = ?1 AND NOT EXISTS "
                        "(SELECT 1 FROM categorie WHERE genitore = ?1)",
                        {Value(parent)});
    if (!left) return left;
  }
  if (auto kept = change.keep(); !kept) return kept;
  if (auto done = finishAt(parent); !done) return done;
  return sets_.recount();
}

}  // namespace kv
