// What is dropped in the window: departments on a department, articles on one.

#include <algorithm>

#include "shell/workbench/busy.h"
#include "shell/workbench/workbench.h"

namespace kv {

bool Workbench::canMoveNode(const std::string& key, const std::string& nuovoParent) const {
  if (key.empty() || key == treeRoot || key == nuovoParent) return false;
  const auto& nodes = sets_.tree();
  const auto nodeOf = [&](const std::string& ID) { return std::ranges::find(nodes, ID, &TreeNode::ID); };
  if (nodeOf(key) == nodes.end()) return false;
  // A tree of n departments is at most n deep, whatever its rows say.
  std::size_t steps = 0;
  for (std::string each = nuovoParent; each != treeRoot && steps <= nodes.size(); ++steps) {
    const auto node = nodeOf(each);
    if (node == nodes.end() || node->genitore == key) return false;
    each = node->genitore;
  }
  return true;
}

void Workbench::SpostaNodo(const std::string& key, const std::string& nuovoParent) { SpostaNodi({key}, nuovoParent); }

void Workbench::SpostaNodi(const DepartmentGroup& group, const std::string& nuovoParent) {
  if (!view_.finishEdits() || group.empty()) return;
  const auto isRefused = [&](const std::string& key) { return !canMoveNode(key, nuovoParent); };
  if (std::ranges::any_of(group, isRefused)) return;
  const std::string step = group.size() > 1 ? "Trascina reparti" : "Trascina reparto";
  Result<> moved;
  {
    const BusyGuard busy(view_);
    moved = history_.record(step, [&] { return editing_.SpostaNodi(group, nuovoParent); });
  }
  showError(moved);
  view_.entriesChanged();
}

bool Workbench::canMoveArticles(const std::string& department) const {
  if (!sets_.onArticle() || department == sets_.department()) return false;
  return std::ranges::find(sets_.tree(), department, &TreeNode::ID) != sets_.tree().end();
}

void Workbench::SpostaInReparto(const ArticleGroup& group, const std::string& department) {
  if (!view_.finishEdits() || !canMoveArticles(department)) return;
  const std::string step = group.size() > 1 ? "Trascina articoli" : "Trascina articolo";
  showError(history_.record(step, [&] { return editing_.SpostaInReparto(group, department); }));
  view_.entriesChanged();
}

}  // namespace kv
