#pragma once
// The departments of one language as a tree, read once: what the tree of links, the drop-down, the title path and the
// XML menu are made of. The walk holds what a visitor can be shown: it starts at the top level and goes past neither a
// hidden department nor one whose chain of parents doesn't lead to the top.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kv {

/// Identifier of the root above the top level, which is no department.
inline constexpr std::string_view rootDepartment = "###";

/// One department as menus see it, in the language of the row.
struct MenuDepartment {
  std::string ID;
  std::string titolo;                   ///< plain text, in the language
  std::string pagina;                   ///< file stem of its page, without the language suffix
  std::optional<std::string> genitore;  ///< ID of the parent, "###" at the top level; empty optional: null
  std::optional<std::int64_t> livello;  ///< depth, 1 at the top
  bool nascosto = false;                ///< not shown, nor what is beneath it
  std::string immagine1;                ///< menu image; empty: none
  std::int64_t imgX1 = 0, imgY1 = 0;    ///< its size in pixels

  /// Levels below the first; 0 at the top.
  std::int64_t depth() const { return livello.value_or(0) > 1 ? *livello - 1 : 0; }
};

/// One step of the walk, which names each department before those beneath it.
struct WalkStep {
  std::size_t row = 0;     ///< index among the rows of the tree
  std::size_t end = 0;     ///< index of the first step that is not beneath it
  std::size_t parent = 0;  ///< index of the parent's step; DepartmentTree::none at the top
};

/// The departments of a shop in one language, by the parents that their rows name.
class DepartmentTree {
 public:
  /// No row, no step.
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  /// Rows in the order of level, then `ordinamento`, which is the order of siblings. IDs are compared without case.
  explicit DepartmentTree(std::vector<MenuDepartment> rows);
  /// Without departments.
  DepartmentTree() = default;

  /// All departments, shown or not, in the order given.
  const std::vector<MenuDepartment>& rows() const { return rows_; }
  /// What is shown, from the top level down, children after their parent.
  const std::vector<WalkStep>& walk() const { return walk_; }
  /// The department of a step.
  const MenuDepartment& at(const WalkStep& step) const { return rows_[step.row]; }
  /// The index of a row's step in the walk; none when it isn't shown.
  std::size_t indexOf(std::size_t row) const { return indexes_[row]; }
  /// Row of an identifier; none when there is no such department.
  std::size_t find(std::string_view ID) const;
  /// Rows whose parent is `genitore`, hidden ones included, whether or not that parent exists.
  const std::vector<std::size_t>& childrenOf(std::string_view genitore) const;

 private:
  void makeWalk();

  std::vector<MenuDepartment> rows_;
  std::unordered_map<std::string, std::size_t> byId_;                     // by folded ID
  std::unordered_map<std::string, std::vector<std::size_t>> byGenitore_;  // by folded ID of the parent
  std::vector<WalkStep> walk_;
  std::vector<std::size_t> indexes_;  // by row: its step in the walk
};

}  // namespace kv
