#pragma once
// The lists of the workbench as values: read whole from the catalogue before any of them is shown, so that a failure
// half-way leaves what is shown as it was. Nothing here moves a cursor that somebody sees. Private to store/.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/recordset.h"
#include "store/shop/session.h"

namespace kv {

/// The implicit root of the department tree, which has no row. A department without a parent hangs under it, too.
inline constexpr std::string_view treeRoot = "###";
/// What the tree shows for the root.
inline constexpr std::string_view treeRootTitle = "Negozio";

/// The key of a department, and its page: "cat" and the serial number with at least three digits.
std::string departmentKey(std::int64_t contatore);

/// A department as the tree shows it.
struct TreeNode {
  std::string ID, genitore, titolo;
  std::int64_t livello = 1;
};

/// What follows a department: its siblings, itself current, and its articles, the first one current.
struct FollowingLists {
  Recordset fratelli, articoli;
};

/// Everything that is shown of a catalogue, with its cursors.
struct CatalogueLists {
  std::optional<Recordset> generale;  ///< the settings; empty: those that are shown stay
  Recordset categorie;                ///< all departments; the cursor is before the first row or on the current one
  FollowingLists following;
  std::vector<TreeNode> tree;
  std::optional<std::int64_t> articles;  ///< articles of the shop; empty: as many as before
};

/// What a command begins with: the rows that the cursors are on.
struct CatalogueCursors {
  std::string department;    ///< ID; "###" when on none
  std::int64_t article = 0;  ///< ID; 0 when on none
};

/// Takes a cursor off its rows, to before the first.
void leaveRows(Recordset& rows);

/// The settings, the cursor on their row.
Result<Recordset> readSettings(Session& session);
/// All departments by level and order, the cursor on none.
Result<Recordset> readDepartments(Session& session);
/// No departments at all: a record set through which one is added in the language being edited.
Result<Recordset> departmentsToAdd(Session& session);
/// The articles of a department in their order, the cursor on none.
Result<Recordset> readArticles(Session& session, std::string_view department);
/// The lists that follow the current row of `departments`; both are empty when it is on none.
Result<FollowingLists> readFollowing(Session& session, Recordset& departments);
/// The departments, parents before children, with their titles in the language being edited.
Result<std::vector<TreeNode>> readTree(Session& session);
/// How many articles the shop has.
Result<std::int64_t> countAllArticles(Session& session);
/// All of it but the settings, with the cursors on a department and one of its articles. A department that is gone, or
/// "###": on none. An article that is gone, or 0: on the first.
Result<CatalogueLists> readLists(Session& session, const CatalogueCursors& cursors);

}  // namespace kv
