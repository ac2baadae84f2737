#include "store/catalogue/catalogue_lists.h"

#include "platform/numbers/number_format.h"

#include "store/schema/schema.h"

namespace kv {
namespace {

constexpr const char* untitled = "(senza nome)";
constexpr const char* departmentOrder = "ORDER BY livello, ordinamento";

std::string literal(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? "''" : std::string(1, c);
  return quoted + "'";
}

Result<Recordset> open(Session& session, const std::string& table, const std::string& rest) {
  return session.catalogue.openRecordset(SelezionaLingua(table, session.currentLanguage, rest));
}

Result<Recordset> readSiblings(Session& session, const Recordset& departments) {
  // No department has the parent "#", so the list is empty while the cursor is on none.
  const bool onDepartment = !departments.bof() && !departments.eof();
  std::string parent = "#";
  if (onDepartment) {
    const Value held = departments.get("genitore");
    parent = isNull(held) ? std::string(treeRoot) : asText(held);
  }
  const std::string condition =
      parent == treeRoot ? "(genitore='###' OR genitore IS NULL)" : "genitore=" + literal(parent);
  const Value current = departments.get("ID");
  auto siblings = open(session, "categorie", "WHERE " + condition + " " + departmentOrder);
  if (!siblings || !onDepartment) return siblings;
  if (auto found = siblings->seek("ID", current); !found) return fail(found.error());
  return siblings;
}

}  // namespace

std::string departmentKey(std::int64_t contatore) { return "cat" + formatNumber(contatore, "###000"); }

void leaveRows(Recordset& rows) {
  rows.moveFirst();
  if (!rows.bof()) rows.movePrevious();
}

Result<Recordset> readSettings(Session& session) { return open(session, "generale", ""); }

Result<Recordset> readDepartments(Session& session) {
  auto departments = open(session, "categorie", departmentOrder);
  if (departments) leaveRows(*departments);
  return departments;
}

Result<Recordset> departmentsToAdd(Session& session) { return open(session, "categorie", "WHERE contatore IS NULL"); }

Result<Recordset> readArticles(Session& session, std::string_view department) {
  auto articles = open(session, "articoli", "WHERE catID=" + literal(department) + " ORDER BY ordinamento");
  if (articles) leaveRows(*articles);
  return articles;
}

Result<FollowingLists> readFollowing(Session& session, Recordset& departments) {
  if (auto read = departments.load(); !read) return fail(read.error());
  const bool onDepartment = !departments.bof() && !departments.eof();
  auto articles = readArticles(session, onDepartment ? asText(departments.get("ID")) : std::string(treeRoot));
  if (!articles) return fail(articles.error());
  articles->moveFirst();
  auto siblings = readSiblings(session, departments);
  if (!siblings) return fail(siblings.error());
  return FollowingLists{std::move(*siblings), std::move(*articles)};
}

Result<std::vector<TreeNode>> readTree(Session& session) {
  const auto language = static_cast<std::size_t>(session.currentLanguage - 1);
  auto rows = session.catalogue.prepare("SELECT ID, genitore, titolo" + std::string(languageSuffixes[language]) +
                                        ", livello FROM categorie " + departmentOrder);
  if (!rows) return fail(rows.error());
  std::vector<TreeNode> nodes;
  for (;;) {
    auto row = rows->step();
    if (!row) return fail(row.error());
    if (!*row) return nodes;
    nodes.push_back({std::string(rows->text(0)), std::string(rows->isNull(1) ? treeRoot : rows->text(1)),
                     std::string(rows->isNull(2) ? untitled : rows->text(2)), rows->integer(3)});
  }
}

Result<std::int64_t> countAllArticles(Session& session) {
  auto total = session.catalogue.scalar("SELECT COUNT(*) AS nArt FROM articoli");
  if (!total) return fail(total.error());
  return asInteger(*total);
}

Result<CatalogueLists> readLists(Session& session, const CatalogueCursors& cursors) {
  auto departments = readDepartments(session);
  if (!departments) return fail(departments.error());
  auto tree = readTree(session);
  if (!tree) return fail(tree.error());
  if (cursors.department != treeRoot) {
    if (auto found = departments->seek("ID", Value(cursors.department)); !found) return fail(found.error());
  }
  auto following = readFollowing(session, *departments);
  if (!following) return fail(following.error());
  if (cursors.article != 0) {
    if (auto found = following->articoli.seek("ID", Value(cursors.article)); !found) return fail(found.error());
  }
  return CatalogueLists{std::nullopt, std::move(*departments), std::move(*following), std::move(*tree), std::nullopt};
}

}  // namespace kv
