// Random operations on the tree, undo and redo among them, from each of eight seeds: after each one the rows are those
// that a plain model of the commands has computed, they keep their rules, and the tree that is shown is the tree that
// is stored. A series that fails is made shorter before it is reported. KORVANE_TEST_SEED and KORVANE_TEST_SEEDS: the
// first seed and their number. KORVANE_TEST_OPERATIONS: the length.

#include <gtest/gtest-spi.h>

#include <functional>
#include <map>
#include <random>
#include <set>

#include "platform/database/recordset.h"
#include "store/plain_tree.h"
#include "store/tree_fixture.h"
#include "support/shrink.h"
#include "support/test_seed.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

constexpr int usualOperations = 1250;
constexpr unsigned usualSeeds = 8;
constexpr std::size_t returns = 4;  ///< times at which everything is undone
constexpr std::size_t manyDepartments = 20;
constexpr std::size_t manyArticles = 40;
constexpr std::size_t shrinkBudget = 20000;  ///< operations spent on making a failing series shorter

/// One number each: what an operation draws from. The same numbers without some of them are a series, too.
using Series = std::vector<unsigned>;

struct Operation {
  const char* name;
  std::function<Result<>()> command;
  std::function<PlainCursors(const PlainCursors&)> expected;
};

/// A shop on which a series is played. Its failures go to whoever listens.
class TreeRun : public TreeFixture {
 public:
  explicit TreeRun(const ::testing::TestPartResultArray& failures) : failures_(failures) {}

  /// Plays until something fails or the series is over.
  void play(const Series& series) {
    start();
    const std::size_t part = series.size() / returns + 1;
    for (std::size_t n = 1; n <= series.size() && !hasFailed(); ++n) {
      chance.seed(series[n - 1]);
      playOne();
      played_ = n;
      if (n % part == 0 && !hasFailed()) comeBack(static_cast<std::size_t>(pick(static_cast<int>(states_.size()))));
    }
    if (!hasFailed()) comeBack(states_.size());
    if (!hasFailed()) finish();
  }
  /// Operations played, the one that failed included.
  std::size_t played() const { return played_; }
  /// What was done, a line each.
  const std::string& log() const { return log_; }
  /// The most steps that could be undone at a time.
  std::size_t longest() const { return longest_; }

 private:
  void TestBody() override {}
  bool hasFailed() const { return failures_.size() > 0; }

  void playOne() {
    log_ += "  " + sets.department() + "/" + std::to_string(sets.article()) + ": ";
    operate();
    log_ += "\n";
    if (hasFailed()) return;
    check();
    ASSERT_FALSE(sets.isSuppressed());
    longest_ = std::max(longest_, present);
  }
  void check() {
    checkRows();
    if (!hasFailed()) checkShown();
  }
  void comeBack(std::size_t steps) {
    undoEverything();
    redo(steps);
    if (!hasFailed()) check();
  }
  void finish() {
    undoEverything();
    ASSERT_EQ(fingerprint(), states_.front());
    ASSERT_EQ(rows("PRAGMA integrity_check"), "ok\n");
  }

  void start() {
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
      while (row && valueOf(row->step())) {
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
    const int index = pick(static_cast<int>(nodes.size()) + 1);
    return index == 0 ? std::string(treeRoot) : nodes[static_cast<std::size_t>(index - 1)].ID;
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
    log_ += one.name;
    log_ += yes ? "" : " (No)";
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

  void travel(bool back) {
    const auto done = back ? history.undo() : history.redo();
    ASSERT_TRUE(done) << done.error().what;
    present = back ? present - 1 : present + 1;
    ASSERT_LT(present, states_.size());
    ASSERT_EQ(fingerprint(), states_[present]);
  }
  void undoEverything() {
    while (history.canUndo() && !hasFailed()) travel(true);
    ASSERT_EQ(present, 0U) << "steps are missing at the beginning";
    model.read(session.catalogue);
  }
  void redo(std::size_t steps) {
    for (std::size_t i = 0; i < steps && history.canRedo() && !hasFailed(); ++i) travel(false);
    model.read(session.catalogue);
  }

  void operate() {
    const int kind = pick(100);
    if (kind < 12) {
      log_ += "other department";
      ASSERT_TRUE(sets.goToDepartment(anyDepartment()));
    } else if (kind < 20) {
      log_ += "other article";
      // The position after the last one takes the cursor off the list.
      sets.goToArticleIndex(static_cast<std::size_t>(pick(static_cast<int>(sets.dataArticoli().size()) + 1)));
    } else if (kind < 22) {
      log_ += "other language";
      ASSERT_TRUE(sets.CambiaLingua(pick(2) + 1));
      model.showLanguage(session.currentLanguage);
    } else if (kind < 36) {
      log_ += "undo";
      for (int steps = pick(3); steps >= 0 && history.canUndo(); --steps) travel(true);
      model.read(session.catalogue);
    } else if (kind < 44) {
      log_ += "redo";
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
    while (valueOf(statement->step())) {
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

  const ::testing::TestPartResultArray& failures_;
  std::mt19937 chance;
  PlainTree model;
  bool yes = false;
  std::vector<std::size_t> states_;  ///< fingerprints, one after each step
  std::size_t present = 0;
  std::size_t played_ = 0, longest_ = 0;
  std::string log_;
};

/// How a series went.
struct Played {
  std::string failure;  ///< the first one; empty when all went well
  std::size_t operations = 0;
  std::string log;
  std::size_t longest = 0;
};

Played play(const Series& series) {
  ::testing::TestPartResultArray failures;
  Played result;
  {
    const ::testing::ScopedFakeTestPartResultReporter reporter(
        ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
    TreeRun run(failures);
    run.play(series);
    result = {"", run.played(), run.log(), run.longest()};
  }
  if (failures.size() > 0) result.failure = failures.GetTestPartResult(0).message();
  return result;
}

class TreeProperty : public ::testing::TestWithParam<unsigned> {};

TEST_P(TreeProperty, TheRulesOfTheTreeHoldAfterEveryOperation) {
  std::mt19937 chance(GetParam());
  Series series(static_cast<std::size_t>(operationsOf(usualOperations)));
  for (unsigned& one : series) one = static_cast<unsigned>(chance());
  const Played whole = play(series);
  // The walk goes somewhere: it isn't undone as fast as it is made.
  EXPECT_GT(whole.longest, std::min<std::size_t>(20, series.size() / 50));
  if (whole.failure.empty()) return;
  series.resize(whole.operations);
  const Series least = shrink<unsigned>(
      series, [](const Series& part) { return !play(part).failure.empty(); }, shrinkBudget);
  const Played shown = play(least);
  FAIL() << "after " << whole.operations << " operations; " << least.size() << " of them fail, too:\n"
         << shown.log << shown.failure;
}

INSTANTIATE_TEST_SUITE_P(Seeds, TreeProperty, ::testing::Range(seed(), seed() + seeds(usualSeeds)),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace kv::test
