// Ten thousand random operations on the tree in one run, undo and redo among them: after each one the rows are those
// that a plain model of the commands has computed, they keep their rules, and the tree that is shown is the tree that
// is stored. KORVANE_TEST_SEED=<number> runs another row of operations.

#include <functional>
#include <map>
#include <random>
#include <set>

#include "platform/database/recordset.h"
#include "store/plain_tree.h"
#include "store/tree_fixture.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

// Instrumented code takes three times as long.
#ifdef __SANITIZE_ADDRESS__
constexpr int operations = 4000;
#else
constexpr int operations = 10000;
#endif
constexpr int operationsBetweenReturns = operations / 4;
constexpr std::size_t manyDepartments = 20;
constexpr std::size_t manyArticles = 40;

struct Operation {
  const char* name;
  std::function<Result<>()> command;
  std::function<PlainCursors(const PlainCursors&)> expected;
};

class TreeProperty : public TreeFixture {
 protected:
  void SetUp() override {
    department(1, "###", 100);
    department(2, "cat001", 105, 2);
    department(3, "###", 110);
    article("cat001", 100, "Alba");
    article("cat003", 105, "Brina");
    sql("UPDATE articoli SET titolo_l2 = 'Dawn', codice = 'A1', peso = 0.25 WHERE ID = 1");
    sql("PRAGMA synchronous=OFF");  // the shop lives for one test
    bind();
    editing.showModel("modello2");
    model.showModel("modello2");
    model.read(session.catalogue);
    states_ = {fingerprint()};
  }

  int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(chance); }

  std::string stored() { return rows(PlainTree::queries[0]) + rows(PlainTree::queries[1]); }
  /// One number for every field of every row that undo answers for.
  std::size_t fingerprint() {
    std::size_t mixed = 0;
    const auto mix = [&mixed](std::size_t more) { mixed = mixed * 1099511628211U + more; };
    for (const char* query : {"SELECT * FROM categorie ORDER BY contatore", "SELECT * FROM articoli ORDER BY ID",
                              "SELECT * FROM generale", "SELECT * FROM lingue"}) {
      auto row = session.catalogue.prepare(query);
      while (row && *row->step()) {
        for (int i = 0; i < row->columnCount(); ++i) {
          const StoredAs kind = row->storedAs(i);
          mix(static_cast<std::size_t>(kind));
          if (kind != StoredAs::Null) mix(std::hash<std::string_view>()(row->bytes(i)));
        }
      }
    }
    return mixed;
  }
  std::int64_t count(const std::string& table) {
    const auto value = session.catalogue.scalar("SELECT COUNT(*) FROM " + table);
    return value ? asInteger(*value) : -1;
  }
  PlainCursors cursors() { return {sets.department(), sets.article()}; }

  std::string anyDepartment() {
    const auto& nodes = sets.tree();
    const int position = pick(static_cast<int>(nodes.size()) + 1);
    return position == 0 ? std::string(treeRoot) : nodes[static_cast<std::size_t>(position - 1)].ID;
  }

  Operation articleCommand() {
    const bool after = pick(2) == 0;
    const int direction = pick(2) == 0 ? -1 : 1;
    const std::string title = "Articolo " + std::to_string(pick(1000)) + " l'è";
    const std::int64_t price = pick(1000000);
    switch (pick(7)) {
      case 0:
        return {"insert article",
                [this, after] { return after ? editing.InserisciArticoloDopo() : editing.InserisciArticoloPrima(); },
                [this, after](const PlainCursors& at) { return model.insertArticle(at, after); }};
      case 1:
        return {"move article", [this, direction] { return editing.Sposta(direction, TreeList::Articles); },
                [this, direction](const PlainCursors& at) { return model.moveArticle(at, direction); }};
      case 2:
        return {"delete article", [this] { return editing.EliminaArticolo(); },
                [this](const PlainCursors& at) { return model.deleteArticle(at, yes); }};
      case 3:
        return {"copy article", [this] { return editing.CopiaArticolo(); },
                [this](const PlainCursors& at) { return model.copyArticle(at); }};
      case 4:
        return {"paste articles", [this] { return editing.IncollaArticoli(); },
                [this](const PlainCursors& at) { return model.pasteArticles(at, yes); }};
      case 5:
        return {"title of an article", [this, title] { return storeArticle("titolo", Value(title)); },
                [=, this](const PlainCursors& at) { return model.setArticleTitle(at, title); }};
      default:
        return {"price", [this, price] { return storeArticle("prezzo", Value(Money::ofTenThousandths(price))); },
                [this, price](const PlainCursors& at) { return model.setPrice(at, std::to_string(price)); }};
    }
  }

  Operation departmentCommand() {
    const bool after = pick(2) == 0;
    const int direction = pick(2) == 0 ? -1 : 1;
    const std::string title = "Reparto " + std::to_string(pick(1000));
    switch (pick(7)) {
      case 0:
        return {"insert department",
                [this, after] { return after ? editing.InserisciRepartoDopo() : editing.InserisciRepartoPrima(); },
                [this, after](const PlainCursors& at) { return model.insertDepartment(at, after); }};
      case 1:
        return {"sub-department", [this] { return editing.NuovoSottoreparto(); },
                [this](const PlainCursors& at) { return model.addUnder(at); }};
      case 2:
        return {"move department", [this, direction] { return editing.Sposta(direction, TreeList::Departments); },
                [this, direction](const PlainCursors& at) { return model.moveDepartment(at, direction); }};
      case 3:
        return deleteDepartment();
      case 4:
        return {"copy department", [this] { return editing.CopiaReparto(); },
                [this](const PlainCursors& at) { return model.copyDepartment(at, yes); }};
      case 5:
        return {"paste department", [this] { return editing.IncollaReparto(); },
                [this](const PlainCursors& at) { return model.pasteDepartment(at, yes); }};
      default:
        return {"title of a department",
                [this, title]() -> Result<> {
                  return sets.onDepartment() ? sets.store(EditedSet::Categorie, "titolo", Value(title)) : Result<>();
                },
                [=, this](const PlainCursors& at) { return model.setDepartmentTitle(at, title); }};
    }
  }

  Operation deleteDepartment() {
    return {"delete department", [this] { return editing.EliminaReparto(); },
            [this](const PlainCursors& at) { return model.deleteDepartment(at, yes); }};
  }
  Operation dragging() {
    const std::string key = anyDepartment();
    const std::string target = anyDepartment();
    return {"drag", [=, this] { return editing.SpostaNodo(key, target); },
            [=, this](const PlainCursors& at) { return model.drag(at, key, target); }};
  }
  Result<> storeArticle(const char* column, const Value& value) {
    return sets.onArticle() ? sets.store(EditedSet::Articoli, column, value) : Result<>();
  }

  Operation anyOperation() {
    if (model.departmentCount() > manyDepartments || model.articleCount() > manyArticles) return deleteDepartment();
    const int kind = pick(15);
    if (kind < 7) return articleCommand();
    return kind < 14 ? departmentCommand() : dragging();
  }

  /// Runs a command as a step, with every question answered by chance.
  void edit() {
    yes = pick(3) > 0;
    user.answers = {yes ? Answer::Yes : Answer::No};
    user.shown.clear();
    const Operation one = anyOperation();
    SCOPED_TRACE(one.name);
    const PlainCursors wanted = one.expected(cursors());
    const auto done = history.record(one.name, one.command);
    ASSERT_TRUE(done) << done.error().what;
    ASSERT_EQ(stored(), model.asText());
    ASSERT_EQ(sets.department(), wanted.department);
    ASSERT_EQ(sets.article(), wanted.article);
    const std::size_t now = fingerprint();
    if (now == states_[present]) return;
    states_.resize(present + 1);
    states_.push_back(now);
    ++present;
    ASSERT_EQ(history.undoName(), one.name);
  }

  void goBack() { travel(true); }
  void goForth() { travel(false); }
  void travel(bool back) {
    const auto done = back ? history.undo() : history.redo();
    ASSERT_TRUE(done) << done.error().what;
    present = back ? present - 1 : present + 1;
    ASSERT_LT(present, states_.size());
    ASSERT_EQ(fingerprint(), states_[present]);
  }
  void settleModel() { model.read(session.catalogue); }

  void undoEverything() {
    while (history.canUndo() && !HasFatalFailure()) goBack();
    ASSERT_EQ(present, 0U) << "steps are missing at the beginning";
    settleModel();
  }
  void redo(std::size_t steps) {
    for (std::size_t i = 0; i < steps && history.canRedo() && !HasFatalFailure(); ++i) goForth();
    settleModel();
  }

  void operate() {
    const int kind = pick(100);
    if (kind < 12) {
      ASSERT_TRUE(sets.goToDepartment(anyDepartment()));
    } else if (kind < 20) {
      // The position after the last one takes the cursor off the list.
      sets.goToArticlePlace(static_cast<std::size_t>(pick(static_cast<int>(sets.dataArticoli().size()) + 1)));
    } else if (kind < 22) {
      ASSERT_TRUE(sets.CambiaLingua(pick(2) + 1));
      model.showLanguage(session.currentLanguage);
    } else if (kind < 36) {
      for (int steps = pick(3); steps >= 0 && history.canUndo(); --steps) goBack();
      settleModel();
    } else if (kind < 44) {
      redo(static_cast<std::size_t>(pick(3) + 1));
    } else {
      edit();
    }
  }

  struct Row {
    std::string parent;
    std::int64_t level = 0;
    bool children = false;
  };

  /// The rules of the rows: each department hangs under one that says so, each article lies in one that exists.
  void checkRows() {
    std::map<std::string, Row> kept;
    auto statement = session.catalogue.prepare("SELECT ID, genitore, livello, hafigli, pagina FROM categorie");
    ASSERT_TRUE(statement);
    while (*statement->step()) {
      ASSERT_FALSE(kept.contains(std::string(statement->text(0)))) << statement->text(0);
      kept[std::string(statement->text(0))] = {std::string(statement->text(1)), statement->integer(2),
                                               statement->flag(3)};
      ASSERT_EQ(statement->text(0), statement->text(4));
    }
    ASSERT_FALSE(kept.empty());
    std::set<std::string> parents;
    for (const auto& [ID, row] : kept) {
      parents.insert(row.parent);
      ASSERT_TRUE(row.parent == treeRoot || kept.contains(row.parent)) << ID;
      ASSERT_EQ(row.level, row.parent == treeRoot ? 1 : kept[row.parent].level + 1) << ID;
    }
    for (const auto& [ID, row] : kept) ASSERT_EQ(row.children, parents.contains(ID)) << ID;
    ASSERT_EQ(rows("SELECT COUNT(*) FROM articoli WHERE catID NOT IN (SELECT ID FROM categorie)"), "0\n");
    ASSERT_EQ(rows("SELECT COUNT(*) - COUNT(DISTINCT contatore) FROM categorie"), "0\n");
    for (const char* table : {"generale", "lingue"}) ASSERT_EQ(count(table), 1);
  }

  /// The numbers of a set's rows in its order; its cursor stays.
  static std::vector<std::int64_t> keysOf(Recordset& set, const char* key) {
    const std::size_t position = set.position();
    std::vector<std::int64_t> keys;
    for (set.moveFirst(); !set.eof(); set.moveNext()) keys.push_back(asInteger(set.get(key)));
    set.moveTo(position);
    return keys;
  }

  void checkShown() {
    std::string shown;
    for (const TreeNode& node : sets.tree()) {
      shown += node.ID + "|" + node.genitore + "|" + std::to_string(node.livello) + "|" + node.titolo + "\n";
    }
    const std::string title = session.currentLanguage == 1 ? "titolo" : "titolo_l2";
    ASSERT_EQ(shown, rows("SELECT ID, genitore, livello, COALESCE(" + title +
                          ", '(senza nome)') FROM categorie ORDER BY livello, ordinamento, contatore"));
    ASSERT_EQ(session.articleCount, count("articoli"));
    ASSERT_EQ(keysOf(sets.dataArticoli(), "ID"), model.articlesOf(sets.department()));
    if (!sets.onDepartment()) {
      ASSERT_EQ(sets.dataFratelli().size(), 0U);
      ASSERT_EQ(sets.departmentArticles(), -1);
      return;
    }
    ASSERT_EQ(sets.departmentArticles(), static_cast<std::int64_t>(sets.dataArticoli().size()));
    ASSERT_EQ(keysOf(sets.dataFratelli(), "contatore"), model.childrenOf(model.find(sets.department())->parent));
    ASSERT_EQ(asText(sets.dataFratelli().get("ID")), sets.department());
  }

  std::mt19937 chance{seed()};
  PlainTree model;
  bool yes = false;
  std::vector<std::size_t> states_;  ///< fingerprints, one after each step
  std::size_t present = 0;
};

TEST_F(TreeProperty, TheRulesOfTheTreeHoldAfterEveryOperation) {
  SCOPED_TRACE("KORVANE_TEST_SEED=" + std::to_string(seed()));
  std::size_t longest = 0;
  for (int n = 1; n <= operations; ++n) {
    SCOPED_TRACE("operation " + std::to_string(n));
    operate();
    if (HasFatalFailure()) return;
    checkRows();
    checkShown();
    ASSERT_FALSE(sets.isSuppressed());
    if (HasFatalFailure()) return;
    longest = std::max(longest, present);
    if (n % operationsBetweenReturns != 0) continue;
    undoEverything();
    redo(n == operations ? states_.size() : static_cast<std::size_t>(pick(static_cast<int>(states_.size()))));
    if (HasFatalFailure()) return;
    checkRows();
    checkShown();
  }
  undoEverything();
  EXPECT_EQ(fingerprint(), states_.front());
  EXPECT_GT(longest, 100U);
  EXPECT_EQ(rows("PRAGMA integrity_check"), "ok\n");
}

}  // namespace
}  // namespace kv::test
