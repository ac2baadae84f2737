// Every command of the tree, every move of the cursors and every step of the history, with each call of the store
// failing in its turn: rows, lists, cursors and status line are as before, and the next try works.
#include <gmock/gmock.h>

#include "platform/database/recordset.h"
#include "store/tree_fixture.h"
#include "support/failing_store.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

/// What comes with the call that fails.
enum class Damage {
  Once,     ///< the next call works
  Lasting,  ///< no call works any more
  Undoing   ///< the engine undoes the open transaction, as on a full disk
};

struct TriedCommand {
  const char* name;
  std::string department;    ///< the cursors before it
  std::int64_t article = 0;  ///< 0: the first
  std::function<Result<>(TreeEditing&, CatalogueSets&)> run;
};

Result<> discard(const Result<bool>& moved) { return moved ? Result<>() : fail(moved.error()); }

std::vector<TriedCommand> commands() {
  using E = TreeEditing&;
  using S = CatalogueSets&;
  const auto value = [](const char* text) { return Value(std::string(text)); };
  return {
      {"article after", "cat001", 1, [](E edit, S) { return edit.InserisciArticoloDopo(); }},
      {"article before", "cat001", 2, [](E edit, S) { return edit.InserisciArticoloPrima(); }},
      {"article into an empty department", "cat002", 0, [](E edit, S) { return edit.InserisciArticoloDopo(); }},
      {"article down", "cat001", 1, [](E edit, S) { return edit.Sposta(1, TreeList::Articles); }},
      {"article up", "cat001", 3, [](E edit, S) { return edit.Sposta(-1, TreeList::Articles); }},
      {"article deleted", "cat001", 2, [](E edit, S) { return edit.EliminaArticolo(); }},
      {"article copied", "cat001", 2, [](E edit, S) { return edit.CopiaArticolo(); }},
      {"articles pasted", "cat001", 1, [](E edit, S) { return edit.IncollaArticoli(); }},
      {"department after", "cat001", 2, [](E edit, S) { return edit.InserisciRepartoDopo(); }},
      {"department before", "cat003", 0, [](E edit, S) { return edit.InserisciRepartoPrima(); }},
      {"sub-department", "cat001", 2, [](E edit, S) { return edit.NuovoSottoreparto(); }},
      {"department at the top", "###", 0, [](E edit, S) { return edit.NuovoSottoreparto(); }},
      {"department down", "cat001", 2, [](E edit, S) { return edit.Sposta(1, TreeList::Departments); }},
      {"department up", "cat003", 0, [](E edit, S) { return edit.Sposta(-1, TreeList::Departments); }},
      {"department deleted", "cat002", 0, [](E edit, S) { return edit.EliminaReparto(); }},
      {"department and articles deleted", "cat003", 0, [](E edit, S) { return edit.EliminaReparto(); }},
      {"department copied", "cat001", 2, [](E edit, S) { return edit.CopiaReparto(); }},
      {"department pasted", "cat003", 0, [](E edit, S) { return edit.IncollaReparto(); }},
      {"department pasted at the top", "###", 0, [](E edit, S) { return edit.IncollaReparto(); }},
      {"drag", "cat001", 2, [](E edit, S) { return edit.SpostaNodo("cat002", "cat003"); }},
      {"drag to the root", "cat003", 0, [](E edit, S) { return edit.SpostaNodo("cat002", "###"); }},
      {"articles down", "cat001", 1,
       [](E edit, S) {
         return edit.SpostaArticoli({1, 2}, 1);
       }},
      {"articles up", "cat001", 2,
       [](E edit, S) {
         return edit.SpostaArticoli({2, 3}, -1);
       }},
      {"articles deleted", "cat001", 2,
       [](E edit, S) {
         return edit.EliminaArticoli({1, 3});
       }},
      {"articles copied", "cat001", 1,
       [](E edit, S) {
         return edit.CopiaArticoli({1, 3});
       }},
      {"articles marked", "cat001", 2,
       [](E edit, S) {
         return edit.SegnaArticoli({1, 2}, "novita", true);
       }},
      {"articles duplicated", "cat001", 2,
       [](E edit, S) {
         return edit.DuplicaArticoli({1, 3});
       }},
      {"articles hung elsewhere", "cat001", 2,
       [](E edit, S) {
         return edit.SpostaInReparto({1, 2}, "cat003");
       }},
      {"other department", "cat001", 2, [](E, S sets) { return discard(sets.goToDepartment("cat003")); }},
      {"no department", "cat001", 2, [](E, S sets) { return discard(sets.goToDepartment("###")); }},
      {"other article", "cat001", 2, [](E, S sets) { return discard(sets.goToArticle(3)); }},
      {"article shown", "cat002", 0, [](E, S sets) { return discard(sets.MostraArticolo(2)); }},
      {"other language", "cat001", 2, [](E, S sets) { return sets.CambiaLingua(2); }},
      {"tree built", "cat001", 2, [](E, S sets) { return sets.CostruisciAlbero(1); }},
      {"sets bound", "cat001", 2, [](E, S sets) { return sets.bind(); }},
      {"counted", "cat001", 2, [](E, S sets) { return sets.recount(); }},
      {"title of an article", "cat001", 2,
       [=](E, S sets) { return sets.store(EditedSet::Articoli, "titolo", value("x")); }},
      {"title of a department", "cat001", 2,
       [=](E, S sets) { return sets.store(EditedSet::Categorie, "titolo", value("x")); }},
      {"title of the shop", "cat001", 2,
       [=](E, S sets) { return sets.store(EditedSet::Generale, "titolo", value("x")); }},
  };
}

class FailingCommands : public TreeFixture {
 protected:
  /// Two departments at the top, the second without a parent in its row, and one below the first; four articles; a
  /// clipboard with a department and two articles.
  void SetUp() override {
    department(1, "###", 100);
    department(2, "cat001", 105, 2);
    department(3, "###", 101);
    sql("UPDATE categorie SET genitore = NULL WHERE ID = 'cat003'; UPDATE categorie SET titolo_l2 = 'Two'");
    for (int i = 1; i <= 3; ++i) article("cat001", i, "a" + std::to_string(i));
    article("cat003", 100, "b");
    sql("INSERT INTO cliparticoli (titolo) VALUES ('c1'), ('c2');"
        "INSERT INTO clipcategorie (titolo, incolla_articoli) VALUES ('Copia', 1)");
    sql("PRAGMA synchronous=OFF");  // the shop lives for one test
    bind();
    for (const char* table : {"categorie", "articoli", "cliparticoli", "clipcategorie", "generale", "sqlite_sequence"})
      tables_.push_back(session.catalogue.prepare(std::string("SELECT * FROM ") + table).value());
  }

  std::string keysOf(Recordset& set, const char* key) {
    const std::size_t position = set.position();
    std::string text = std::to_string(position) + " of";
    for (set.moveFirst(); !set.eof(); set.moveNext()) text += " " + asText(set.get(key));
    if (position < set.size()) {
      set.moveTo(position);
    } else {
      leaveRows(set);
    }
    return text + "\n";
  }
  std::string stored() {
    std::string text;
    for (Statement& table : tables_) text += test::rows(table);
    return text;
  }
  /// Lists and cursors, the status line, what can be undone.
  std::string shown() {
    std::string text = sets.department() + " " + std::to_string(sets.article()) + " " +
                       std::to_string(session.currentLanguage) + sets.statusLine() + "\n";
    text += keysOf(sets.dataCategorie(), "ID") + keysOf(sets.dataFratelli(), "ID") + keysOf(sets.dataArticoli(), "ID");
    for (const TreeNode& node : sets.tree()) text += node.ID + " " + node.genitore + " " + node.titolo + "\n";
    return text + history.undoName() + " " + history.redoName() + (sets.isSuppressed() ? " suppressed" : "");
  }

  /// Makes call after call of a routine fail and expects that nothing has changed, until the routine comes through.
  /// The damage is of the three kinds in turn, or each call fails with all of them in a long run
  /// (KORVANE_TEST_OPERATIONS). The number of calls.
  std::int64_t failEverywhere(const std::function<Result<>()>& routine) {
    const std::string rowsBefore = stored();
    const std::string shownBefore = shown();
    for (std::int64_t n = 1;; ++n) {
      for (const Damage damage : damagesOf(n)) {
        if (!failOnce(n, damage, routine) || HasFailure()) return n - 1;
        const std::string at = "call " + std::to_string(n) + ", damage " + std::to_string(static_cast<int>(damage));
        EXPECT_EQ(stored(), rowsBefore) << at;
        EXPECT_EQ(shown(), shownBefore) << at;
      }
    }
  }

  static std::vector<Damage> damagesOf(std::int64_t n) {
    const std::vector<Damage> all{Damage::Once, Damage::Lasting, Damage::Undoing};
    if (operationsOf(0) > 0) return all;
    return {all[static_cast<std::size_t>(n) % all.size()]};
  }

  /// Runs a routine whose n-th call fails; false when it has less calls, and came through.
  bool failOnce(std::int64_t n, Damage damage, const std::function<Result<>()>& routine) {
    user.answers.assign(3, Answer::Yes);
    FailingStore store(n, damage == Damage::Lasting ? AfterFailure::FailsToo : AfterFailure::Works);
    if (damage == Damage::Undoing) store.undoTransactionOf(session.catalogue);
    const auto done = routine();
    EXPECT_EQ(done.has_value(), !store.hasFailed()) << "call " << n << (done ? "" : ": " + done.error().what);
    return store.hasFailed();
  }

 private:
  std::vector<Statement> tables_;  // read thousands of times
};

class FailingCommandsTest : public FailingCommands, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(FailingCommandsTest, LeaveRowsListsAndCursorsWhereverTheyFail) {
  const TriedCommand command = commands()[GetParam()];
  SCOPED_TRACE(command.name);
  go(command.department);
  if (command.article != 0) goArticle(command.article);
  EXPECT_GT(failEverywhere([&] { return command.run(editing, sets); }), 0);
}

std::string nameOf(const ::testing::TestParamInfo<std::size_t>& tried) {
  std::string name = commands()[tried.param].name;
  std::ranges::replace_if(
      name, [](char c) { return c == ' ' || c == '-'; }, '_');
  return name;
}
INSTANTIATE_TEST_SUITE_P(EachOf, FailingCommandsTest, ::testing::Range(std::size_t{0}, commands().size()), nameOf);

class FailingHistory : public FailingCommands {
 protected:
  /// Refuses the readings of articles by their number, as the history makes them.
  struct NoReading final : StatementGate {
    int refusal(std::string_view sql) override {
      return sql.starts_with("SELECT * FROM main.articoli") ? FailingStore::inputOutputError : 0;
    }
  } reading;
};

TEST_F(FailingHistory, UndoAndRedoThatFailAnywhereLeaveRowsListsCursorsAndSteps) {
  go("cat001");
  goArticle(2);
  ASSERT_TRUE(history.record("uno", [&] { return editing.InserisciArticoloDopo(); }));
  ASSERT_TRUE(history.record("due", [&] { return editing.NuovoSottoreparto(); }));
  EXPECT_GT(failEverywhere([&] { return history.undo(); }), 0);
  EXPECT_EQ(history.undoName(), "uno");
  EXPECT_GT(failEverywhere([&] { return history.redo(); }), 0);
  EXPECT_EQ(history.undoName(), "due");
}

TEST_F(FailingHistory, AStepThatFailsInItsCommandIsNoStep) {
  go("cat001");
  const std::string before = stored();
  const auto done = history.record("titolo", [&]() -> Result<> {
    if (auto stored = sets.store(EditedSet::Categorie, "titolo", Value(std::string("x"))); !stored) return stored;
    return fail(ErrorKind::Full, "disco", "pieno");
  });
  ASSERT_FALSE(done);
  EXPECT_EQ(done.error().kind, ErrorKind::Full);
  EXPECT_EQ(stored(), before);
  EXPECT_FALSE(history.canUndo());
}

TEST_F(FailingHistory, AStepWhoseRowsCannotBeReadStaysAndEndsTheHistory) {
  go("cat001");
  ASSERT_TRUE(history.record("uno", [&] { return editing.InserisciArticoloDopo(); }));
  const auto done = history.record("due", [&]() -> Result<> {
    auto inserted = editing.InserisciArticoloDopo();
    setStatementGate(&reading);
    return inserted;
  });
  setStatementGate(nullptr);
  EXPECT_FALSE(done);
  EXPECT_FALSE(history.canUndo());
  EXPECT_EQ(rows("SELECT COUNT(*) FROM articoli"), "6\n");
}

class AfterAFailure : public FailingCommands {
 protected:
  void failAt(const char* beginning, const std::function<Result<>()>& routine) {
    FailingStore store(2);  // prepared, and then not run
    store.onlyFor(beginning);
    ASSERT_FALSE(routine());
    ASSERT_TRUE(store.hasFailed());
  }
};

TEST_F(AfterAFailure, ADepartmentThatWasNotInsertedLeavesNoRowWithoutAnOrder) {
  go("cat001");
  failAt("INSERT INTO main.categorie", [&] { return editing.InserisciRepartoDopo(); });
  ASSERT_TRUE(editing.Sposta(-1, TreeList::Departments));
  ASSERT_TRUE(editing.Sposta(1, TreeList::Departments));
  EXPECT_EQ(rows("SELECT ID, ordinamento FROM categorie ORDER BY ID"), "cat001|101\ncat002|105\ncat003|100\n");
}

TEST_F(AfterAFailure, AnArticleThatWasNotMovedStaysTheOneThatIsEdited) {
  go("cat001");
  goArticle(1);
  failAt("UPDATE articoli", [&] { return editing.Sposta(1, TreeList::Articles); });
  ASSERT_TRUE(sets.store(EditedSet::Articoli, "titolo", Value(std::string("nuovo"))));
  EXPECT_EQ(articles("cat001"), "1|nuovo\n2|a2\n3|a3\n");
}

TEST_F(AfterAFailure, AnArticleGoesIntoADepartmentThatExists) {
  go("cat003");
  failAt("INSERT INTO main.categorie", [&] { return editing.NuovoSottoreparto(); });
  ASSERT_TRUE(editing.InserisciArticoloDopo());
  EXPECT_EQ(rows("SELECT catID FROM articoli ORDER BY ID DESC LIMIT 1"), "cat003\n");
}

}  // namespace
}  // namespace kv::test
