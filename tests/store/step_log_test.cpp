// The steps kept beyond the session: what is noted of each, what became of it, how much is kept, and that a damaged or
// unwritable file is in nobody's way.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/catalogue/way_back.h"
#include "store/tree_fixture.h"
#include "support/fixed_clock.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TheStepLog : public TreeFixture {
 protected:
  void SetUp() override {
    sql("PRAGMA synchronous=OFF");  // the shop lives for one test
    sql("DELETE FROM categorie");
    department(1, "###", 100);
    sql("INSERT INTO articoli (ID, catID, codice, prezzo) VALUES (1, 'cat001', 'A', 10000)");
    bind();
    startSession();
  }
  void TearDown() override { history.listen(nullptr); }

  void startSession(const StepLimits& limits = {}) {
    log.emplace(session.ShopFolder, clock, limits);
    history.listen(&*log);
    history.clear();
  }
  void step(const std::string& name, const std::string& statement) {
    ASSERT_TRUE(history.record(name, [&] { return session.catalogue.execute(statement); }));
  }
  std::vector<std::string> listed() {
    std::vector<std::string> lines;
    for (const LoggedStep& one : log->steps()) lines.push_back(one.name + " " + std::string(stateText(one.state)));
    return lines;
  }
  std::string price() { return asText(valueOf(session.catalogue.scalar("SELECT prezzo FROM articoli WHERE ID = 1"))); }
  std::int64_t stepNamed(const std::string& name) {
    for (const LoggedStep& one : log->steps()) {
      if (one.name == name) return one.ID;
    }
    return 0;
  }
  /// Runs a statement on the file of the steps, as another program would.
  void onFile(const std::string& statement) {
    auto file = Database::open(log->path(), OpenMode::Shared);
    ASSERT_TRUE(file);
    ASSERT_TRUE(file->execute(statement));
  }
  void goBack(const WayBack& way) {
    ASSERT_TRUE(history.record(wayBackStep(way), [&] { return goBackByRows(session.catalogue, *log, way); }));
  }

  FixedClock clock;
  std::optional<StepLog> log;
};

TEST_F(TheStepLog, ListsStepsOfAllSessionsNewestFirst) {
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_FALSE(fileExists(log->path())) << "a shop in which nothing was changed has no file";
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  step("Secondo", "UPDATE articoli SET prezzo = 30000");
  startSession();
  step("Terzo", "UPDATE articoli SET prezzo = 40000");
  EXPECT_THAT(listed(), ElementsAre("Terzo fatto", "Secondo fatto", "Primo fatto"));
  const auto steps = log->steps();
  EXPECT_EQ(steps[1].session, steps[2].session);
  EXPECT_NE(steps[0].session, steps[1].session);
}

TEST_F(TheStepLog, FollowsUndoAndRedo) {
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  step("Secondo", "UPDATE articoli SET prezzo = 30000");
  ASSERT_TRUE(history.undo());
  ASSERT_TRUE(history.undo());
  EXPECT_THAT(listed(), ElementsAre("Secondo annullato", "Primo annullato"));
  ASSERT_TRUE(history.redo());
  EXPECT_THAT(listed(), ElementsAre("Secondo annullato", "Primo fatto"));
  step("Terzo", "UPDATE articoli SET prezzo = 1");
  ASSERT_TRUE(history.undo());
  EXPECT_THAT(listed(), ElementsAre("Terzo annullato", "Secondo annullato", "Primo fatto"));
}

TEST_F(TheStepLog, SaysWhatAStepChanged) {
  step("Tutto",
       "UPDATE articoli SET prezzo = 125000, titolo = 'Vaso', fuoricatalogo = 1;"
       "INSERT INTO articoli (ID, catID) VALUES (9, 'cat001')");
  const auto changes = log->changesOf(stepNamed("Tutto"));
  ASSERT_TRUE(changes);
  EXPECT_THAT(describeStep(session.catalogue, *changes),
              ElementsAre("Articolo 1, titolo: vuoto -> \"Vaso\"", "Articolo 1, prezzo: 1 -> 12,5",
                          "Articolo 1, fuoricatalogo: vuoto -> sì", "Articolo 9: nuova riga"));
  EXPECT_THAT(describeStep(session.catalogue, *changes, 1),
              ElementsAre("Articolo 1, titolo: vuoto -> \"Vaso\"", "Articolo 1, prezzo: 1 -> 12,5",
                          "Articolo 1, fuoricatalogo: vuoto -> sì", "e altre 1 righe"));
}

TEST_F(TheStepLog, ImagesComeBackAsTheyWere) {
  const RowChanges changes{{"articoli", 7, {1, 3}, {std::monostate{}, 2.5}, {std::string("a\0b", 3), Bytes{0, 255}}},
                           {"paesi", -1, {}, {}, {std::int64_t{-5}}}};
  const auto same = unpackChanges(packChanges(changes));
  ASSERT_TRUE(same);
  EXPECT_EQ(packChanges(*same), packChanges(changes));
  const std::string bytes = packChanges(changes);
  for (std::size_t size = 1; size < bytes.size(); ++size) {
    const auto cut = unpackChanges(std::string_view(bytes).substr(0, size));
    EXPECT_TRUE(!cut || cut->size() == 1U) << size;
  }
}

TEST_F(TheStepLog, KeepsNoMoreThanItsLimits) {
  startSession({3, std::size_t{1} << 20, 2000});
  for (const char* name : {"A", "B", "C", "D"}) step(name, "UPDATE articoli SET prezzo = prezzo + 1");
  EXPECT_THAT(listed(), ElementsAre("D fatto", "C fatto", "B fatto"));
  step("Grande", "UPDATE articoli SET descrizione = '" + std::string(3000, 'x') + "'");
  EXPECT_FALSE(log->steps().front().hasImages);
  EXPECT_EQ(log->changesOf(stepNamed("Grande")).error().kind, ErrorKind::Missing);
  startSession({100, 600, std::size_t{1} << 20});
  step("E", "UPDATE articoli SET descrizione = '" + std::string(500, 'y') + "'");
  EXPECT_THAT(listed(), ElementsAre("E fatto"));
}

TEST_F(TheStepLog, ADamagedFileIsReplacedAndAnUnwritableOneLetBe) {
  ASSERT_TRUE(createFolders(joinPath(session.ShopFolder, "backup")));
  ASSERT_TRUE(writeBytes(log->path(), std::string(5000, 'x')));
  EXPECT_THAT(listed(), IsEmpty());
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  EXPECT_THAT(listed(), ElementsAre("Primo fatto"));
  startSession();
  ASSERT_TRUE(deleteFile(log->path()));
  ASSERT_TRUE(createFolder(log->path()));
  startSession();
  step("Secondo", "UPDATE articoli SET prezzo = 30000");
  EXPECT_EQ(price(), "3");
  EXPECT_THAT(listed(), IsEmpty());
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(price(), "2");
}

TEST_F(TheStepLog, GoesBackByRowsAcrossSessionsAsAStepOfItsOwn) {
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  step("Secondo", "INSERT INTO articoli (ID, catID) VALUES (2, 'cat001')");
  startSession();
  step("Terzo", "UPDATE articoli SET prezzo = 40000 WHERE ID = 1");
  step("Quarto", "DELETE FROM articoli WHERE ID = 2");
  ASSERT_TRUE(history.undo());
  const auto way = planWayBack(session, *log, stepNamed("Primo"));
  ASSERT_TRUE(way);
  EXPECT_TRUE(way->byRows);
  EXPECT_EQ(way->rows, 3U);
  EXPECT_EQ(way->lost.size(), 3U) << "what was undone is not lost";
  EXPECT_EQ(price(), "4") << "the plan keeps nothing";
  const Question asked = wayBackQuestion(*way);
  EXPECT_EQ(asked.preset, Answer::No);
  const std::string when = formatTime(log->steps().front().madeAt) + "  ";
  EXPECT_EQ(asked.text,
            "Il catalogo tornerà com'era prima di: Primo.\nRighe da riportare indietro: 3. Si potrà annullare con "
            "Ctrl+Z.\n\nAndrà perso:\n" +
                when + "Terzo\n" + when + "Secondo\n" + when + "Primo\n\nTornare indietro?");
  goBack(*way);
  EXPECT_EQ(price(), "1");
  EXPECT_EQ(asText(valueOf(session.catalogue.scalar("SELECT COUNT(*) FROM articoli"))), "1");
  EXPECT_EQ(history.undoName(), "Torna a prima di: Primo");
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(price(), "4");
  ASSERT_TRUE(history.redo());
  const auto again = planWayBack(session, *log, stepNamed("Terzo"));
  ASSERT_TRUE(again && again->byRows);
  goBack(*again);
  EXPECT_EQ(price(), "2");
}

TEST_F(TheStepLog, RowsThatChangedElsewhereLeadToTheCopyMadeBefore) {
  clock.seconds = 1783840500;
  ASSERT_TRUE(createFolders(joinPath(session.ShopFolder, "backup")));
  for (const char* name : {"catalog-20260712T071400Z.mdb", "catalog-20260712T071600Z.mdb"}) {
    ASSERT_TRUE(writeBytes(joinPath(session.ShopFolder, "backup/" + std::string(name)), "x"));
  }
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  sql("UPDATE articoli SET prezzo = 70000");
  const auto way = planWayBack(session, *log, stepNamed("Primo"));
  ASSERT_TRUE(way);
  EXPECT_FALSE(way->byRows);
  EXPECT_EQ(way->copy.name, "catalog-20260712T071400Z.mdb");
  EXPECT_EQ(way->lost.size(), 1U);
  EXPECT_EQ(price(), "7");
  log->noteRestored(restoredStep(way->copy), way->copy.madeAt);
  EXPECT_THAT(listed(), ElementsAre("Ripristinata la copia del " + formatTime(way->copy.madeAt) + " fatto",
                                    "Primo perso con una copia ripristinata"));
  EXPECT_EQ(planWayBack(session, *log, stepNamed("Primo")).error().kind, ErrorKind::Missing);
}

TEST_F(TheStepLog, ACopyIsGoneBackToWithAllThatWasDoneSinceItWasMade) {
  clock.seconds = 1783840400;
  step("Zero", "UPDATE articoli SET prezzo = 15000");
  clock.seconds = 1783840460;  // 2026-07-12, 07:14:20 UTC
  ASSERT_TRUE(createFolders(joinPath(session.ShopFolder, "backup")));
  ASSERT_TRUE(writeBytes(joinPath(session.ShopFolder, "backup/catalog-20260712T071400Z.mdb"), "x"));
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  step("Secondo", "UPDATE articoli SET peso = 1");
  sql("UPDATE articoli SET peso = 7");
  for (int i = 1; i <= 12; ++i)
    step("Passo " + std::to_string(i), "UPDATE articoli SET titolo = '" + std::to_string(i) + "'");
  const auto way = planWayBack(session, *log, stepNamed("Secondo"));
  ASSERT_TRUE(way);
  ASSERT_FALSE(way->byRows);
  const Question asked = wayBackQuestion(*way);
  const std::string when = formatTime(log->steps().front().madeAt) + "  ";
  std::string lost;
  for (int i = 12; i >= 1; --i) lost += "\n" + when + "Passo " + std::to_string(i);
  EXPECT_EQ(asked.text,
            "Il catalogo tornerà com'era prima di: Secondo.\nLe righe sono cambiate in seguito: sarà ripristinata la "
            "copia del " +
                formatTime(way->copy.madeAt) + ".\nUna copia del catalogo attuale sarà conservata.\n\nAndrà perso:" +
                lost + "\ne altri 2 passi\n\nTornare indietro?")
      << "the step before the copy stays, the one between copy and step goes";
  EXPECT_EQ(asked.icon, Icon::Exclamation);
}

TEST_F(TheStepLog, ADamagedImageIsNoticedAndNotRestored) {
  step("Primo", "UPDATE articoli SET titolo = 'Vaso'");
  step("Secondo", "UPDATE articoli SET titolo = 'Tazza'");
  startSession();
  // One character of the text before: the image can still be read, and the row is as the step left it.
  onFile("UPDATE passi SET righe = CAST(replace(CAST(righe AS TEXT), 'Vaso', 'Vaio') AS BLOB) WHERE nome = 'Secondo'");
  const auto changes = log->changesOf(stepNamed("Secondo"));
  ASSERT_FALSE(changes);
  EXPECT_EQ(changes.error().kind, ErrorKind::Corrupt);
  EXPECT_EQ(unreadableStepText(changes.error()),
            "Le righe di questo passo sono danneggiate nel file cronologia.mdb: non si può più leggere che cosa ha "
            "cambiato.\nIl catalogo è intatto.\n\nDettaglio: the row images of step 2 are damaged");
  const auto way = planWayBack(session, *log, stepNamed("Primo"));
  ASSERT_TRUE(way);
  EXPECT_FALSE(way->isThere());
  EXPECT_EQ(noWayBack(*way),
            "Non si può tornare a prima di: Primo.\nLe righe di un passo sono danneggiate nella cronologia, e nessuna "
            "copia del catalogo è così vecchia.");
  EXPECT_EQ(asText(valueOf(session.catalogue.scalar("SELECT titolo FROM articoli"))), "Tazza");
}

TEST_F(TheStepLog, AFileOfAnEarlierReleaseIsReadAndGoesOn) {
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  startSession();
  onFile("ALTER TABLE passi DROP COLUMN impronta");
  EXPECT_TRUE(log->changesOf(stepNamed("Primo")));
  step("Secondo", "UPDATE articoli SET prezzo = 30000");
  const auto way = planWayBack(session, *log, stepNamed("Primo"));
  ASSERT_TRUE(way && way->byRows);
  goBack(*way);
  EXPECT_EQ(price(), "1");
  onFile("UPDATE passi SET righe = x'00' || substr(righe, 2) WHERE nome = 'Secondo'");
  EXPECT_EQ(log->changesOf(stepNamed("Secondo")).error().kind, ErrorKind::Corrupt) << "a new step has its digest";
}

TEST_F(TheStepLog, WithoutACopySoOldThereIsNoWay) {
  clock.seconds = 1783840500;
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  sql("UPDATE articoli SET prezzo = 70000");
  const auto way = planWayBack(session, *log, stepNamed("Primo"));
  ASSERT_TRUE(way);
  EXPECT_FALSE(way->isThere());
  EXPECT_EQ(noWayBack(*way),
            "Non si può tornare a prima di: Primo.\nLe righe sono cambiate in seguito, e nessuna copia del catalogo è "
            "così vecchia.");
}

}  // namespace
}  // namespace kv::test
