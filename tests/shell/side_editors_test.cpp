// Editors whose values are kept beside the catalogue's own tables: shown, written and undone like all others.
#include "shell/workbench/fields/side_editors.h"
#include "shell/workbench_fixture.h"

namespace kv::test {
namespace {

class SideEditors : public WorkbenchFixture {
 protected:
  SideEditors() {
    start();
    article(0);
  }
};

TEST_F(SideEditors, AContentIsWrittenShownAndUndone) {
  EXPECT_EQ(shown(EditedSet::Articoli, "contenuto"), "");
  leave(EditedSet::Articoli, "contenuto", "0,25");
  leave(EditedSet::Articoli, "misura", "kg");
  EXPECT_EQ(shown(EditedSet::Articoli, "contenuto"), "0,25");
  EXPECT_EQ(shown(EditedSet::Articoli, "misura"), "kg");
  EXPECT_EQ(rows("SELECT ID, contenuto, misura FROM unita"), "1|2500|kg\n");
  EXPECT_EQ(undoName(), "Modifica Unità");
  undo();
  undo();
  EXPECT_EQ(shown(EditedSet::Articoli, "contenuto"), "");
  redo();
  EXPECT_EQ(shown(EditedSet::Articoli, "contenuto"), "0,25");
}

TEST_F(SideEditors, EachArticleHasItsOwn) {
  leave(EditedSet::Articoli, "contenuto", "2");
  article(1);
  EXPECT_EQ(shown(EditedSet::Articoli, "contenuto"), "");
}

TEST_F(SideEditors, AContentThatIsNoNumberIsRefused) {
  const Workbench::LeftField left = bench->leaveField(*editorOf(EditedSet::Articoli, "contenuto"), "poco");
  EXPECT_EQ(left.mark, "\"poco\" non è un numero: è rimasto il valore precedente.");
  EXPECT_EQ(shown(EditedSet::Articoli, "contenuto"), "");
}

TEST_F(SideEditors, AFieldThatIsLeftEmptyAsItWasMakesNoTable) {
  leave(EditedSet::Articoli, "contenuto", "");
  EXPECT_FALSE(hasSideTable(session.catalogue, "unita"));
}

TEST_F(SideEditors, ATimeOfDeliveryIsTypedInTheLanguageThatIsEdited) {
  leave(EditedSet::Articoli, "consegna", "2-4 giorni");
  leave(EditedSet::Categorie, "consegna", "Una settimana");
  EXPECT_EQ(rows("SELECT chiave, tempo FROM consegna ORDER BY chiave"), "1|2-4 giorni\ncat001|Una settimana\n");
  EXPECT_EQ(undoName(), "Modifica Tempo di consegna");
  undo();
  EXPECT_EQ(shown(EditedSet::Categorie, "consegna"), "");
  EXPECT_EQ(shown(EditedSet::Articoli, "consegna"), "2-4 giorni");
}

TEST_F(SideEditors, AMakerIsChosenAmongThoseOfTheShop) {
  EXPECT_EQ(bench->choicesOf(*editorOf(EditedSet::Articoli, "produttore")), std::vector<std::string>{""});
  ASSERT_TRUE(prepareSideField(session.catalogue, SideField::Maker));
  ASSERT_TRUE(session.catalogue.execute("INSERT INTO produttori (nome) VALUES ('Vetreria'), ('Forno')"));
  EXPECT_EQ(bench->choicesOf(*editorOf(EditedSet::Articoli, "produttore")),
            (std::vector<std::string>{"", "Forno", "Vetreria"}));
  leave(EditedSet::Categorie, "produttore", "Forno");
  EXPECT_EQ(shown(EditedSet::Categorie, "produttore"), "Forno");
  EXPECT_EQ(shown(EditedSet::Articoli, "produttore"), "");
  leave(EditedSet::Categorie, "produttore", "");
  EXPECT_EQ(rows("SELECT * FROM sicurezza"), "");
}

}  // namespace
}  // namespace kv::test
