// Departments whose parent is not stored, or does not exist: both are under the root, for every command and every list.
#include <gmock/gmock.h>

#include "platform/database/recordset.h"
#include "store/tree_fixture.h"

namespace kv::test {
namespace {

class DepartmentParents : public TreeFixture {
 protected:
  /// cat001 under the root, cat002 without a parent, cat003 below the first.
  void SetUp() override {
    department(1, "###", 100);
    department(2, "###", 105);
    department(3, "cat001", 110, 2);
    sql("UPDATE categorie SET genitore = NULL WHERE ID = 'cat002'");
    bind();
  }
  std::string siblings() {
    std::string keys;
    Recordset& rows = sets.dataFratelli();
    for (rows.moveFirst(); !rows.eof(); rows.moveNext()) keys += asText(rows.get("ID")) + " ";
    return keys;
  }
};

TEST_F(DepartmentParents, TheTreeShowsOneWithoutAParentUnderTheRoot) {
  ASSERT_EQ(sets.tree().size(), 3U);
  EXPECT_EQ(sets.tree()[1].ID, "cat002");
  EXPECT_EQ(sets.tree()[1].genitore, "###");
}

TEST_F(DepartmentParents, OneWithoutAParentHasTheSiblingsOfTheRoot) {
  go("cat002");
  EXPECT_EQ(siblings(), "cat001 cat002 ");
}

TEST_F(DepartmentParents, OneUnderTheRootHasThoseWithoutAParentAsSiblings) {
  go("cat001");
  EXPECT_EQ(siblings(), "cat001 cat002 ");
}

TEST_F(DepartmentParents, ANewSiblingOfOneWithoutAParentIsUnderTheRoot) {
  go("cat002");
  ASSERT_TRUE(editing.InserisciRepartoDopo());
  EXPECT_EQ(rows("SELECT genitore, livello, ordinamento FROM categorie WHERE ID = 'cat004'"), "###|1|106\n");
}

TEST_F(DepartmentParents, ANewSiblingMakesRoomAmongThoseWithoutAParent) {
  sql("UPDATE categorie SET ordinamento = 101 WHERE ID = 'cat002'");
  go("cat001");
  ASSERT_TRUE(editing.InserisciRepartoDopo());
  EXPECT_EQ(rows("SELECT ID, ordinamento FROM categorie WHERE livello = 1 ORDER BY ordinamento"),
            "cat001|100\ncat004|101\ncat002|102\n");
}

TEST_F(DepartmentParents, ANewOneAtTheTopComesAfterThoseWithoutAParent) {
  ASSERT_TRUE(editing.NuovoSottoreparto());
  EXPECT_EQ(rows("SELECT genitore, ordinamento FROM categorie WHERE ID = 'cat004'"), "###|106\n");
}

TEST_F(DepartmentParents, OneWithoutAParentIsSwappedWithOneUnderTheRoot) {
  go("cat002");
  ASSERT_TRUE(editing.Sposta(-1, TreeList::Departments));
  EXPECT_EQ(rows("SELECT ID, ordinamento FROM categorie WHERE livello = 1 ORDER BY ID"), "cat001|105\ncat002|100\n");
  go("cat001");
  ASSERT_TRUE(editing.Sposta(-1, TreeList::Departments));
  EXPECT_EQ(rows("SELECT ID, ordinamento FROM categorie WHERE livello = 1 ORDER BY ID"), "cat001|100\ncat002|105\n");
}

TEST_F(DepartmentParents, AfterTheDeletionOfOneWithoutAParentTheRootIsCurrent) {
  go("cat002");
  ASSERT_TRUE(editing.EliminaReparto());
  EXPECT_EQ(sets.department(), "###");
  EXPECT_FALSE(sets.onDepartment());
  EXPECT_EQ(departments(), "cat001|###|1|100|1\ncat003|cat001|2|110|0\n");
}

TEST_F(DepartmentParents, ADragHangsOrphansUnderTheRoot) {
  sql("UPDATE categorie SET genitore = 'cat999', livello = 4 WHERE ID = 'cat003'");
  ASSERT_TRUE(editing.SpostaNodo("cat002", "cat003"));
  EXPECT_EQ(departments(), "cat001|###|1|2|0\ncat002|cat003|2|3|0\ncat003|###|1|4|1\n");
}

TEST_F(DepartmentParents, AnOrphanIsDraggedLikeAnyOther) {
  sql("UPDATE categorie SET genitore = 'cat999' WHERE ID = 'cat003'");
  ASSERT_TRUE(editing.SpostaNodo("cat003", "cat002"));
  EXPECT_EQ(departments(), "cat001|###|1|2|0\ncat002|###|1|3|1\ncat003|cat002|2|4|0\n");
  EXPECT_EQ(sets.department(), "cat003");
}

TEST_F(DepartmentParents, AnArticleThatIsGoneIsNotShownAndNothingMoves) {
  article("cat001", 100, "a");
  article("cat999", 100, "b");
  go("cat001");
  listener.told.clear();
  for (const std::int64_t gone : {std::int64_t{77}, std::int64_t{2}}) {
    const auto shown = sets.MostraArticolo(gone);
    ASSERT_TRUE(shown);
    EXPECT_FALSE(*shown) << gone;
  }
  EXPECT_EQ(sets.department(), "cat001");
  EXPECT_EQ(sets.article(), 1);
  EXPECT_TRUE(listener.told.empty());
}

}  // namespace
}  // namespace kv::test
