// What the merchant ticks off on the last page of the guide is left out, with what can't be without it.
#include "import/tables/table_guide.h"
#include "table_shop.h"

namespace kv::test {
namespace {

class TableChoice : public TableShop {
 protected:
  TableChoice() : guide(session, settings, "cat003", "modello1") {}
  /// Reads a sheet into the guide and plans it.
  void planGuide(const std::string& text, const std::string& name) {
    ASSERT_TRUE(writeBytes(root / "foglio.csv", text));
    guide.path = root / "foglio.csv";
    guide.tableName = name;
    ASSERT_EQ(guide.read(), "");
    ASSERT_EQ(guide.makePlan(), "");
  }
  /// The rows of a filter: "x" where they are ticked, line, fate, what they are, and why.
  std::string listed(RowFilter filter) const {
    std::string text;
    for (const std::size_t index : guide.rowsOf(filter)) {
      const GuideRow row = guide.row(index);
      text += std::string(row.isChosen    ? "x "
                          : row.canChoose ? "o "
                                          : "  ") +
              row.line + "|" + row.fate + "|" + row.label + "|" + row.reason + "\n";
    }
    return text;
  }
  void import() {
    ASSERT_EQ(importPlannedTable(session, env, guide.plan(), guide.sheet().sheet, guide.request), TableEnd::Done);
  }
  std::string departments() { return rows("SELECT titolo, livello FROM categorie ORDER BY contatore"); }

  TableGuide guide;
};

constexpr const char* newDepartments =
    "Percorso;Sconto\nLegni;1\nLegni > Ciotole;2\nlegni>ciotole > Grandi;3\nLegni fini;4\nVetri > Calici;5\n";

TEST_F(TableChoice, ANewDepartmentIsTickedOffWithThoseBelowIt) {
  planGuide(newDepartments, "reparti");
  guide.choose(0, false);
  EXPECT_EQ(listed(RowFilter::New),
            "o 2|nuovo|Legni|\no 3|nuovo|Legni > Ciotole|\no 4|nuovo|legni>ciotole > Grandi|\n"
            "x 5|nuovo|Legni fini|\nx 6|nuovo|Vetri > Calici|\n");
  EXPECT_EQ(guide.sums(), "Reparti: 2 nuovi, 0 modificati, 0 invariati, 0 tralasciati");
  const std::string before = departments();
  import();
  EXPECT_EQ(departments(), before + "Legni fini|1\nCalici|2\n");
}

TEST_F(TableChoice, ANewDepartmentIsTickedWithThoseAboveIt) {
  planGuide(newDepartments, "reparti");
  guide.choose(0, false);
  guide.choose(2, true);
  guide.choose(3, false);
  guide.choose(4, false);
  const std::string before = departments();
  import();
  EXPECT_EQ(departments(), before + "Legni|1\nCiotole|2\nGrandi|3\n");
}

TEST_F(TableChoice, ADepartmentThatIsThereMayBeTickedOffAlone) {
  planGuide("Percorso;Sconto\nVetri;9\nVetri > Calici;5\n", "reparti");
  guide.choose(0, false);
  import();
  EXPECT_EQ(rows("SELECT titolo, sconto, genitore FROM categorie WHERE titolo IN ('Vetri', 'Calici') "
                 "ORDER BY contatore"),
            "Vetri|(null)|###\nCalici|5|cat003\n");
}

TEST_F(TableChoice, ArticlesThatTheSheetNoLongerListsAreListedOneByOneAndTickedOff) {
  guide.request.unlistedOut = true;
  planGuide("codice;titolo\nT-1;Tazza\n", "articoli");
  EXPECT_EQ(listed(RowFilter::Unlisted),
            "x -|fuori catalogo|T-2  Tazza grande|il foglio non lo elenca\n"
            "x -|fuori catalogo|V-1  Bicchiere|il foglio non lo elenca\n");
  EXPECT_EQ(listed(RowFilter::All), "  2|invariato|T-1  Tazza|\n" + listed(RowFilter::Unlisted));
  const std::vector<ShownChange> changes = guide.changes(1);
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_EQ(changes[0].column + " " + changes[0].before + ">" + changes[0].after, "Fuori catalogo no>sì");
  guide.choose(1, false);
  EXPECT_EQ(guide.sums(), "Articoli: 0 nuovi, 0 modificati, 1 invariati, 0 tralasciati, 1 fuori catalogo");
  EXPECT_TRUE(guide.canImport());
  import();
  EXPECT_EQ(rows("SELECT codice FROM articoli WHERE fuoricatalogo <> 0"), "V-1\n");
}

TEST_F(TableChoice, WithAllThatIsNotListedTickedOffNothingIsLeftToDo) {
  guide.request.unlistedOut = true;
  planGuide("codice;titolo\nT-1;Tazza\n", "articoli");
  guide.choose(1, false);
  guide.choose(2, false);
  EXPECT_FALSE(guide.canImport());
  guide.choose(2, true);
  EXPECT_TRUE(guide.canImport());
}

}  // namespace
}  // namespace kv::test
