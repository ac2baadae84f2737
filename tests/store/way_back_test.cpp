// The way back to before a step: by rows while they fit, else by the dated copy, and why the one or the other.
#include "store/step_log_fixture.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;

class TheWayBack : public StepLogFixture {
 protected:
  /// Goes back by rows to before a step.
  void goBackBefore(const std::string& name) {
    const auto way = planWayBack(session, *log, stepNamed(name));
    ASSERT_TRUE(way && way->byRows);
    goBack(*way);
  }
  /// The index of the column of prices.
  std::size_t priceColumn() {
    return static_cast<std::size_t>(asInteger(
        valueOf(session.catalogue.scalar("SELECT cid FROM pragma_table_info('articoli') WHERE name = 'prezzo'"))));
  }
  std::string rows(const std::string& table, const std::string& columns) {
    return asText(valueOf(session.catalogue.scalar("SELECT group_concat(" + columns + ", ' ') FROM " + table)));
  }
};

TEST_F(TheWayBack, GoesBackByRowsAcrossSessionsAsAStepOfItsOwn) {
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

TEST_F(TheWayBack, RowsThatChangedElsewhereLeadToTheCopyMadeBefore) {
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

TEST_F(TheWayBack, ACopyIsGoneBackToWithAllThatWasDoneSinceItWasMade) {
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
  const auto thirteen = planWayBack(session, *log, stepNamed("Passo 12"));
  ASSERT_TRUE(thirteen && thirteen->byRows);
  WayBack longer = *thirteen;
  longer.lost.resize(13, longer.lost[0]);
  EXPECT_TRUE(wayBackQuestion(longer).text.ends_with("\ne un altro passo\n\nTornare indietro?"));
}

TEST_F(TheWayBack, ADamagedImageIsNoticedAndNotRestored) {
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

TEST_F(TheWayBack, AFileOfAnEarlierReleaseIsReadAndGoesOn) {
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

TEST_F(TheWayBack, FitsRowsThatGotAColumnSince) {
  sql("INSERT INTO articoli (ID, catID, codice) VALUES (2, 'cat001', 'B')");
  step("Primo", "INSERT INTO articoli (ID, catID, codice) VALUES (3, 'cat001', 'C')");
  step("Secondo", "DELETE FROM articoli WHERE ID = 2; UPDATE articoli SET prezzo = 20000 WHERE ID = 1");
  history.end();
  sql("ALTER TABLE articoli ADD COLUMN colore LONGTEXT");
  history.begin();
  startSession();
  goBackBefore("Secondo");
  EXPECT_EQ(rows("articoli", "codice"), "A B C");
  EXPECT_EQ(price(), "1");
  ASSERT_TRUE(history.undo());
  sql("UPDATE articoli SET colore = 'rosso' WHERE ID = 3");
  EXPECT_FALSE(planWayBack(session, *log, stepNamed("Primo"))->isThere()) << "what was typed since would be lost";
}

TEST_F(TheWayBack, FollowsADepartmentWhoseIDWasUsedAgain) {
  const auto add = [this](const std::string& name, const std::string& title) {
    step(name, "INSERT INTO categorie (contatore, ID, genitore, titolo) VALUES (7, 'cat007', '###', '" + title + "')");
  };
  add("Primo", "Vasi");
  step("Secondo", "UPDATE articoli SET catID = 'cat007'");
  step("Terzo", "UPDATE articoli SET catID = 'cat001'; DELETE FROM categorie WHERE ID = 'cat007'");
  add("Quarto", "Tazze");
  startSession();
  goBackBefore("Terzo");
  EXPECT_EQ(rows("categorie", "titolo"), "Reparto 1 Vasi");
  EXPECT_EQ(rows("articoli", "catID"), "cat007");
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(rows("categorie", "titolo"), "Reparto 1 Tazze");
  // Outside of any step, as another program would.
  sql("DELETE FROM categorie WHERE ID = 'cat007'; INSERT INTO categorie (contatore, ID, genitore, titolo)"
      " VALUES (7, 'cat007', '###', 'Piatti')");
  EXPECT_FALSE(planWayBack(session, *log, stepNamed("Terzo"))->isThere());
  EXPECT_EQ(rows("categorie", "titolo"), "Reparto 1 Piatti");
}

TEST_F(TheWayBack, OfAnotherShopFindsNoRowsThatFit) {
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  step("Secondo", "UPDATE generale SET titolo = 'Altro'");
  step("Terzo", "INSERT INTO articoli (ID, catID) VALUES (900, 'cat001')");
  // What a shop with other columns would have noted.
  const RowChanges narrower{{"categorie", 1, {0, 5000}, {std::int64_t{1}, {}}, {std::int64_t{100}, {}}},
                            {"categorie", 1, {}, {}, RowImage(5000)},
                            {"mai_vista", 1, {}, {}, {std::int64_t{1}}}};
  for (const RowChange& change : narrower) {
    log->stepDone("Estraneo", {change});
    const auto way = planWayBack(session, *log, stepNamed("Estraneo"));
    ASSERT_TRUE(way);
    EXPECT_FALSE(way->isThere());
  }
  sql("DELETE FROM articoli WHERE ID = 900; UPDATE generale SET titolo = 'Nostro'");
  EXPECT_FALSE(planWayBack(session, *log, stepNamed("Primo"))->isThere());
  EXPECT_EQ(rows("articoli", "ID || prezzo"), "120000");
}

TEST_F(TheWayBack, LeadsOverAsManyStepsAsAreKept) {
  startSession({.steps = 200});
  for (int i = 1; i <= 205; ++i) {
    log->stepDone("Passo " + std::to_string(i),
                  {{"articoli", 1, {priceColumn()}, {std::int64_t{i - 1}}, {std::int64_t{i}}}});
  }
  sql("UPDATE articoli SET prezzo = 205");
  EXPECT_EQ(log->steps().size(), 200U);
  goBackBefore("Passo 6");
  EXPECT_EQ(rows("articoli", "CAST(prezzo AS INTEGER)"), "5");
}

TEST_F(TheWayBack, WithoutACopySoOldThereIsNoWay) {
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
