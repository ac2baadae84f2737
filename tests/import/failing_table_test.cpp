// A store that fails at any moment of an import, whatever the table: every row and every picture is as it was before,
// and the merchant knows.
#include "import/tables/table_guide.h"
#include "support/failing_store.h"
#include "table_shop.h"

namespace kv::test {
namespace {

class FailingTableImport : public TableShop {
 protected:
  /// Fails the n-th call of an import for each n, until one succeeds.
  void failEverywhere(const std::string& sheet, const std::string& name) {
    const std::string before = allTables();
    for (std::int64_t call = 1;; ++call) {
      SCOPED_TRACE(name + ", call " + std::to_string(call));
      TablePlan planned = plan(sheet, name);
      user.shown.clear();
      TableEnd end{};
      bool hasFailed = false;
      {
        FailingStore store(call);
        end = importPlannedTable(session, env, planned, opened.sheet, table);
        hasFailed = store.hasFailed();
      }
      if (!hasFailed) {
        EXPECT_EQ(end, TableEnd::Done);
        EXPECT_GT(call, 3);
        break;
      }
      ASSERT_EQ(end, TableEnd::Failed);
      ASSERT_EQ(allTables(), before);
      EXPECT_TRUE(listFiles(joinPath(shop, "work"), "*").empty());
      ASSERT_EQ(user.texts().size(), 1U);
      EXPECT_TRUE(user.texts()[0].starts_with("Non è stato possibile importare il foglio"));
      EXPECT_NE(user.texts()[0].find("\nNulla è stato modificato: "), std::string::npos) << user.texts()[0];
    }
    EXPECT_NE(allTables(), before);
  }
};

TEST_F(FailingTableImport, OfArticlesLeavesRowsAndPicturesAsTheyWere) {
  const std::string picture = std::string(KORVANE_TEST_DATA) + "/platform/pictures/corners.gif";
  table.unlistedOut = true;
  failEverywhere("codice;titolo;reparto;immagine0\nT-1;Altra;Vetri;" + picture + "\nN-1;Nuovo;Vetri;\n", "articoli");
}

TEST_F(FailingTableImport, OfTheOtherTablesLeavesTheirRowsAsTheyWere) {
  failEverywhere("Percorso;Sconto\nCeramiche > Tazze;5\nVetri > Calici;1\n", "reparti");
  failEverywhere("variante;codice;testo\nTaglia;S;Piccola\nForma;T;Tonda\n", "valori");
  failEverywhere("nome\nTaglia\nMisura\n", "varianti");
  failEverywhere("paese;zona\nAtlantide;3\n", "paesi");
  sql("DELETE FROM zona1; INSERT INTO zona1 (m1sp1) VALUES (0)");
  failEverywhere("zona;m1sp1\n1;7,5\n", "spedizione");
}

TEST_F(FailingTableImport, TellsWhichSheetCouldNotBeComparedAndKeepsIt) {
  ASSERT_TRUE(writeBytes(root / "listino.csv", "codice;titolo\nT-1;Altra\nT-2;Nuova\n"));
  const std::string before = allTables();
  TableGuide guide(session, settings, "cat003", "modello1");
  guide.path = root / "listino.csv";
  ASSERT_EQ(guide.read(), "");
  std::string last;
  for (std::int64_t call = 1;; ++call) {
    SCOPED_TRACE(call);
    FailingStore store(call);
    const std::string said = guide.makePlan();
    if (!store.hasFailed()) break;
    EXPECT_TRUE(said.starts_with("Non è stato possibile confrontare il foglio \"listino.csv\" col catalogo\n\n"))
        << said;
    EXPECT_NE(said.find("\nNulla è stato modificato: "), std::string::npos) << said;
    EXPECT_FALSE(guide.hasPlan());
    last = said;
  }
  EXPECT_NE(last.find("\n\nDettaglio: articoli, dopo la riga 3: "), std::string::npos) << last;
  EXPECT_TRUE(guide.hasPlan()) << "file and columns are still chosen";
  EXPECT_EQ(guide.plan().sums().changed, 2U);
  FailingStore store(1);
  const std::string unread = guide.read();
  EXPECT_TRUE(unread.starts_with("Non è stato possibile confrontare il foglio \"listino.csv\"")) << unread;
  EXPECT_EQ(allTables(), before);
}

}  // namespace
}  // namespace kv::test
