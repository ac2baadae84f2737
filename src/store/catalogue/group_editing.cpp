// The commands on several articles of the current department at once.

#include <algorithm>
#include <unordered_set>

#include "platform/database/recordset.h"
#include "platform/numbers/number_format.h"
#include "store/catalogue/article_move.h"
#include "store/catalogue/tree_change.h"
#include "store/catalogue/tree_editing.h"

namespace kv {
namespace {

/// The IDs as the array that the engine reads them from.
std::string arrayOf(const ArticleGroup& group) {
  std::string text = "[";
  for (const std::int64_t ID : group) text += (text.size() > 1 ? "," : "") + std::to_string(ID);
  return text + "]";
}

constexpr const char* inGroup = "ID IN (SELECT value FROM json_each(?))";

bool holds(const ArticleGroup& group, std::int64_t ID) { return std::ranges::find(group, ID) != group.end(); }

/// Those of the keys that the group has, in the order of the keys.
std::vector<std::int64_t> inOrder(const std::vector<std::int64_t>& keys, const ArticleGroup& group) {
  const std::unordered_set<std::int64_t> wanted(group.begin(), group.end());
  std::vector<std::int64_t> kept;
  std::ranges::copy_if(keys, std::back_inserter(kept), [&](std::int64_t ID) { return wanted.contains(ID); });
  return kept;
}

/// Whether a department is in the catalogue, and not the current one.
Result<bool> isOtherDepartment(Database& catalogue, const std::string& department, const std::string& current) {
  auto known = scalarWith(catalogue, "SELECT COUNT(*) FROM categorie WHERE ID = ?", {Value(department)});
  if (!known) return fail(known.error());
  return asInteger(*known) != 0 && department != current;
}

}  // namespace

Result<> TreeEditing::EliminaArticoli(const ArticleGroup& group) {
  if (group.empty() || !sets_.onDepartment()) return {};
  const std::string question =
      "Eliminare i" + plainNumber(static_cast<std::int64_t>(group.size())) + " articoli selezionati?";
  if (!ask(question, Answer::No)) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  auto list = readOrder(sets_.session().catalogue, articlesInOrder, Value(at->department));
  if (!list) return fail(list.error());
  const auto first = std::ranges::find_if(list->keys, [&](std::int64_t ID) { return holds(group, ID); });
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto deleted =
      runWith(sets_.session().catalogue, std::string("DELETE FROM articoli WHERE ") + inGroup, {Value(arrayOf(group))});
  if (!deleted) return deleted;
  return change.keepAndShowPosition(at->department, static_cast<std::size_t>(first - list->keys.begin()));
}

Result<> TreeEditing::CopiaArticoli(const ArticleGroup& group) {
  if (group.empty()) return {};
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  if (auto copied = copyArticles(inGroup, Value(arrayOf(group))); !copied) return copied;
  if (auto kept = change.keep(); !kept) return kept;
  enablePasteOfArticles();
  return {};
}

Result<> TreeEditing::SpostaArticoli(const ArticleGroup& group, int direzione) {
  if (group.empty() || !sets_.onDepartment()) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  Database& catalogue = sets_.session().catalogue;
  auto list = readOrder(catalogue, articlesInOrder, Value(at->department));
  if (!list) return fail(list.error());
  if (auto moved = writeShifted(catalogue, *list, group, direzione, writeArticleOrder); !moved) return moved;
  return change.keepAndShowArticle(at->department, at->article);
}

Result<> TreeEditing::SegnaArticoli(const ArticleGroup& group, std::string_view column, bool on) {
  if (group.empty()) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  const std::string update = "UPDATE articoli SET \"" + std::string(column) + "\" = ? WHERE " + inGroup;
  auto marked = runWith(sets_.session().catalogue, update, {Value(on), Value(arrayOf(group))});
  if (!marked) return marked;
  return change.keepAndShowArticle(at->department, at->article);
}

Result<> TreeEditing::DuplicaArticoli(const ArticleGroup& group) {
  if (group.empty() || !sets_.onDepartment()) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  const WaitPointer pointer(hooks_);
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto list = readOrder(sets_.session().catalogue, articlesInOrder, Value(at->department));
  if (!list) return fail(list.error());
  const std::vector<std::int64_t> sources = inOrder(list->keys, group);
  if (sources.empty()) return {};
  auto last = insertCopies({at->department, sources.back()}, "articoli", sources);
  if (!last) return fail(last.error());
  return change.keepAndShowArticle(at->department, *last);
}

Result<> TreeEditing::SpostaInReparto(const ArticleGroup& group, const std::string& department) {
  if (group.empty() || !sets_.onDepartment()) return {};
  auto at = sets_.cursors();
  if (!at) return fail(at.error());
  Database& catalogue = sets_.session().catalogue;
  auto other = isOtherDepartment(catalogue, department, at->department);
  if (!other) return fail(other.error());
  if (!*other) return {};
  const WaitPointer pointer(hooks_);
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  auto list = readOrder(catalogue, articlesInOrder, Value(at->department));
  if (!list) return fail(list.error());
  const std::vector<std::int64_t> moved = inOrder(list->keys, group);
  if (moved.empty()) return {};
  if (auto done = appendToDepartment(catalogue, department, moved); !done) return done;
  return change.keepAndShowPosition(at->department, *list->positionOf(moved.front()));
}

}  // namespace kv
