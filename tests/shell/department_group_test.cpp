// Commands on several departments that are selected: one question, one step of the history.

#include "shell/workbench_fixture.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

/// The tree is Vasi (cat001, three articles) with Piccoli (cat002) in it, and Piatti (cat003, one article).
class DepartmentGroups : public WorkbenchFixture {
 protected:
  void select(std::vector<std::string> IDs, const std::string& current) {
    start();
    go(current);
    view.departments = std::move(IDs);
  }
  std::string inLine(const std::string& query) {
    std::string text = rows(query);
    std::ranges::replace(text, '\n', ' ');
    return text.empty() ? text : text.substr(0, text.size() - 1);
  }
  std::string tree() {
    return inLine(
        "SELECT titolo || '<' || genitore || COALESCE(hafigli, 0) FROM categorie ORDER BY livello, ordinamento");
  }
  std::string titlesOf(const std::string& ID) {
    return inLine("SELECT titolo FROM articoli WHERE catID = '" + ID + "' ORDER BY ordinamento");
  }
};

TEST_F(DepartmentGroups, AreDeletedAfterOneQuestionAndComeBackByOneUndo) {
  select({"cat002", "cat003"}, "cat002");
  const std::string before = whole();
  press("department.delete");
  ASSERT_EQ(user.texts(), std::vector<std::string>{"Eliminare i 2 reparti selezionati con tutti i loro articoli (1)?"});
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(whole(), before);
  user.answers = {Answer::Yes};
  press("department.delete");
  EXPECT_EQ(tree(), "Vasi<###0");
  EXPECT_EQ(inLine("SELECT COUNT(*) FROM articoli"), "3");
  EXPECT_EQ(bench->sets().department(), "cat001") << "the nearest above that stays";
  EXPECT_EQ(undoName(), "Elimina reparti");
  undo();
  EXPECT_EQ(whole(), before);
}

TEST_F(DepartmentGroups, GoWithTheSubDepartmentsThatAreSelectedToo) {
  select({"cat001", "cat002"}, "cat002");
  user.answers = {Answer::Yes};
  press("department.delete");
  EXPECT_EQ(tree(), "Piatti<###0");
  EXPECT_EQ(bench->sets().department(), "###");
}

TEST_F(DepartmentGroups, StayWhenOneHoldsAnotherThatIsNotSelected) {
  select({"cat001", "cat003"}, "cat001");
  const std::string before = whole();
  press("department.delete");
  EXPECT_EQ(user.texts(),
            std::vector<std::string>{"Uno dei reparti selezionati contiene sottoreparti che non sono selezionati.\n"
                                     "Per eliminarlo è necessario selezionarli o rimuoverli."});
  EXPECT_EQ(whole(), before);
}

TEST_F(DepartmentGroups, StayWhenNoOtherWouldBeLeft) {
  select({"cat001", "cat003", "cat002"}, "cat001");
  const std::string before = whole();
  press("department.delete");
  EXPECT_EQ(user.texts(),
            std::vector<std::string>{"Almeno un reparto deve essere definito: non è possibile eliminarli tutti"});
  EXPECT_EQ(whole(), before);
}

TEST_F(DepartmentGroups, AFailureOfTheStoreDeletesNone) {
  select({"cat002", "cat003"}, "cat002");
  const std::string before = whole();
  user.answers = {Answer::Yes};
  {
    FailingStore full(2, AfterFailure::FailsToo, FailingStore::fullDisk);
    full.onlyFor("DELETE");
    press("department.delete");
  }
  EXPECT_EQ(whole(), before);
  EXPECT_EQ(bench->sets().department(), "cat002");
  EXPECT_TRUE(undoName().empty());
}

TEST_F(DepartmentGroups, OneSelectedDepartmentIsTheCurrentOneWithItsOwnQuestion) {
  select({"cat003"}, "cat003");
  press("department.delete");
  EXPECT_EQ(user.texts(),
            std::vector<std::string>{"Il reparto contiene articoli che saranno cancellati. Eliminarlo comunque?"});
}

TEST_F(DepartmentGroups, ArePastedWithTheirTreeAndEachWithItsArticles) {
  select({"cat001", "cat003", "cat002"}, "cat003");
  user.answers = {Answer::Yes};
  press("department.copy");
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Copiare anche tutti gli articoli dei reparti selezionati?"});
  EXPECT_TRUE(view.isOn("incolla categoria"));
  EXPECT_TRUE(view.isOn("incolla articolo"));
  const std::string before = whole();
  user.shown.clear();
  user.answers = {Answer::Yes};
  press("department.paste");
  EXPECT_EQ(user.texts(), std::vector<std::string>{"Saranno incollati 4 articoli. Procedere?"});
  EXPECT_EQ(inLine("SELECT ID || titolo || '<' || genitore FROM categorie ORDER BY livello, ordinamento"),
            "cat001Vasi<### cat004Vasi<### cat005Piatti<### cat003Piatti<### cat006Piccoli<cat004 "
            "cat002Piccoli<cat001");
  EXPECT_EQ(titlesOf("cat004"), "Alba Brina Cielo");
  EXPECT_EQ(titlesOf("cat005"), "Duna");
  EXPECT_EQ(titlesOf("cat006"), "");
  EXPECT_EQ(bench->sets().department(), "cat004");
  EXPECT_EQ(undoName(), "Incolla reparto");
  undo();
  EXPECT_EQ(whole(), before);
}

TEST_F(DepartmentGroups, ArePastedWithoutArticlesWhenTheyWereCopiedSo) {
  select({"cat001", "cat003"}, "cat002");
  user.answers = {Answer::No};
  press("department.copy");
  press("department.paste");
  EXPECT_EQ(inLine("SELECT ID || titolo || '<' || genitore FROM categorie ORDER BY livello, ordinamento"),
            "cat001Vasi<### cat003Piatti<### cat004Vasi<cat001 cat005Piatti<cat001 cat002Piccoli<cat001");
  EXPECT_EQ(inLine("SELECT COUNT(*) FROM articoli"), "4");
}

TEST_F(DepartmentGroups, MoveAmongTheirOwnSiblingsAndStopAtTheEnds) {
  select({}, "cat001");
  ASSERT_TRUE(session.catalogue.execute(
      "INSERT INTO categorie (contatore, ID, pagina, genitore, ordinamento, livello, titolo) VALUES"
      " (4, 'cat004', 'cat004', 'cat001', 107, 2, 'Grandi'), (5, 'cat005', 'cat005', '###', 120, 1, 'Lumi')"));
  bench->refreshAll();
  const auto order = [&] { return inLine("SELECT titolo FROM categorie ORDER BY livello, ordinamento"); };
  view.departments = {"cat003", "cat005", "cat004"};
  press("department.up");
  EXPECT_EQ(order(), "Piatti Lumi Vasi Grandi Piccoli");
  press("department.up");
  EXPECT_EQ(order(), "Piatti Lumi Vasi Grandi Piccoli");
  press("department.down");
  EXPECT_EQ(order(), "Vasi Piatti Lumi Piccoli Grandi");
  EXPECT_EQ(undoName(), "Sposta reparti");
  EXPECT_EQ(bench->sets().department(), "cat001");
}

TEST_F(DepartmentGroups, ADragIsOneStepAndTakesAlongWhatIsUnderThem) {
  select({}, "cat001");
  const std::string before = whole();
  bench->SpostaNodi({"cat001", "cat002"}, "cat003");
  EXPECT_EQ(tree(), "Piatti<###1 Vasi<cat0031 Piccoli<cat0010");
  EXPECT_EQ(undoName(), "Trascina reparti");
  undo();
  EXPECT_EQ(whole(), before);
  bench->SpostaNodi({"cat003", "cat001"}, "cat002");
  EXPECT_EQ(whole(), before) << "one of them holds the target";
}

}  // namespace
}  // namespace kv::test
