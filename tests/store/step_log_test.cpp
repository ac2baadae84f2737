// The steps kept beyond the session: what is noted of each, what became of it, how much is kept, and that a damaged or
// unwritable file is in nobody's way.
#include "store/step_log_fixture.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TheStepLog : public StepLogFixture {};

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
                          "Articolo 1, fuoricatalogo: vuoto -> sì", "e un'altra riga"));
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
  EXPECT_THAT(listed(), ElementsAre("Secondo fatto")) << "it waits";
  ASSERT_TRUE(history.undo());
  EXPECT_EQ(price(), "2");
}

TEST_F(TheStepLog, StepsThatCanNotBeWrittenWaitAreToldAndPartOfTheWayBack) {
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  {
    FailingStore full(1, AfterFailure::FailsToo, FailingStore::fullDisk);
    full.onlyFor("INSERT INTO passi");
    step("Secondo", "UPDATE articoli SET peso = 3");
    step("Terzo", "UPDATE articoli SET peso = 4");
    ASSERT_TRUE(history.undo());
  }
  ASSERT_TRUE(log->failure());
  EXPECT_EQ(unwrittenText(*log->failure()),
            "Gli ultimi passi non sono ancora scritti in backup/cronologia.mdb: il disco è pieno. Il catalogo è "
            "salvato; i passi saranno scritti appena possibile, prima della chiusura del negozio.");
  EXPECT_THAT(listed(), ElementsAre("Terzo annullato", "Secondo fatto", "Primo fatto"));
  EXPECT_TRUE(log->changesOf(stepNamed("Secondo")));
  const auto way = planWayBack(session, *log, stepNamed("Primo"));
  ASSERT_TRUE(way && way->byRows);
  EXPECT_EQ(way->rows, 2U) << "the step that waits goes too";
  ASSERT_TRUE(history.redo());
  EXPECT_FALSE(log->failure());
  EXPECT_THAT(listed(), ElementsAre("Terzo fatto", "Secondo fatto", "Primo fatto"));
  ASSERT_TRUE(history.undo());
  startSession();
  EXPECT_THAT(listed(), ElementsAre("Terzo annullato", "Secondo fatto", "Primo fatto"));
}

TEST_F(TheStepLog, AFileThatIsDeletedMeanwhileIsMadeAgain) {
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  ASSERT_TRUE(deleteFile(log->path()));
  step("Secondo", "UPDATE articoli SET prezzo = 30000");
  EXPECT_FALSE(log->failure());
  ASSERT_TRUE(history.undo());
  ASSERT_TRUE(history.undo());
  ASSERT_TRUE(history.redo());
  EXPECT_THAT(listed(), ElementsAre("Secondo annullato")) << "what is undone and done again is the one that is gone";
  startSession();
  EXPECT_THAT(listed(), ElementsAre("Secondo annullato"));
}

TEST_F(TheStepLog, WhatWaitsIsWrittenAtTheEndOfTheSession) {
  step("Primo", "UPDATE articoli SET prezzo = 20000");
  const auto failing = [this](const std::string& beginning, const std::function<void()>& work) {
    FailingStore locked(1, AfterFailure::FailsToo);
    locked.onlyFor(beginning);
    work();
    EXPECT_TRUE(log->failure());
  };
  failing("UPDATE passi", [this] { ASSERT_TRUE(history.undo()); });
  EXPECT_THAT(listed(), ElementsAre("Primo annullato"));
  failing("INSERT INTO passi", [this] { step("Secondo", "UPDATE articoli SET peso = 3"); });
  startSession();
  EXPECT_THAT(listed(), ElementsAre("Secondo fatto", "Primo annullato"));
}

}  // namespace
}  // namespace kv::test
