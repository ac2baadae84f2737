// Dragging a department under another: the tree is changed first, then written back whole.

#include <algorithm>
#include <optional>
#include <unordered_map>

#include "store/catalogue/tree_change.h"
#include "store/catalogue/tree_editing.h"

namespace kv {
namespace {

/// The tree by key: who hangs under whom, and the tree's own order (the root is the first).
class DraggedTree {
 public:
  explicit DraggedTree(const std::vector<TreeNode>& nodes) : nodes_(nodes) {
    for (const TreeNode& node : nodes) {
      // A department under a parent that doesn't exist is shown under the root.
      parents_[node.ID] = parents_.contains(node.genitore) ? node.genitore : std::string(treeRoot);
    }
  }

  /// Of a group the departments that don't go with another of it; nothing where one, or the new parent, isn't in the
  /// tree, and where one would be under itself.
  std::optional<DepartmentGroup> movable(const DepartmentGroup& group, const std::string& parent) const {
    if (parent != treeRoot && !has(parent)) return std::nullopt;
    DepartmentGroup moved;
    for (const std::string& key : group) {
      if (!has(key) || (parent != treeRoot && isUnder(parent, key))) return std::nullopt;
      const auto holdsKey = [&](const std::string& other) { return other != key && isUnder(key, other); };
      if (std::ranges::none_of(group, holdsKey)) moved.push_back(key);
    }
    return moved;
  }
  bool has(const std::string& key) const { return parents_.contains(key); }
  bool isUnder(const std::string& key, const std::string& ancestor) const {
    for (std::string each = key; each != treeRoot; each = parents_.at(each)) {
      if (each == ancestor) return true;
    }
    return false;
  }
  void hang(const std::string& key, const std::string& parent) { parents_[key] = parent; }

  Result<> write(Database& catalogue) const {
    auto update =
        catalogue.prepare("UPDATE categorie SET genitore = ?, ordinamento = ?, livello = ?, hafigli = ? WHERE ID = ?");
    if (!update) return fail(update.error());
    std::unordered_map<std::string, bool> hasChildren;
    for (const auto& [key, parent] : parents_) hasChildren[parent] = true;
    std::int64_t index = 1;  // of the root
    for (const TreeNode& node : nodes_) {
      const std::string& parent = parents_.at(node.ID);
      update->bind(1, parent);
      update->bind(2, ++index);
      update->bind(3, depth(node.ID));
      update->bind(4, hasChildren.contains(node.ID));
      update->bind(5, node.ID);
      if (auto done = update->execute(); !done) return done;
    }
    return {};
  }

 private:
  std::int64_t depth(const std::string& key) const {
    std::int64_t levels = 0;
    for (std::string each = key; each != treeRoot; each = parents_.at(each)) ++levels;
    return levels;
  }

  const std::vector<TreeNode>& nodes_;
  std::unordered_map<std::string, std::string> parents_;
};

}  // namespace

Result<> TreeEditing::SpostaNodo(const std::string& key, const std::string& nuovoParent) {
  return SpostaNodi({key}, nuovoParent);
}

Result<> TreeEditing::SpostaNodi(const DepartmentGroup& group, const std::string& nuovoParent) {
  if (auto built = sets_.CostruisciAlbero(0); !built) return built;
  DraggedTree tree(sets_.tree());
  const auto moved = tree.movable(group, nuovoParent);
  if (!moved || moved->empty()) return {};
  for (const std::string& key : *moved) tree.hang(key, nuovoParent);
  TreeChange change(sets_);
  if (!change.begun()) return change.begun();
  if (auto written = tree.write(sets_.session().catalogue); !written) return written;
  return change.keepAndShow(group.front());
}

}  // namespace kv
