// Copying one language into another: which texts, which stay, and what an error leaves.
#include <gmock/gmock.h>

#include "commerce/bulk_fixture.h"
#include "commerce/replication/language_replication.h"
#include "platform/database/changes/changes.h"
#include "store/schema/column_family.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Shown asksToOverwrite{
    "Verranno sovrascritti tutti i dati della lingua di destinazione.\nProcedere con la replica?", Icon::Question,
    Buttons::YesNo, Answer::No, Answer::Yes};

class ReplicatingALanguage : public BulkFixture {
 protected:
  ReplicatingALanguage() {
    sql("UPDATE generale SET titolo = 'Negozio', titolo_l2 = 'Shop', home1 = 'Benvenuti', email = 'a@example.org';"
        "UPDATE pagamento SET nome1 = 'Contanti', nome2 = '', nome1_l3 = '', metodo1 = 'Contrassegno';"
        "INSERT INTO categorie (ID, titolo, titolo_l2, immagine1, imgX1, imgY1, imgX1_l2) VALUES"
        " ('cat001', 'Vasi', '', 'vasi.gif', 80, 20, 5);"
        "INSERT INTO articoli (ID, catID, titolo, titolo_l2, titolo_l3, descrizione, prezzo) VALUES"
        " (1, 'cat001', 'Vaso', 'Vase', NULL, 'bello', 10000), (2, 'cat001', 'Tazza', NULL, 'Tasse', NULL, 20000);"
        "INSERT INTO opzioni (ID, nome, opzione1) VALUES (2, 'Colore', 'vecchio');"
        "INSERT INTO dettagliop (testo, testo_l2, OpID) VALUES ('rosso', ' ', 2)");
    user.answers = {Answer::Yes};
  }
  BulkEnd run() { return ReplicaLingue(catalogue, wanted, user); }
  void tick(int part) { wanted.parts[static_cast<std::size_t>(part)] = true; }

  LanguageReplication wanted;
};

TEST_F(ReplicatingALanguage, NeedsSomethingTicked) {
  EXPECT_EQ(run(), BulkEnd::Stay);
  EXPECT_THAT(user.shown,
              ElementsAre(said("E' necessario selezionare le informazioni da replicare", Icon::Exclamation)));
}

TEST_F(ReplicatingALanguage, AsksWithNoAsDefaultAndStaysOnNo) {
  tick(2);
  user.answers.clear();
  const std::string before = everything();
  EXPECT_EQ(run(), BulkEnd::Stay);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].text, asksToOverwrite.text);
  EXPECT_EQ(user.shown[0].preset, Answer::No);
  EXPECT_EQ(everything(), before);
}

TEST_F(ReplicatingALanguage, AsksTheSameWhenOnlyEmptyFieldsAreFilled) {
  tick(2);
  wanted.onlyEmpty = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_THAT(user.shown, ElementsAre(asksToOverwrite));
}

TEST_F(ReplicatingALanguage, OverwritesAllTextsOfTheArticles) {
  tick(2);
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT titolo_l2, descrizione_l2, titolo_l3 FROM articoli ORDER BY ID"),
            "Vaso|bello|null\nTazza|null|Tasse\n");
  EXPECT_EQ(read("SELECT titolo_l2 FROM generale"), "Shop\n");
}

TEST_F(ReplicatingALanguage, FillsOnlyTheEmptyFields) {
  tick(2);
  tick(1);
  wanted.onlyEmpty = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT titolo_l2, descrizione_l2 FROM articoli ORDER BY ID"), "Vase|bello\nTazza|null\n");
  EXPECT_EQ(read("SELECT titolo_l2 FROM categorie"), "Vasi\n");
}

TEST_F(ReplicatingALanguage, TakesASpaceForAFilledField) {
  tick(3);
  wanted.onlyEmpty = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT testo_l2 FROM dettagliop"), " \n");
  EXPECT_EQ(read("SELECT nome_l2 FROM opzioni WHERE ID = 2"), "Colore\n");
}

TEST_F(ReplicatingALanguage, IntoLanguageOneWritesTheBareColumnsAlone) {
  tick(0);
  tick(2);
  tick(3);
  wanted.source = 2;
  wanted.destination = 1;
  const std::string others =
      read("SELECT titolo_l2, titolo_l3, titolo_l4, descrizione_l2, prezzo, catID FROM articoli ORDER BY ID");
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT titolo, descrizione FROM articoli ORDER BY ID"), "Vase|null\nnull|null\n");
  EXPECT_EQ(read("SELECT titolo_l2, titolo_l3, titolo_l4, descrizione_l2, prezzo, catID FROM articoli ORDER BY ID"),
            others);
  EXPECT_EQ(read("SELECT titolo, email, versione FROM generale"), "Shop|a@example.org|1002\n");
  EXPECT_EQ(read("SELECT nome, opzione1 FROM opzioni WHERE ID = 2"), "null|vecchio\n");
}

TEST_F(ReplicatingALanguage, PutsASpaceIntoANameOfPaymentThatStaysEmpty) {
  tick(0);
  wanted.source = 4;
  wanted.destination = 3;
  for (const bool onlyEmpty : {false, true}) {
    sql("UPDATE pagamento SET nome1_l3 = '', nome2_l3 = NULL");
    wanted.onlyEmpty = onlyEmpty;
    user.answers = {Answer::Yes};
    EXPECT_EQ(run(), BulkEnd::Done);
    EXPECT_EQ(read("SELECT nome1_l3 || '.', nome2_l3 || '.', metodo1 FROM pagamento"), " .| .|Contrassegno\n");
  }
  // That space is a text as any other for a later run.
  wanted.source = 1;
  user.answers = {Answer::Yes};
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT nome1, nome1_l3 || '.' FROM pagamento"), "Contanti| .\n");
}

TEST_F(ReplicatingALanguage, CopiesTheButtonOfADepartmentButNotItsSize) {
  tick(1);
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT immagine1_l2, imgX1_l2, imgY1_l2 FROM categorie"), "vasi.gif|5|null\n");
}

TEST_F(ReplicatingALanguage, SeesATextThatDiffersInCaseAlone) {
  tick(2);
  sql("UPDATE articoli SET titolo_l2 = 'VASO' WHERE ID = 1");
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT titolo_l2 FROM articoli WHERE ID = 1"), "Vaso\n");
}

TEST_F(ReplicatingALanguage, ShowsTheCaptionsInTheirOrder) {
  for (int part = 0; part < 4; ++part) tick(part);
  EXPECT_EQ(run(), BulkEnd::Done);
  std::vector<std::string> captions;
  for (const ProgressShown& shown : user.progressShown) {
    if (captions.empty() || captions.back() != shown.caption) captions.push_back(shown.caption);
  }
  EXPECT_THAT(captions, ElementsAre("Replica negozio e sito...", "Replica reparti...", "Replica articoli...",
                                    "Replica varianti...", ""));
}

TEST_F(ReplicatingALanguage, TakesNoRoundsForTheGapsBetweenIDs) {
  sql("WITH RECURSIVE n(i) AS (SELECT 3 UNION ALL SELECT i + 1 FROM n WHERE i < 600)"
      " INSERT INTO articoli (ID, catID, titolo) SELECT i, 'cat001', 'Piatto' FROM n;"
      "INSERT INTO articoli (ID, catID, titolo) VALUES (2147483647, 'cat001', 'Ultimo')");
  tick(2);
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT titolo_l2, count(*) FROM articoli WHERE ID > 2 GROUP BY 1"), "Piatto|598\nUltimo|1\n");
  std::vector<double> done;
  for (const ProgressShown& shown : user.progressShown) {
    if (shown.caption == "Replica articoli...") done.push_back(shown.position);
  }
  EXPECT_THAT(done, ElementsAre(0, 0, 500));
}

TEST_F(ReplicatingALanguage, OfEmptyTablesDoesNothing) {
  sql("DELETE FROM articoli; DELETE FROM categorie");
  tick(1);
  tick(2);
  EXPECT_EQ(run(), BulkEnd::Done);
}

TEST_F(ReplicatingALanguage, IsAllOrNothingAtEveryFailure) {
  for (int part = 0; part < 4; ++part) tick(part);
  const std::string before = everything();
  for (std::int64_t call = 1;; ++call) {
    user.answers = {Answer::Yes};
    user.shown.clear();
    FailingStore failing(call);
    const BulkEnd end = run();
    if (!failing.hasFailed()) break;
    ASSERT_EQ(end, BulkEnd::Stay) << call;
    ASSERT_EQ(user.shown.size(), 2U) << call;
    EXPECT_EQ(user.shown[1].icon, Icon::Critical);
    ASSERT_TRUE(everything() == before) << call;
  }
  EXPECT_FALSE(everything() == before);
}

TEST_F(ReplicatingALanguage, OffersAllLanguagesButTheSource) {
  Session session;
  session.languageCount = 3;
  session.languageNames = {"italiano", "inglese", "francese", ""};
  EXPECT_EQ(languageItem(session, 2), "Lingua 2 (inglese)");
  EXPECT_THAT(destinationsOf(session, 1), ElementsAre(2, 3));
  EXPECT_THAT(destinationsOf(session, 3), ElementsAre(1, 2));
}

/// Random texts in all text columns of a language, and what a plain copy of them would be.
class ReplicatingRandomTexts : public ReplicatingALanguage {
 protected:
  static std::string randomText(std::mt19937& chance) {
    constexpr const char* texts[] = {"NULL", "''", "' '", "'a'", "'A'", "'b'"};
    return texts[upTo(chance, 5)];
  }
  void fillTable(std::mt19937& chance, const char* table) {
    std::string assignments;
    for (const ColumnRule& column : languageViewRule(table)->columns) {
      if (column.spread != Spread::Languages || column.type == ColumnType::Int) continue;
      for (const std::string_view suffix : languageSuffixes) {
        assignments +=
            (assignments.empty() ? "" : ", ") + column.name + std::string(suffix) + " = " + randomText(chance);
      }
    }
    sql(std::string("UPDATE ") + table + " SET " + assignments);
  }
  /// Checks each field of a table against the row as it was; how many have changed.
  std::size_t checkTable(Database& before, const char* table) {
    std::size_t changed = 0;
    const std::string query = std::string("SELECT * FROM ") + table;
    auto old = before.prepare(query).value();
    auto now = catalogue.prepare(query).value();
    while (old.step().value() && now.step().value()) {
      for (int i = 0; i < now.columnCount(); ++i) {
        const std::string name(now.columnName(i));
        if (old.isNull(i) == now.isNull(i) && old.text(i) == now.text(i)) continue;
        ++changed;
        const std::string_view suffix = languageSuffixes[static_cast<std::size_t>(wanted.destination - 1)];
        EXPECT_TRUE(name.ends_with(suffix)) << name;
        EXPECT_TRUE(!wanted.onlyEmpty || old.text(i).empty()) << name;
      }
    }
    return changed;
  }
};

TEST_F(ReplicatingRandomTexts, ChangesWhatThePreviewCountsNoFilledFieldUnlessAskedAndIsUndone) {
  std::mt19937 chance(seed());
  for (int round = 0; round < operationsOf(15); ++round) {
    for (const char* table : {"generale", "pagamento", "categorie", "articoli", "opzioni", "dettagliop"}) {
      fillTable(chance, table);
    }
    wanted.source = 1 + upTo(chance, 3);
    wanted.destination = 1 + (wanted.source + upTo(chance, 2)) % 4;
    wanted.onlyEmpty = upTo(chance, 1) == 1;
    for (bool& part : wanted.parts) part = upTo(chance, 2) > 0;
    if (wanted.parts == std::array<bool, 4>{}) wanted.parts[0] = true;
    const std::string copy = root / ("copy" + std::to_string(round));
    ASSERT_TRUE(catalogue.compactTo(copy));
    auto before = Database::open(copy, OpenMode::Shared).value();
    const auto count = countReplication(catalogue, wanted);
    ASSERT_TRUE(count);
    user.answers = {Answer::Yes};
    const std::string old = everything();
    ChangeRecorder recorder(catalogue, [](std::string_view) { return true; });
    ASSERT_EQ(run(), BulkEnd::Done);
    std::size_t changed = 0;
    for (const char* table : {"generale", "pagamento", "categorie", "articoli", "opzioni", "dettagliop"}) {
      changed += checkTable(before, table);
    }
    EXPECT_EQ(changed, count->fields);
    const auto again = countReplication(catalogue, wanted).value();
    EXPECT_EQ(again.fields, 0U);
    EXPECT_EQ(again.text(), "Campi da scrivere: 0, in 0 righe");
    const std::string now = everything();
    const auto changes = recorder.take();
    ASSERT_TRUE(changes);
    ASSERT_TRUE(recorder.revert(*changes));
    EXPECT_EQ(everything(), old);
    ASSERT_TRUE(recorder.repeat(*changes));
    EXPECT_EQ(everything(), now);
  }
}

}  // namespace
}  // namespace kv::test
