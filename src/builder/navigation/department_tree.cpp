#include "builder/navigation/department_tree.h"

#include "platform/text/text.h"

namespace kv {

DepartmentTree::DepartmentTree(std::vector<MenuDepartment> rows) : rows_(std::move(rows)) {
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const MenuDepartment& department = rows_[row];
    // A department with the name of the root would be its own ancestor.
    if (department.ID == rootDepartment) continue;
    byId_.try_emplace(foldCase(department.ID), row);
    if (department.genitore) byGenitore_[foldCase(*department.genitore)].push_back(row);
  }
  indexes_.assign(rows_.size(), none);
  makeWalk();
}

std::size_t DepartmentTree::find(std::string_view ID) const {
  const auto found = byId_.find(foldCase(ID));
  return found == byId_.end() ? none : found->second;
}

const std::vector<std::size_t>& DepartmentTree::childrenOf(std::string_view genitore) const {
  static const std::vector<std::size_t> noChildren;
  const auto found = byGenitore_.find(foldCase(genitore));
  return found == byGenitore_.end() ? noChildren : found->second;
}

// Without recursion, whatever the depth. Each department has one parent, so that a circle of parents is never reached
// from the root.
void DepartmentTree::makeWalk() {
  struct Level {
    const std::vector<std::size_t>& children;
    std::size_t next;
    std::size_t parent;
  };
  std::vector<Level> levels{{childrenOf(rootDepartment), 0, none}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next == level.children.size()) {
      if (level.parent != none) walk_[level.parent].end = walk_.size();
      levels.pop_back();
      continue;
    }
    const std::size_t row = level.children[level.next++];
    if (rows_[row].nascosto) continue;
    const std::size_t index = walk_.size();
    walk_.push_back({row, index + 1, level.parent});
    indexes_[row] = index;
    levels.push_back({childrenOf(rows_[row].ID), 0, index});
  }
}

}  // namespace kv
