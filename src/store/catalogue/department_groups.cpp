// The commands on several departments of the tree at once.

#include <algorithm>
#include <map>
#include <unordered_set>

#include "platform/database/rows.h"
#include "platform/numbers/number_format.h"
#include "platform/text/json_text.h"
#include "store/catalogue/tree_change.h"
#include "store/catalogue/tree_editing.h"

namespace kv {
namespace {

constexpr const char* othersBelow =
    "Uno dei reparti selezionati contiene sottoreparti che non sono selezionati.\n"
    "Per eliminarlo è necessario selezionarli o rimuoverli.";
constexpr const char* lastOnes = "Almeno un reparto deve essere definito: non è possibile eliminarli tutti";
constexpr const char* amongChosen = "IN (SELECT value FROM json_each(?1))";

/// The IDs as the array that the engine reads them from.
std::string arrayOf(const DepartmentGroup& group) {
  std::string text = "[";
  for (const std::string& ID : group) {
    text += (text.size() > 1 ? "," : "") + jsonString(ID);
  }
  return text + "]";
}

std::int64_t countOf(const Value& value) { return isNull(value) ? 0 : asInteger(value); }

/// The department that is shown once the group is gone: the nearest above the current one that stays.
std::string stayingAbove(const std::vector<TreeNode>& tree, const DepartmentGroup& group, std::string ID) {
  const std::unordered_set<std::string> gone(group.begin(), group.end());
  for (std::size_t steps = 0; gone.contains(ID) && steps <= tree.size(); ++steps) {
    const auto node = std::ranges::find(tree, ID, &TreeNode::ID);
    ID = node == tree.end() ? std::string(treeRoot) : node->genitore;
  }
  const bool isKnown = std::ranges::find(tree, ID, &TreeNode::ID) != tree.end();
  return isKnown && !gone.contains(ID) ? ID : std::string(treeRoot);
}

Result<> deleteRows(Database& catalogue, const Value& group) {
  const std::string chosen(amongChosen);
  // Those above them lose their sub-departments.
  const std::string above =
      "UPDATE categorie SET hafigli = 0 WHERE ID IN (SELECT genitore FROM categorie WHERE ID " + chosen +
      ") AND NOT EXISTS (SELECT 1 FROM categorie AS figli WHERE figli.genitore = " + "categorie.ID AND figli.ID NOT " +
      chosen + ")";
  for (const std::string& statement :
       {above, "DELETE FROM articoli WHERE catID " + chosen, "DELETE FROM categorie WHERE ID " + chosen}) {
    if (auto done = runWith(catalogue, statement, {group}); !done) return done;
  }
  return {};
}

/// Says in the clipboard of the articles whose each of them was, so that a paste knows; both are in one order.
Result<> noteDepartments(Database& catalogue, const Value& group) {
  return runWith(catalogue,
                 "WITH origine AS (SELECT catID, ROW_NUMBER() OVER (ORDER BY ordinamento, ID) AS numero FROM articoli "
                 "WHERE catID " +
                     std::string(amongChosen) +
                     "), copie AS (SELECT rowid AS riga, ROW_NUMBER() OVER (ORDER BY rowid) AS numero FROM "
                     "cliparticoli) UPDATE cliparticoli SET catID = origine.catID FROM origine JOIN copie ON "
                     "copie.numero = origine.numero WHERE copie.riga = cliparticoli.rowid",
                 {group});
}

/// The serial numbers of the departments of the group.
Result<ArticleGroup> numbersOf(Database& catalogue, const Value& group) {
  auto found = readOrder(catalogue, "SELECT contatore, 0 FROM categorie WHERE ID " + std::string(amongChosen), group);
  if (!found) return fail(found.error());
  return found->keys;
}

/// The group's parents, each once.
Result<DepartmentGroup> parentsOf(Database& catalogue, const Value& group) {
  auto query = catalogue.prepare("SELECT DISTINCT COALESCE(genitore, '###') FROM categorie WHERE ID " +
                                 std::string(amongChosen));
  if (!query) return fail(query.error());
  query->bind(1, group);
  DepartmentGroup parents;
  auto read = forEachRow(*query, [&](const Statement& row) { parents.push_back(asText(row.value(0))); });
  if (!read) return fail(read.error());
  return parents;
}

}  // namespace

Result<> TreeEditing::EliminaReparti(const DepartmentGroup& group) {
  if (group.empty()) return {};
  Database& catalogue = sets_.session().catalogue;
  const Value chosen(arrayOf(group));
  const auto count = [&](const std::string& what) {
    return scalarWith(catalogue, "SELECT COUNT(*) FROM " + what, {chosen});
  };
  const std::string in(amongChosen);
  auto below = count("categorie WHERE genitore " + in + " AND ID NOT " + in);
  auto others = count("categorie WHERE ID NOT " + in);
  auto articles = count("articoli WHERE catID " + in);
  for (const auto* each : {&below, &others, &articles}) {
    if (!*each) return fail(each->error());
  }
  if (countOf(*below) > 0) {
    user_.message(othersBelow, Icon::Exclamation);
    return {};
  }
  if (countOf(*others) == 0) {
    user_.message(lastOnes, Icon::Exclamation);
    return {};
  }
  std::string question = "Eliminare i" + plainNumber(static_cast<std::int64_t>(group.size())) + " reparti selezionati";
  if (countOf(*articles) > 0) question += " con tutti i loro articoli (" + std::to_string(countOf(*articles)) + ")";
  if (!ask(question + "?", Answer::No)) return {};
  const std::string shown = stayingAbove(sets_.tree(), group, sets_.department());
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  if (auto deleted = deleteRows(catalogue, chosen); !deleted) return deleted;
  return change.keepAndShow(shown, true);
}

Result<> TreeEditing::CopiaReparti(const DepartmentGroup& group) {
  if (group.empty()) return {};
  Database& catalogue = sets_.session().catalogue;
  const Value chosen(arrayOf(group));
  const std::string ofGroup = "catID " + std::string(amongChosen);
  auto articles = scalarWith(catalogue, "SELECT COUNT(*) FROM articoli WHERE " + ofGroup, {chosen});
  if (!articles) return fail(articles.error());
  const bool withArticles =
      countOf(*articles) > 0 && ask("Copiare anche tutti gli articoli dei reparti selezionati?", Answer::Yes);
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  if (withArticles) {
    auto copied = copyArticles(ofGroup, chosen);
    if (copied) copied = noteDepartments(catalogue, chosen);
    if (!copied) return copied;
  }
  if (auto copied = copyDepartments(arrayOf(group), withArticles); !copied) return copied;
  if (auto kept = change.keep(); !kept) return kept;
  enablePasteOfDepartment(withArticles);
  return {};
}

Result<> TreeEditing::SpostaReparti(const DepartmentGroup& group, int direzione) {
  if (group.empty()) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  Database& catalogue = sets_.session().catalogue;
  const Value chosen(arrayOf(group));
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto numbers = numbersOf(catalogue, chosen);
  if (!numbers) return fail(numbers.error());
  auto parents = parentsOf(catalogue, chosen);
  if (!parents) return fail(parents.error());
  for (const std::string& parent : *parents) {
    auto list = readOrder(catalogue, siblingsInOrder, Value(parent));
    if (!list) return fail(list.error());
    if (auto moved = writeShifted(catalogue, *list, *numbers, direzione, writeDepartmentOrder); !moved) return moved;
  }
  return change.keepAndShow(at->department);
}

Result<TreeEditing::NewDepartment> TreeEditing::pasteOne(const ClippedDepartment& clipped, const Pasted& parents) {
  const auto above = parents.find(clipped.genitore);
  auto made = above != parents.end() ? addUnder(above->second.ID, above->second.livello + 1)
              : sets_.onDepartment() ? NuovoReparto(false)
                                     : addUnderCurrent();
  if (!made) return made;
  auto filled = fill("categorie", "clipcategorie", clipped.row, made->contatore);
  if (!filled) return fail(filled.error());
  return made;
}

Result<> TreeEditing::pasteDepartments(const std::vector<ClippedDepartment>& clipped, bool withArticles) {
  Database& catalogue = sets_.session().catalogue;
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  Pasted pasted;
  std::string first;
  for (const ClippedDepartment& each : clipped) {
    auto made = pasteOne(each, pasted);
    if (!made) return fail(made.error());
    if (first.empty()) first = made->ID;
    pasted[each.ID] = *made;
    if (!withArticles) continue;
    auto articles =
        readOrder(catalogue, "SELECT rowid, 0 FROM cliparticoli WHERE catID = ? ORDER BY rowid", Value(each.ID));
    if (!articles) return fail(articles.error());
    auto last = insertCopies({made->ID, 0}, "cliparticoli", articles->keys);
    if (!last) return fail(last.error());
  }
  return change.keepAndShow(first, withArticles);
}

}  // namespace kv
