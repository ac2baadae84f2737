#pragma once
// The navigation of a shop's pages in one language: the tree of links, the drop-down, and the path and sub-departments
// that a department's title can carry. Entries are made once per language; a page costs what its own tree shows.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "builder/navigation/department_tree.h"
#include "builder/navigation/menu_templates.h"

namespace kv {

/// The navigation of one page: columns `reparti` and `repartimenu`.
struct Navigation {
  std::string tree;  ///< links to the departments that are open on the page
  std::string menu;  ///< drop-down of all departments, the same on every page
};

/// How the tree looks, and how much of it is always open.
struct NavigationLook {
  MenuTemplates templates;         ///< of the template package; not present: the program's own look
  std::string titleFont;           ///< decoration of titles without a template, "###" where the title goes
  std::int64_t livelliaperti = 0;  ///< levels that are open on every page
  std::string lingua;              ///< language suffix
};

/// The navigation of all pages of one language.
class DepartmentNavigation {
 public:
  /// Makes every entry; costs as much as there are departments.
  DepartmentNavigation(DepartmentTree departments, NavigationLook look);
  /// Of a shop without departments.
  DepartmentNavigation() = default;

  /// The departments it was made from.
  const DepartmentTree& departments() const { return tree_; }

  /// CatEsplora (explore departments): tree and drop-down for the page of the department `corrente`, "###" for a page
  /// of none. Open are the always-open levels, and of a department its children, siblings and ancestors; an open
  /// department beneath a closed one is shown, but not when the template wraps sub-departments into their parent's
  /// text. Nothing is open but the levels when `corrente` is no department.
  Navigation CatEsplora(std::string_view corrente) const;

  /// MakePercorsoTitolo (make title path): links to the ancestors, each followed by " &gt; ", hidden ones left out.
  /// Empty when the chain of parents breaks, or runs in a circle, before it comes to the top.
  std::string MakePercorsoTitolo(std::string_view id) const;
  /// MakeSottoreparti (make sub-departments): links to the children that aren't hidden, each followed by " | ", the
  /// last one too; empty when there is none.
  std::string MakeSottoreparti(std::string_view id) const;

  /// CatLink (department link): one entry of the tree; `corrente`: of the page's own department.
  std::string CatLink(const MenuDepartment& department, bool corrente) const;
  /// CatMenu (department menu): one option of the drop-down.
  std::string CatMenu(const MenuDepartment& department) const;
  /// CatLinkRep (link to a department): a plain link to a department.
  std::string CatLinkRep(const MenuDepartment& department) const;

 private:
  std::string plainEntry(const MenuDepartment& department, bool corrente) const;
  std::string templateEntry(const MenuDepartment& department, bool corrente) const;
  std::string link(const MenuDepartment& department) const;
  std::vector<std::size_t> openIndexes(std::string_view corrente) const;
  std::string joined(const std::vector<std::size_t>& open, std::size_t current) const;
  std::string entryText(std::size_t index, std::size_t current) const;
  std::string wrappedEntry(std::size_t index, const std::string& beneath, std::size_t current) const;
  std::string wrapped(const std::vector<std::size_t>& open, std::size_t current) const;

  DepartmentTree tree_;
  NavigationLook look_;
  std::string menu_;
  // By index in the walk: the entry when it isn't the current one, and that entry in the wrapper of a department with
  // nothing beneath.
  std::vector<std::string> entries_, leaves_;
  std::vector<std::size_t> alwaysOpen_;  // indexes in the walk, ascending
};

}  // namespace kv
