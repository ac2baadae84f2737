// The bulk change of prices: what it asks, what it writes, what its preview says.
#include <gmock/gmock.h>

#include "commerce/bulk_fixture.h"
#include "commerce/prices/price_change.h"
#include "platform/database/changes/changes.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* asksAboutLists =
    "Questa operazione può produrre risultati imprevisti nelle varianti:\n\n"
    "- alcune varianti dei listini selezionati sono presenti anche in altri listini\n\n"
    "Verrebbero dunque modificati anche i prezzi di reparti o listini non selezionati.\n\n"
    "Si desidera procedere ugualmente?";
constexpr const char* asksAboutDepartments =
    "Questa operazione può produrre risultati imprevisti nelle varianti:\n\n"
    "- alcune varianti del reparto selezionato sono presenti anche in altri reparti\n\n"
    "Verrebbero dunque modificati anche i prezzi di reparti o listini non selezionati.\n\n"
    "Si desidera procedere ugualmente?";

class ChangingPrices : public BulkFixture {
 protected:
  ChangingPrices() {
    sql("INSERT INTO articoli (ID, catID, titolo, prezzo, prezzo3, offertaprezzo) VALUES"
        " (1, 'cat001', 'Vaso', 199900, 100000, 150000), (2, 'cat001', 'Piatto', NULL, 24950, NULL),"
        " (3, 'cat002', 'Tazza', 100000, 30000, 90000), (4, NULL, 'Sfuso', 50000, NULL, NULL);"
        "INSERT INTO opzioni (ID, nome) VALUES (2, 'Colore'), (3, 'Taglia');"
        "INSERT INTO dettagliop (ID, testo, prezzo, OpID) VALUES (1, 'rosso', 10000, 2), (2, 'blu', NULL, 2),"
        " (3, 'grande', 20000, 3), (4, 'nessuno', 70000, 1)");
    change.percentage = "+10";
    change.selection.lists[0] = true;
  }
  BulkEnd run() { return ModificaPrezzi(catalogue, change, user); }
  std::string prices() { return read("SELECT prezzo, prezzo3, offertaprezzo FROM articoli ORDER BY ID"); }
  std::string options() { return read("SELECT prezzo FROM dettagliop ORDER BY ID"); }

  PriceChange change;
};

TEST_F(ChangingPrices, RaisesTheTickedListOfAllDepartments) {
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(prices(), "219900|100000|150000\n0|24950|null\n110000|30000|90000\n55000|null|null\n");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(ChangingPrices, ChangesOneDepartmentWithoutItsSubDepartments) {
  sql("INSERT INTO categorie (ID, genitore) VALUES ('cat001', '###'), ('cat002', 'cat001')");
  change.selection.department = "cat001";
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(prices(), "219900|100000|150000\n0|24950|null\n100000|30000|90000\n50000|null|null\n");
}

TEST_F(ChangingPrices, ChangesOfferPricesOnlyWhenAsked) {
  change.selection.offers = true;
  change.whole = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(prices(), "220000|100000|160000\n0|24950|0\n110000|30000|100000\n60000|null|0\n");
}

TEST_F(ChangingPrices, OfZeroPercentStillRoundsEveryPrice) {
  change.percentage = "0";
  change.selection.lists = {};
  change.selection.lists[3] = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(prices(), "199900|100000|150000\nnull|25000|null\n100000|30000|90000\n50000|0|null\n");
}

TEST_F(ChangingPrices, ByMinusHundredMakesTheTickedPricesZero) {
  change.percentage = "-100";
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(read("SELECT DISTINCT prezzo FROM articoli"), "0\n");
  EXPECT_EQ(read("SELECT sum(prezzo3) FROM articoli"), "154950\n");
}

TEST_F(ChangingPrices, WithoutATickedListClosesAndChangesNothing) {
  change.selection.lists = {};
  change.selection.variants = true;
  const std::string before = everything();
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(everything(), before);
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(ChangingPrices, RefusesAPercentageAndStays) {
  const std::string before = everything();
  for (const char* wrong : {"", "x", "-100,5", "101"}) {
    user.shown.clear();
    change.percentage = wrong;
    EXPECT_EQ(run(), BulkEnd::Stay);
    EXPECT_THAT(user.shown,
                ElementsAre(said("Percentuale non valida (deve essere compresa tra -100 e +100)", Icon::Exclamation)));
  }
  EXPECT_EQ(everything(), before);
}

TEST_F(ChangingPrices, ChangesAnOptionOnceHoweverManyListsUseIt) {
  sql("UPDATE articoli SET opzione1 = 2, opzione1_3 = 2, opzione4_3 = 2");
  change.selection.variants = true;
  change.selection.lists[3] = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(options(), "11000\n0\n20000\n70000\n");
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(ChangingPrices, NeverTouchesTheOptionsOfTheVariantThatMeansNone) {
  sql("UPDATE articoli SET opzione1 = 1");
  change.selection.variants = true;
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(options(), "10000\nnull\n20000\n70000\n");
}

TEST_F(ChangingPrices, LeavesOptionsAloneUnlessAsked) {
  sql("UPDATE articoli SET opzione1 = 2");
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(options(), "10000\nnull\n20000\n70000\n");
}

TEST_F(ChangingPrices, AsksWhenAVariantIsInAnotherListToo) {
  sql("UPDATE articoli SET opzione1 = 2, opzione3_7 = 2 WHERE ID = 1");
  change.selection.variants = true;
  const std::string before = everything();
  EXPECT_EQ(run(), BulkEnd::Left);
  EXPECT_THAT(user.shown, ElementsAre(Shown{asksAboutLists, Icon::Question, Buttons::YesNo, Answer::No, Answer::No}));
  EXPECT_EQ(everything(), before);
  user.answers = {Answer::Yes};
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_EQ(options(), "11000\n0\n20000\n70000\n");
}

TEST_F(ChangingPrices, AsksWhenAVariantIsInAnotherDepartmentTooAndOnYesChangesItForBoth) {
  // A department below the selected one is another one, too.
  sql("INSERT INTO categorie (ID, genitore) VALUES ('cat001', '###'), ('cat002', 'cat001');"
      "UPDATE articoli SET opzione1 = 2 WHERE ID = 1; UPDATE articoli SET opzione4 = 2 WHERE ID = 3");
  change.selection.variants = true;
  change.selection.department = "cat001";
  user.answers = {Answer::Yes};
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_THAT(user.texts(), ElementsAre(asksAboutDepartments));
  EXPECT_EQ(options(), "11000\n0\n20000\n70000\n");
  EXPECT_EQ(read("SELECT prezzo FROM articoli WHERE ID = 3"), "100000\n");
}

TEST_F(ChangingPrices, AsksAboutBothAtOnce) {
  sql("UPDATE articoli SET opzione1 = 2, opzione2_5 = 2");
  change.selection.variants = true;
  change.selection.department = "cat001";
  EXPECT_EQ(run(), BulkEnd::Left);
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_THAT(user.shown[0].text, testing::HasSubstr("anche in altri listini\n- alcune varianti del reparto"));
}

TEST_F(ChangingPrices, AnArticleWithoutADepartmentIsInNoOtherOne) {
  sql("UPDATE articoli SET opzione1 = 2 WHERE ID IN (1, 4)");
  change.selection.variants = true;
  change.selection.department = "cat001";
  EXPECT_EQ(run(), BulkEnd::Done);
  EXPECT_THAT(user.shown, IsEmpty());
}

TEST_F(ChangingPrices, AsksBeforeItReadsThePercentage) {
  sql("UPDATE articoli SET opzione1 = 2, opzione1_1 = 2");
  change.selection.variants = true;
  change.percentage = "troppo";
  user.answers = {Answer::Yes};
  EXPECT_EQ(run(), BulkEnd::Stay);
  EXPECT_THAT(user.texts(),
              ElementsAre(asksAboutLists, "Percentuale non valida (deve essere compresa tra -100 e +100)"));
}

TEST_F(ChangingPrices, RefusesAPriceBeyondTheRangeBeforeAnythingIsWritten) {
  sql("UPDATE articoli SET prezzo = 9000000000000000000 WHERE ID = 3");
  const std::string before = everything();
  EXPECT_EQ(run(), BulkEnd::Stay);
  EXPECT_THAT(user.texts(), ElementsAre(testing::HasSubstr("Tazza (Listino 0): 900.000.000.000.000,00")));
  EXPECT_EQ(everything(), before);
}

TEST_F(ChangingPrices, ThePreviewNamesCountLargestChangeAndZeros) {
  const auto survey = surveyPrices(catalogue, change.selection);
  ASSERT_TRUE(survey);
  PriceRule rule = ruleOfPercentage(10, false);
  EXPECT_EQ(previewSummary(*survey, previewPrices(*survey, rule), rule),
            "Prezzi da modificare: 4 di 4; variazione maggiore: 19,99 -> 21,99 (Vaso, Listino 0); diventano 0: 1");
  rule = ruleOfPercentage(-100, false);
  EXPECT_EQ(previewSummary(*survey, previewPrices(*survey, rule), rule),
            "Prezzi da modificare: 4 di 4; variazione maggiore: 19,99 -> 0,00 (Vaso, Listino 0); diventano 0: 4");
  EXPECT_EQ(survey->owners[survey->prices[2].owner].title, "Tazza");
}

TEST_F(ChangingPrices, ThePreviewNamesThePricesBeyondTheRange) {
  sql("UPDATE articoli SET prezzo = 9000000000000000000 WHERE ID = 3");
  const auto survey = surveyPrices(catalogue, change.selection);
  ASSERT_TRUE(survey);
  const PriceRule rule = ruleOfPercentage(10, false);
  EXPECT_EQ(previewSummary(*survey, previewPrices(*survey, rule), rule),
            "Prezzi da modificare: 4 di 4; variazione maggiore: 19,99 -> 21,99 (Vaso, Listino 0); diventano 0: 1; "
            "oltre il massimo consentito: 1 (Tazza, Listino 0)");
  EXPECT_EQ(newPrice(survey->prices[2].before, rule), "oltre il massimo");
  EXPECT_EQ(beyondSummary({"a", "b", "c", "d"}), "; oltre il massimo consentito: 4 (a, b, c, ...)");
}

TEST_F(ChangingPrices, ThePreviewHasTheDecimalSeparatorOfTheWindow) {
  const auto survey = surveyPrices(catalogue, change.selection);
  ASSERT_TRUE(survey);
  const PriceRule rule = ruleOfPercentage(10, false);
  EXPECT_THAT(previewSummary(*survey, previewPrices(*survey, rule), rule, '.'),
              testing::HasSubstr("variazione maggiore: 19.99 -> 21.99"));
}

TEST_F(ChangingPrices, ThePreviewShowsWhatSinglePrecisionDoes) {
  sql("UPDATE articoli SET prezzo = 2000000100 WHERE ID = 1; DELETE FROM articoli WHERE ID > 1");
  const auto survey = surveyPrices(catalogue, change.selection);
  ASSERT_TRUE(survey);
  const PriceRule rule = ruleOfPercentage(0, false);
  EXPECT_EQ(previewSummary(*survey, previewPrices(*survey, rule), rule),
            "Prezzi da modificare: 1 di 1; variazione maggiore: 200.000,01 -> 200.000,02 (Vaso, Listino 0)");
}

TEST_F(ChangingPrices, AfterAFailureEitherKeepsRowsOrNoneAndTellsIt) {
  std::int64_t calls = 0;
  const std::string before = everything();
  {
    const FailingStore counting;
    EXPECT_EQ(run(), BulkEnd::Done);
    calls = counting.calls();
  }
  const std::string after = everything();
  sql("UPDATE articoli SET prezzo = 199900 WHERE ID = 1; UPDATE articoli SET prezzo = NULL WHERE ID = 2;"
      "UPDATE articoli SET prezzo = 100000 WHERE ID = 3; UPDATE articoli SET prezzo = 50000 WHERE ID = 4");
  ASSERT_EQ(everything(), before);
  for (std::int64_t call = 1; call <= calls; ++call) {
    user.shown.clear();
    BulkEnd end = BulkEnd::Done;
    {
      const FailingStore failing(call);
      end = run();
    }
    EXPECT_EQ(user.shown.size(), 1U) << call;
    EXPECT_NE(end, BulkEnd::Done) << call;
    EXPECT_TRUE(end == BulkEnd::Interrupted || everything() == before) << call;
    sql("UPDATE articoli SET prezzo = 199900 WHERE ID = 1; UPDATE articoli SET prezzo = NULL WHERE ID = 2;"
        "UPDATE articoli SET prezzo = 100000 WHERE ID = 3; UPDATE articoli SET prezzo = 50000 WHERE ID = 4");
  }
  EXPECT_NE(after, before);
}

TEST_F(ChangingPrices, RowsDoneBeforeAFailureStay) {
  FailingStore failing(3);
  failing.onlyFor("UPDATE articoli");
  EXPECT_EQ(run(), BulkEnd::Interrupted);
  EXPECT_EQ(read("SELECT prezzo FROM articoli ORDER BY ID"), "219900\nnull\n100000\n50000\n");
  ASSERT_EQ(user.shown.size(), 1U);
  EXPECT_EQ(user.shown[0].icon, Icon::Critical);
}

/// A catalogue of chance: prices, offers, variants.
class RandomPrices : public ChangingPrices {
 protected:
  void fill(std::mt19937& chance) {
    sql("DELETE FROM articoli; DELETE FROM dettagliop");
    std::string statements = "BEGIN;";
    for (int ID = 1; ID <= 6; ++ID) {
      statements +=
          "INSERT INTO articoli (ID, catID, titolo, prezzo, offertaprezzo, prezzo3, offertaprezzo3, prezzo9,"
          " opzione1, opzione2_3) VALUES (" +
          std::to_string(ID) + ", 'cat00" + std::to_string(upTo(chance, 2)) + "', 'A'";
      for (int i = 0; i < 5; ++i) statements += ", " + randomPrice(chance);
      statements += ", " + std::to_string(upTo(chance, 3)) + ", " + std::to_string(upTo(chance, 3)) + ");";
      statements += "INSERT INTO dettagliop (ID, prezzo, OpID) VALUES (" + std::to_string(ID) + ", " +
                    randomPrice(chance) + ", " + std::to_string(1 + upTo(chance, 2)) + ");";
    }
    sql(statements + "COMMIT");
    change = {};
    change.percentage = std::to_string(upTo(chance, 200) - 100);
    change.whole = upTo(chance, 1) == 1;
    change.selection.offers = upTo(chance, 1) == 1;
    change.selection.variants = upTo(chance, 1) == 1;
    for (const std::size_t list : {0U, 3U, 9U}) change.selection.lists[list] = upTo(chance, 1) == 1;
    if (upTo(chance, 1) == 1) change.selection.department = "cat001";
    user.answers.assign(1, Answer::Yes);
  }
  /// What the preview says will be there, as statements' answers are written.
  std::string foretold(const PriceSurvey& survey, const PriceRule& rule) {
    std::string text;
    for (const SurveyedPrice& price : survey.prices) {
      text += std::to_string(Trasforma(price.before, rule).tenThousandths()) + " ";
    }
    return text;
  }
  static std::string held(const PriceSurvey& survey) {
    std::string text;
    for (const SurveyedPrice& price : survey.prices) {
      text += (price.before ? std::to_string(price.before->tenThousandths()) : "null") + " ";
    }
    return text;
  }
};

TEST_F(RandomPrices, BecomeWhatThePreviewSaidAndUndoRestoresThem) {
  std::mt19937 chance(seed());
  for (int round = 0; round < operationsOf(60); ++round) {
    fill(chance);
    const std::string before = everything();
    const PriceRule rule = ruleOfPercentage(readPercentage(change.percentage).value(), change.whole);
    const auto survey = surveyPrices(catalogue, change.selection);
    ASSERT_TRUE(survey);
    const std::string wanted = foretold(*survey, rule);
    ChangeRecorder recorder(catalogue, [](std::string_view) { return true; });
    ASSERT_EQ(run(), BulkEnd::Done);
    const auto done = surveyPrices(catalogue, change.selection).value();
    EXPECT_EQ(held(done), wanted);
    const std::string after = everything();
    const auto changes = recorder.take();
    ASSERT_TRUE(changes);
    EXPECT_EQ(changes->empty(), previewPrices(*survey, rule).changed.empty());
    ASSERT_TRUE(recorder.revert(*changes));
    EXPECT_EQ(everything(), before);
    ASSERT_TRUE(recorder.repeat(*changes));
    EXPECT_EQ(everything(), after);
  }
}

}  // namespace
}  // namespace kv::test
