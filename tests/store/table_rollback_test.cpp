// Dialogs that edit whole tables: what OK keeps, what Annulla restores, and what a kill leaves.
#include <gmock/gmock.h>

#include "store/catalogue/table_rollback.h"
#include "store/schema/working_copies.h"
#include "store/tree_fixture.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

constexpr const char* allTables =
    "SELECT name FROM sqlite_schema WHERE type = 'table' AND substr(name, 1, 4) = 'temp' ORDER BY name";

class TablesAside : public TreeFixture {
 protected:
  void SetUp() override {
    department(1, "###", 100);
    article("cat001", 100, "Vaso");
    sql("INSERT INTO paesi (ID, strID, paese, zona) VALUES (1, '1', 'Italia', 1), (4, '4', 'Francia', 2);"
        "DELETE FROM paesi WHERE ID = 4;"
        "INSERT INTO opzioni (ID, nome) VALUES (1, '(nessuna)'), (2, 'Colore'), (9, 'Taglia');"
        "INSERT INTO dettagliop (ID, testo, OpID) VALUES (5, 'rosso', 2), (6, 'blu', 2);"
        "DELETE FROM opzioni WHERE ID = 9; DELETE FROM pagamento;"
        "INSERT INTO pagamento (rowid, nome1) VALUES (7, 'Alla consegna');"
        "DELETE FROM zona1; INSERT INTO zona1 (m1sp1) VALUES (50000);"
        "DELETE FROM zona5; INSERT INTO zona5 (m1sp1) VALUES (50000)");
    bind();
    go("cat001");
  }
  std::string image() {
    std::string text;
    for (const char* table : {"paesi", "pagamento", "zona1", "zone", "opzioni", "dettagliop"}) {
      text += rows(std::string("SELECT rowid, * FROM ") + table);
    }
    return text + rows("SELECT name, seq FROM sqlite_sequence ORDER BY name") +
           rows("SELECT name, sql FROM sqlite_schema ORDER BY name");
  }
  void editShipping() {
    sql("INSERT INTO paesi (paese) VALUES ('Spagna'); DELETE FROM paesi WHERE ID = 1;"
        "UPDATE pagamento SET nome1 = 'Contanti'; UPDATE zona1 SET m1sp1 = 1; UPDATE zona5 SET m1sp1 = 1");
  }
  void editVariants() {
    sql("INSERT INTO opzioni (nome) VALUES ('Misura'); DELETE FROM dettagliop WHERE ID = 5;"
        "INSERT INTO dettagliop (testo, OpID) VALUES ('verde', 2); UPDATE opzioni SET nome = 'Tinta' WHERE ID = 2");
  }
  /// Runs the dialog of shipping as the command does: one step of the history.
  Result<bool> ship(const TableDialog& dialog) {
    Result<bool> ended = false;
    EXPECT_TRUE(history.record("Spese di spedizione", [&]() -> Result<> {
      ended = rollback.SalvaTabelleSpedizione(dialog);
      return {};
    }));
    return ended;
  }

  TableRollback rollback{sets, env};
};

TEST_F(TablesAside, OkKeepsTheEditsAndDropsTheCopies) {
  const auto ended = ship([&]() -> Result<bool> {
    EXPECT_EQ(rows(allTables), "temppaesi\ntemppagamento\ntempzona1\ntempzona2\ntempzona3\ntempzona4\ntempzone\n");
    editShipping();
    return true;
  });
  EXPECT_EQ(ended, true);
  EXPECT_EQ(rows("SELECT ID, paese FROM paesi"), "5|Spagna\n");
  EXPECT_EQ(rows(allTables), "");
  EXPECT_EQ(history.undoName(), "Spese di spedizione");
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(rows("SELECT ID, paese FROM paesi"), "1|Italia\n");
}

TEST_F(TablesAside, AnnullaRestoresRowsNumbersAndIndexes) {
  const std::string before = image();
  EXPECT_EQ(ship([&]() -> Result<bool> {
              sql("UPDATE pagamento SET nome1 = 'Contanti'; UPDATE zona1 SET m1sp1 = 1; DELETE FROM paesi;"
                  "INSERT INTO paesi (paese) VALUES ('Spagna'); INSERT INTO zone (nome) VALUES ('Europa')");
              return false;
            }),
            false);
  EXPECT_EQ(image(), before);
  EXPECT_EQ(rows(allTables), "");
  EXPECT_FALSE(history.canUndo()) << history.undoName();
}

TEST_F(TablesAside, TheZonesFromTheFifthKeepTheirEditsAfterAnnullaAsOneStep) {
  EXPECT_EQ(ship([&]() -> Result<bool> {
              editShipping();
              return false;
            }),
            false);
  EXPECT_EQ(rows("SELECT m1sp1 FROM zona1"), "50000\n");
  EXPECT_EQ(rows("SELECT m1sp1 FROM zona5"), "1\n");
  ASSERT_TRUE(history.canUndo());
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(rows("SELECT m1sp1 FROM zona5"), "50000\n");
}

TEST_F(TablesAside, ACancelledVariantDialogLeavesVariantsAndTheirLastNumbers) {
  const std::string before = image();
  const auto ended = rollback.SalvaTabelleVarianti("opzione1", [&](const std::string& current) {
    EXPECT_EQ(current, " ");
    editVariants();
    return Result<std::optional<std::int64_t>>(std::nullopt);
  });
  EXPECT_EQ(ended, false);
  EXPECT_EQ(image(), before);
  EXPECT_EQ(rows("SELECT opzione1 FROM articoli"), "null\n");
}

TEST_F(TablesAside, AChosenVariantGoesIntoTheSlotOfTheCurrentArticle) {
  sql("UPDATE articoli SET opzione2_3 = 2");
  ASSERT_TRUE(sets.CambiaLingua(1));
  const auto ended = rollback.SalvaTabelleVarianti("opzione2_3", [&](const std::string& current) {
    EXPECT_EQ(current, "2");
    editVariants();
    return Result<std::optional<std::int64_t>>(std::int64_t{10});
  });
  EXPECT_EQ(ended, true);
  EXPECT_EQ(rows("SELECT opzione2_3, opzione2 FROM articoli"), "10|null\n");
  EXPECT_EQ(rows("SELECT ID, nome FROM opzioni"), "1|(nessuna)\n2|Tinta\n10|Misura\n");
  EXPECT_EQ(rows(allTables), "");
}

TEST_F(TablesAside, WithoutACurrentArticleNoVariantDialogOpens) {
  sql("DELETE FROM articoli");
  ASSERT_TRUE(sets.CambiaLingua(1));
  const auto ended = rollback.SalvaTabelleVarianti("opzione1", [](const std::string&) {
    ADD_FAILURE() << "opened";
    return Result<std::optional<std::int64_t>>(std::nullopt);
  });
  EXPECT_EQ(ended, false);
}

TEST_F(TablesAside, ASecondOpeningReturnsAtOnce) {
  int opened = 0;
  EXPECT_EQ(rollback.SalvaTabelleSpedizione([&]() -> Result<bool> {
    ++opened;
    EXPECT_EQ(rollback.SalvaTabelleSpedizione([&]() -> Result<bool> {
      ++opened;
      return true;
    }),
              false);
    EXPECT_NE(rows(allTables), "");
    return true;
  }),
            true);
  EXPECT_EQ(opened, 1);
  EXPECT_EQ(rollback.SalvaTabelleSpedizione([] { return Result<bool>(true); }), true);
}

TEST_F(TablesAside, WantOfMemoryReleasesTheListsAndOpensTheDialogOnceMore) {
  std::vector<std::string> told;
  env.hooks.release = [&](Session&) { told.emplace_back("release"); };
  env.hooks.reload = [&](const LoadOptions& options) {
    told.emplace_back(options.silent ? "silent reload" : "reload");
  };
  session.bound = true;
  const auto ended = rollback.SalvaTabelleSpedizione([&]() -> Result<bool> {
    told.emplace_back("dialog");
    if (told.size() == 1) return fail(ErrorKind::Other, "catalog.mdb", "out of memory", TableRollback::outOfMemory);
    return true;
  });
  EXPECT_EQ(ended, true);
  EXPECT_THAT(told, testing::ElementsAre("dialog", "release", "dialog", "silent reload"));
}

TEST_F(TablesAside, ASecondWantOfMemoryIsTheFailureOfTheCommand) {
  int opened = 0;
  env.hooks.reload = [](const LoadOptions&) {};
  const auto ended = rollback.SalvaTabelleSpedizione([&]() -> Result<bool> {
    ++opened;
    return fail(ErrorKind::Other, "catalog.mdb", "out of memory", TableRollback::outOfMemory);
  });
  EXPECT_FALSE(ended);
  EXPECT_EQ(opened, 2);
}

TEST_F(TablesAside, AnotherFailureToOpenRestoresTheTables) {
  const std::string before = image();
  const auto ended = rollback.SalvaTabelleSpedizione([&]() -> Result<bool> {
    sql("UPDATE pagamento SET nome1 = 'x'");
    return fail(ErrorKind::Corrupt, "catalog.mdb", "malformed");
  });
  EXPECT_FALSE(ended);
  EXPECT_EQ(image(), before);
}

TEST_F(TablesAside, WithoutItsCopiesNoDialogOpens) {
  std::int64_t calls = 0;
  {
    const FailingStore counting;
    ASSERT_TRUE(rollback.SalvaTabelleSpedizione([&] {
      calls = counting.calls();
      return Result<bool>(true);
    }));
  }
  for (std::int64_t call = 1; call <= calls; call += 17) {
    bool opened = false;
    Result<bool> ended = true;
    {
      const FailingStore failing(call);
      ended = rollback.SalvaTabelleSpedizione([&] {
        // A check whether a name is taken may fail without harm: the copying itself then says so.
        EXPECT_EQ(asText(session.catalogue
                             .scalar("SELECT SUM(substr(name, 1, 4) = 'temp') FROM sqlite_schema"
                                     " WHERE type = 'table'")
                             .value_or(Value())),
                  "7")
            << call;
        return Result<bool>(opened = true);
      });
    }
    EXPECT_EQ(ended.has_value(), opened) << call;
    EXPECT_EQ(rows(allTables), "") << call;
  }
}

TEST_F(TablesAside, CopiesThatAKillHasLeftAreDroppedAndTheEditsStay) {
  sql("CREATE TABLE temppaesi (ID INTEGER); CREATE TABLE tempopzioni (ID INTEGER); CREATE TABLE tempo (ID INTEGER);"
      "UPDATE paesi SET paese = 'Malta'");
  ASSERT_TRUE(dropWorkingCopies(session.catalogue));
  EXPECT_EQ(rows(allTables), "tempo\n");
  EXPECT_EQ(rows("SELECT paese FROM paesi"), "Malta\n");
}

TEST(TheNameOfAWorkingCopy, IsThatOfItsTableAfterTemp) {
  EXPECT_EQ(workingCopyOf("zona4"), "tempzona4");
  EXPECT_TRUE(isWorkingCopy("TEMPDettagliOp"));
  EXPECT_FALSE(isWorkingCopy("tempzona5"));
  EXPECT_FALSE(isWorkingCopy("paesi"));
}

}  // namespace
}  // namespace kv::test
