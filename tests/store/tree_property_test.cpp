// Ten thousand random operations on the tree, undo and redo among them: after each one the rows keep their rules, and
// the tree that is shown is the tree that is stored.

#include <map>
#include <random>
#include <set>

#include "store/tree_fixture.h"

namespace kv::test {
namespace {

constexpr int operationsEach = 1000;
constexpr std::int64_t manyDepartments = 25;
constexpr std::int64_t manyArticles = 60;

class TreeProperty : public TreeFixture, public ::testing::WithParamInterface<unsigned> {
 protected:
  void SetUp() override {
    department(1, "###", 100);
    department(2, "cat001", 105, 2);
    department(3, "###", 110);
    article("cat001", 100, "Alba");
    article("cat003", 105, "Brina");
    bind();
    chance.seed(GetParam());
    snapshots = {everything()};
  }

  int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(chance); }

  std::string everything() {
    return rows(
               "SELECT contatore, ID, pagina, genitore, livello, ordinamento, hafigli, titolo, affiancati "
               "FROM categorie ORDER BY contatore") +
           rows("SELECT ID, catID, ordinamento, titolo, inelenco FROM articoli ORDER BY ID");
  }
  std::int64_t count(const std::string& table) {
    const auto value = session.catalogue.scalar("SELECT COUNT(*) FROM " + table);
    return value ? asInteger(*value) : -1;
  }

  std::string anyDepartment() {
    const auto& nodes = sets.tree();
    const int place = pick(static_cast<int>(nodes.size()) + 1);
    return place == 0 ? std::string(treeRoot) : nodes[static_cast<std::size_t>(place - 1)].ID;
  }

  void moveCursors() {
    ASSERT_TRUE(sets.goToDepartment(anyDepartment()));
    if (sets.dataArticoli().size() > 0 && pick(3) > 0) {
      sets.goToArticlePlace(static_cast<std::size_t>(pick(static_cast<int>(sets.dataArticoli().size()))));
    }
  }

  Result<> operation(int which) {
    const int direction = pick(2) == 0 ? -1 : 1;
    switch (which) {
      case 0:
        return editing.InserisciArticoloDopo();
      case 1:
        return editing.InserisciArticoloPrima();
      case 2:
        return editing.InserisciRepartoDopo();
      case 3:
        return editing.InserisciRepartoPrima();
      case 4:
        return editing.NuovoSottoreparto();
      case 5:
        return editing.Sposta(direction, TreeList::Articles);
      case 6:
        return editing.Sposta(direction, TreeList::Departments);
      case 7:
        return editing.EliminaArticolo();
      case 8:
        return editing.EliminaReparto();
      case 9:
        return editing.CopiaArticolo();
      case 10:
        return editing.CopiaReparto();
      case 11:
        return editing.IncollaArticoli();
      case 12:
        return editing.IncollaReparto();
      default:
        return editing.SpostaNodo(anyDepartment(), anyDepartment());
    }
  }

  /// Runs a command as a step, with every question answered by chance.
  void edit() {
    int which = pick(14);
    if (count("articoli") > manyArticles) which = 7 + pick(2);
    if (count("categorie") > manyDepartments) which = 8;
    user.answers = {pick(2) == 0 ? Answer::Yes : Answer::No};
    user.shown.clear();
    const auto done = history.record("passo", [&] { return operation(which); });
    ASSERT_TRUE(done) << which << ": " << done.error().what;
    const std::string now = everything();
    if (now == snapshots[present]) return;
    snapshots.resize(present + 1);
    snapshots.push_back(now);
    ++present;
  }

  void goBackOrForth() {
    const bool back = pick(2) == 0;
    if (back ? !history.canUndo() : !history.canRedo()) return;
    const auto done = back ? history.undo() : history.redo();
    ASSERT_TRUE(done) << done.error().what;
    present = back ? present - 1 : present + 1;
    ASSERT_LT(present, snapshots.size());
    ASSERT_EQ(everything(), snapshots[present]);
  }

  struct Row {
    std::string parent;
    std::int64_t level = 0;
    bool children = false;
  };

  /// The rules of the rows: each department hangs under one that says so, each article lies in one that exists.
  void checkRows() {
    std::map<std::string, Row> stored;
    auto statement = session.catalogue.prepare("SELECT ID, genitore, livello, hafigli, pagina FROM categorie");
    ASSERT_TRUE(statement);
    while (*statement->step()) {
      stored[std::string(statement->text(0))] = {std::string(statement->text(1)), statement->integer(2),
                                                 statement->flag(3)};
      ASSERT_EQ(statement->text(0), statement->text(4));
    }
    ASSERT_FALSE(stored.empty());
    std::set<std::string> parents;
    for (const auto& [ID, row] : stored) {
      parents.insert(row.parent);
      if (row.parent == treeRoot) {
        ASSERT_EQ(row.level, 1) << ID;
        continue;
      }
      ASSERT_TRUE(stored.contains(row.parent)) << ID;
      ASSERT_EQ(row.level, stored[row.parent].level + 1) << ID;
    }
    for (const auto& [ID, row] : stored) ASSERT_EQ(row.children, parents.contains(ID)) << ID;
    ASSERT_EQ(rows("SELECT COUNT(*) FROM articoli WHERE catID NOT IN (SELECT ID FROM categorie)"), "0\n");
    for (const char* table : {"generale", "lingue"}) ASSERT_EQ(count(table), 1);
  }

  void checkShown() {
    std::string shown;
    for (const TreeNode& node : sets.tree()) {
      shown += node.ID + "|" + node.genitore + "|" + std::to_string(node.livello) + "\n";
    }
    ASSERT_EQ(shown, rows("SELECT ID, genitore, livello FROM categorie ORDER BY livello, ordinamento"));
    ASSERT_EQ(session.articleCount, count("articoli"));
    if (!sets.onDepartment()) return;
    ASSERT_EQ(sets.departmentArticles(), count("articoli WHERE catID = '" + sets.department() + "'"));
    ASSERT_EQ(static_cast<std::int64_t>(sets.dataArticoli().size()), sets.departmentArticles());
    ASSERT_EQ(asText(sets.dataFratelli().get("ID")), sets.department());
  }

  std::mt19937 chance;
  std::vector<std::string> snapshots;
  std::size_t present = 0;
};

TEST_P(TreeProperty, TheRulesOfTheTreeHoldAfterEveryOperation) {
  for (int n = 0; n < operationsEach; ++n) {
    SCOPED_TRACE("operation " + std::to_string(n));
    if (pick(2) == 0) moveCursors();
    if (pick(4) == 0) {
      goBackOrForth();
    } else {
      edit();
    }
    checkRows();
    checkShown();
    ASSERT_FALSE(session.suppress);
    if (HasFatalFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, TreeProperty, ::testing::Range(1U, 11U));

}  // namespace
}  // namespace kv::test
