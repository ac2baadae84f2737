// Inserting, moving, deleting, copying and dragging departments; the renumbering; the cursors.
#include <gmock/gmock.h>

#include "platform/database/recordset.h"
#include "platform/numbers/number_format.h"
#include "store/shop/load_shop.h"
#include "store/shop/order_numbers.h"
#include "store/tree_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

class DepartmentEditing : public TreeFixture {};

TEST_F(DepartmentEditing, TheKeyHasAtLeastThreeDigitsAndIsThePageToo) {
  department(6, "###", 100);
  bind();
  editing.showModel("modello2");
  go("cat006");
  ASSERT_TRUE(editing.InserisciRepartoDopo());
  EXPECT_EQ(rows("SELECT ID, pagina, genitore, livello, ordinamento, template, titolo, '<' || affiancati || '>' "
                 "FROM categorie WHERE contatore = 7"),
            "cat007|cat007|###|1|101|modello2|Nuovo Reparto|< >\n");
  EXPECT_EQ(sets.department(), "cat007");
  sql("UPDATE sqlite_sequence SET seq = 1233 WHERE name = 'categorie'");
  ASSERT_TRUE(editing.InserisciRepartoPrima());
  EXPECT_EQ(sets.department(), "cat1234");
}

TEST_F(DepartmentEditing, WithoutADepartmentNoSiblingIsInserted) {
  department(1, "###", 100);
  bind();
  ASSERT_TRUE(editing.InserisciRepartoDopo());
  ASSERT_TRUE(editing.InserisciRepartoPrima());
  EXPECT_EQ(rows("SELECT COUNT(*) FROM categorie"), "1\n");
}

TEST_F(DepartmentEditing, ASubDepartmentIsTheLastChildAndItsParentHasChildren) {
  department(1, "###", 100);
  bind();
  go("cat001");
  ASSERT_TRUE(editing.NuovoSottoreparto());
  EXPECT_EQ(departments(), "cat001|###|1|100|1\ncat002|cat001|2|1|0\n");
  EXPECT_EQ(rows("SELECT affiancati FROM categorie WHERE ID = 'cat002'"), "null\n");
  go("cat001");
  ASSERT_TRUE(editing.NuovoSottoreparto());
  EXPECT_EQ(departments(), "cat001|###|1|100|1\ncat002|cat001|2|1|0\ncat003|cat001|2|2|0\n");
}

TEST_F(DepartmentEditing, WithoutADepartmentASubDepartmentIsAtTheTop) {
  department(1, "###", 100);
  bind();
  ASSERT_TRUE(editing.NuovoSottoreparto());
  EXPECT_EQ(departments(), "cat001|###|1|100|0\ncat002|###|1|101|0\n");
}

TEST_F(DepartmentEditing, AMoveStaysAmongItsSiblings) {
  department(1, "###", 100);
  department(2, "cat001", 105, 2);
  department(3, "###", 110);
  bind();
  go("cat003");
  ASSERT_TRUE(editing.Sposta(-1, TreeList::Departments));
  EXPECT_EQ(departments(), "cat001|###|1|110|1\ncat002|cat001|2|105|0\ncat003|###|1|100|0\n");
  EXPECT_EQ(sets.department(), "cat003");
  ASSERT_TRUE(editing.Sposta(-1, TreeList::Departments));
  EXPECT_EQ(departments(), "cat001|###|1|110|1\ncat002|cat001|2|105|0\ncat003|###|1|100|0\n");
}

TEST_F(DepartmentEditing, OneWithSubDepartmentsIsNotDeleted) {
  department(1, "###", 100);
  department(2, "cat001", 105, 2);
  bind();
  go("cat001");
  ASSERT_TRUE(editing.EliminaReparto());
  EXPECT_THAT(user.shown, ElementsAre(said("Non è consentito eliminare un reparto che contiene sottoreparti.\n"
                                           "Per cancellare questo reparto è necessario rimuovere i sottoreparti.",
                                           Icon::Exclamation)));
}

TEST_F(DepartmentEditing, TheOnlyDepartmentIsNotDeleted) {
  department(1, "###", 100);
  bind();
  go("cat001");
  ASSERT_TRUE(editing.EliminaReparto());
  EXPECT_THAT(user.texts(),
              ElementsAre("Almeno un reparto deve essere definito: non è possibile eliminare questo reparto"));
}

TEST_F(DepartmentEditing, ItsArticlesGoWithItAfterTheQuestion) {
  department(1, "###", 100);
  department(2, "###", 105);
  article("cat002", 100, "a");
  article("cat002", 105, "b");
  article("cat001", 110, "c");
  bind();
  go("cat002");
  ASSERT_TRUE(editing.EliminaReparto());
  EXPECT_THAT(user.shown, ElementsAre(asked("Il reparto contiene articoli che saranno cancellati. Eliminarlo comunque?",
                                            Answer::No, Answer::No)));
  EXPECT_EQ(rows("SELECT COUNT(*) FROM articoli"), "3\n");
  user.answers = {Answer::Yes};
  ASSERT_TRUE(editing.EliminaReparto());
  EXPECT_EQ(rows("SELECT titolo FROM articoli"), "c\n");
  EXPECT_EQ(departments(), "cat001|###|1|100|0\n");
  EXPECT_FALSE(sets.onDepartment());
  EXPECT_EQ(sets.statusLine(), " Articoli: 1");
}

TEST_F(DepartmentEditing, DeletingTheLastChildClearsTheMarkOfTheParentWhichIsCurrentThen) {
  department(1, "###", 100);
  department(2, "cat001", 105, 2);
  department(3, "cat001", 110, 2);
  bind();
  go("cat002");
  ASSERT_TRUE(editing.EliminaReparto());
  EXPECT_EQ(departments(), "cat001|###|1|100|1\ncat003|cat001|2|110|0\n");
  EXPECT_EQ(sets.department(), "cat001");
  go("cat003");
  ASSERT_TRUE(editing.EliminaReparto());
  EXPECT_EQ(departments(), "cat001|###|1|100|0\n");
}

TEST_F(DepartmentEditing, ACopyHasAFreshKeyAndOutlivesTheSession) {
  department(1, "###", 100);
  sql("UPDATE categorie SET descrizione = 'testo', iva = 22, inaccessibile3 = 1");
  article("cat001", 100, "a");
  bind();
  go("cat001");
  user.answers = {Answer::Yes};
  ASSERT_TRUE(editing.CopiaReparto());
  EXPECT_THAT(states, ElementsAre("incolla articolo+", "incolla categoria+"));
  history.end();
  sets.release();
  bind();
  go("cat001");
  ASSERT_TRUE(editing.IncollaReparto());
  EXPECT_EQ(rows("SELECT ID, pagina, genitore, titolo, descrizione, iva, inaccessibile3, ordinamento FROM categorie "
                 "WHERE contatore = 2"),
            "cat002|cat002|###|Reparto 1|testo|22.0|1|99\n");
  EXPECT_EQ(articles("cat002"), "1|a\n");
  EXPECT_EQ(sets.department(), "cat002");
}

TEST_F(DepartmentEditing, WithoutADepartmentAPasteMakesATopLevelOne) {
  department(1, "###", 100);
  bind();
  go("cat001");
  ASSERT_TRUE(editing.CopiaReparto());
  go("###");
  ASSERT_TRUE(editing.IncollaReparto());
  EXPECT_EQ(departments(), "cat001|###|1|100|0\ncat002|###|1|101|0\n");
}

TEST_F(DepartmentEditing, AnEmptyClipboardPastesNothing) {
  department(1, "###", 100);
  bind();
  go("cat001");
  ASSERT_TRUE(editing.IncollaReparto());
  ASSERT_TRUE(editing.IncollaArticoli());
  EXPECT_TRUE(user.shown.empty());
  EXPECT_EQ(rows("SELECT COUNT(*) FROM categorie"), "1\n");
}

TEST_F(DepartmentEditing, ADragWritesTheWholeTreeBack) {
  department(1, "###", 100);
  department(2, "###", 105);
  department(3, "cat002", 110, 2);
  department(4, "cat003", 115, 3);
  bind();
  ASSERT_TRUE(editing.SpostaNodo("cat003", "cat001"));
  EXPECT_EQ(departments(), "cat001|###|1|2|1\ncat002|###|1|3|0\ncat003|cat001|2|4|1\ncat004|cat003|3|5|0\n");
  EXPECT_EQ(sets.department(), "cat003");
  ASSERT_TRUE(editing.SpostaNodo("cat003", "###"));
  EXPECT_EQ(rows("SELECT genitore, livello FROM categorie WHERE ID IN ('cat003', 'cat004')"), "###|1\ncat003|2\n");
}

TEST_F(DepartmentEditing, ADragOntoItselfOrADescendantLeavesTheTreeAsItWas) {
  department(1, "###", 100);
  department(2, "cat001", 105, 2);
  department(3, "cat002", 110, 3);
  bind();
  const std::string before = departments();
  for (const char* target : {"cat001", "cat002", "cat003", "cat999"}) {
    ASSERT_TRUE(editing.SpostaNodo("cat001", target));
    EXPECT_EQ(departments(), before) << target;
  }
}

TEST_F(DepartmentEditing, ThePageNeverChangesWhateverTheTitle) {
  department(1, "###", 100);
  bind();
  go("cat001");
  listener.told.clear();
  ASSERT_TRUE(sets.store(EditedSet::Categorie, "titolo", Value(std::string("Vasi"))));
  EXPECT_THAT(listener.told, ElementsAre("title cat001=Vasi"));
  EXPECT_EQ(sets.tree()[0].titolo, "Vasi");
  EXPECT_EQ(rows("SELECT pagina, titolo FROM categorie"), "cat001|Vasi\n");
}

TEST_F(DepartmentEditing, OpeningRenumbersInStepsOfFiveOverTheWholeTable) {
  department(1, "###", 7);
  department(2, "cat001", 3, 2);
  department(3, "###", 5);
  article("cat002", 1, "b1");
  article("cat001", 9, "a2");
  article("cat001", -4, "a1");
  ASSERT_TRUE(renumberCatalogue(session.catalogue));
  EXPECT_EQ(rows("SELECT titolo, ordinamento FROM articoli ORDER BY ordinamento"), "a1|100\na2|105\nb1|110\n");
  EXPECT_EQ(rows("SELECT ID, ordinamento FROM categorie ORDER BY ordinamento"), "cat003|100\ncat001|105\ncat002|110\n");
}

TEST_F(DepartmentEditing, AHitIsShownWithItsDepartment) {
  department(1, "###", 100);
  department(2, "###", 105);
  article("cat002", 100, "a");
  article("cat002", 105, "b");
  bind();
  auto shown = sets.MostraArticolo(2);
  ASSERT_TRUE(shown);
  EXPECT_TRUE(*shown);
  EXPECT_EQ(sets.department(), "cat002");
  EXPECT_EQ(sets.article(), 2);
}

TEST_F(DepartmentEditing, ADepartmentBringsItsArticlesAndSiblings) {
  department(1, "###", 100);
  department(2, "cat001", 105, 2);
  department(3, "cat001", 110, 2);
  article("cat003", 100, "a");
  bind();
  listener.told.clear();
  go("cat003");
  EXPECT_THAT(listener.told, ElementsAre("department", "articles", "article"));
  EXPECT_EQ(sets.dataFratelli().size(), 2U);
  EXPECT_EQ(sets.dataFratelli().position(), 1U);
  EXPECT_EQ(sets.statusLine(), " Articoli: 1 /1");
  go("###");
  EXPECT_EQ(sets.dataFratelli().size(), 0U);
  EXPECT_EQ(sets.dataArticoli().size(), 0U);
  EXPECT_EQ(sets.statusLine(), " Articoli: 1");
}

TEST_F(DepartmentEditing, TheLanguageSwitchKeepsDepartmentAndArticle) {
  department(1, "###", 100);
  article("cat001", 100, "uno");
  sql("UPDATE categorie SET titolo_l2 = 'Department'; UPDATE articoli SET titolo_l2 = 'one'");
  bind();
  go("cat001");
  ASSERT_TRUE(sets.CambiaLingua(2));
  EXPECT_EQ(session.currentLanguage, 2);
  EXPECT_EQ(sets.tree()[0].titolo, "Department");
  EXPECT_EQ(sets.article(), 1);
  EXPECT_EQ(asText(sets.dataArticoli().get("titolo")), "one");
  ASSERT_TRUE(sets.store(EditedSet::Articoli, "titolo", Value(std::string("uno bis"))));
  EXPECT_EQ(rows("SELECT titolo, titolo_l2 FROM articoli"), "uno|uno bis\n");
}

TEST_F(DepartmentEditing, UndoAndRedoOfEveryCommandComeBackToTheSameRows) {
  department(1, "###", 100);
  department(2, "cat001", 105, 2);
  article("cat001", 100, "a");
  article("cat001", 101, "b");
  bind();
  go("cat001");
  user.answers = {Answer::Yes, Answer::Yes, Answer::Yes};
  const std::vector<std::function<Result<>()>> commands{
      [&] { return editing.InserisciArticoloDopo(); }, [&] { return editing.Sposta(-1, TreeList::Articles); },
      [&] { return editing.EliminaArticolo(); }, [&] { return editing.NuovoSottoreparto(); },
      [&] { return editing.SpostaNodo("cat002", "###"); }};
  std::vector<std::string> shops{departments() + articles("cat001")};
  for (const auto& command : commands) {
    ASSERT_TRUE(history.record("passo", command));
    shops.push_back(departments() + articles("cat001"));
  }
  for (std::size_t i = commands.size(); i-- > 0;) {
    ASSERT_TRUE(history.canUndo());
    ASSERT_TRUE(history.undo());
    EXPECT_EQ(departments() + articles("cat001"), shops[i]) << i;
  }
  EXPECT_FALSE(history.canUndo());
  EXPECT_EQ(sets.department(), "cat001");
  for (std::size_t i = 1; i < shops.size(); ++i) {
    ASSERT_TRUE(history.redo());
    EXPECT_EQ(departments() + articles("cat001"), shops[i]) << i;
  }
  EXPECT_FALSE(history.canRedo());
}

TEST_F(DepartmentEditing, ACommandThatChangesNothingIsNoStepAndANewOneForgetsTheUndone) {
  department(1, "###", 100);
  article("cat001", 100, "a");
  bind();
  go("cat001");
  ASSERT_TRUE(history.record("nulla", [&] { return editing.Sposta(-1, TreeList::Articles); }));
  EXPECT_FALSE(history.canUndo());
  ASSERT_TRUE(history.record("uno", [&] { return editing.InserisciArticoloDopo(); }));
  EXPECT_EQ(history.undoName(), "uno");
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(history.redoName(), "uno");
  ASSERT_TRUE(history.record("due", [&] { return editing.InserisciArticoloPrima(); }));
  EXPECT_FALSE(history.canRedo());
}

TEST_F(DepartmentEditing, TheClipboardIsNoMatterOfTheHistory) {
  department(1, "###", 100);
  article("cat001", 100, "a");
  bind();
  go("cat001");
  ASSERT_TRUE(history.record("copia", [&] { return editing.CopiaArticolo(); }));
  EXPECT_FALSE(history.canUndo());
}

}  // namespace
}  // namespace kv::test
