// Imports of chance: any source, any options, any catalogue. What is undone is as it was, what is imported again
// changes nothing, and the preview has said what was written.
#include <random>

#include "import/accounting_shop.h"
#include "support/jet_samples.h"
#include "support/test_seed.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

constexpr unsigned importShares = 4;  // parts of the imports, each a case of its own

class AccountingOfChance : public AccountingShop, public ::testing::WithParamInterface<unsigned> {
 protected:
  AccountingOfChance() : sets(session), history(sets) {
    session.languageCount = 1;
    EXPECT_TRUE(sets.bind());
    request.path = root / "orsa.mdb";
  }
  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(chance); }

  /// A source, a catalogue that knows some of its rows, and options.
  void fillByChance(unsigned number) {
    chance.seed(number);
    // One transaction: each row alone would wait for the disk.
    ASSERT_TRUE(session.catalogue.begin());
    JetTable departments{"Categoria", {{"Id", JetType::Long}, {"Nome", JetType::Text}}, {}, {}};
    for (std::int64_t i = 0; i <= upTo(8); ++i) {
      departments.rows.push_back({i, upTo(5) == 0 ? Value(Null{}) : Value("Città " + std::to_string(i))});
    }
    const JetTable articles = chanceArticles(number, static_cast<std::size_t>(upTo(60)));
    const auto version = upTo(1) == 0 ? JetVersion::Jet3 : JetVersion::Jet4;
    ASSERT_TRUE(writeBytes(request.path, jetFile(version, {departments, articles})));
    sql("DELETE FROM articoli; DELETE FROM categorie;"
        "INSERT INTO categorie (ID, titolo, genitore, livello, ordinamento) VALUES ('cat001', 'Mio', '###', 1, 1),"
        " ('dgf1', 'Preso', 'cat001', 2, 1)");
    for (const auto& row : articles.rows) {
      if (upTo(3) != 0 || isNull(row[2])) continue;
      auto insert =
          session.catalogue.prepare("INSERT INTO articoli (codice, titolo, catID) VALUES (?1, 'Mio', 'dgf1')");
      ASSERT_TRUE(insert);
      const std::string code = asText(row[2]);
      insert->bind(1, code);
      ASSERT_TRUE(insert->execute());
    }
    ASSERT_TRUE(session.catalogue.commit());
    request.variant = accountingVariants()[upTo(1) == 0 ? 0 : 3];
    AccountingOptions options;
    options.mark = upTo(1) == 0;
    options.price = 1 + upTo(1);
    options.offer = upTo(2);
    options.addVat = upTo(1) == 0;
    options.update = upTo(2) != 0;
    options.backup = false;
    options.listino = upTo(9);
    for (bool& one : options.visible) one = upTo(2) != 0;
    request.line = accountingLine(options, request.variant.generation);
    request.department = upTo(1) == 0 ? "cat001" : "";
  }
  std::int64_t count(const std::string& table) {
    return asInteger(valueOf(session.catalogue.scalar("SELECT COUNT(*) FROM " + table)));
  }
  AccountingEnd recorded() {
    return recordedImport(history, [this] { return import(); });
  }

  std::mt19937 chance;
  CatalogueSets sets;
  UndoHistory history;
};

TEST_P(AccountingOfChance, IsUndoneToEqualRowsAndDoneAgainToEqualRows) {
  for (unsigned i = GetParam(); i < seeds(100); i += importShares) {
    fillByChance(seed() + i);
    history.begin();
    const std::string before = allRows();
    ASSERT_EQ(recorded(), AccountingEnd::Done) << "shop " << seed() + i << ::testing::PrintToString(user.texts());
    const std::string after = allRows();
    if (after != before) {
      ASSERT_TRUE(history.undo());
      EXPECT_EQ(allRows(), before) << "shop " << seed() + i;
      ASSERT_TRUE(history.redo());
      EXPECT_EQ(allRows(), after) << "shop " << seed() + i;
    }
    history.end();
  }
}

TEST_P(AccountingOfChance, ImportedAgainChangesNothingInEitherMode) {
  for (unsigned i = GetParam(); i < seeds(100); i += importShares) {
    fillByChance(seed() + i);
    ASSERT_EQ(import(), AccountingEnd::Done);
    const std::string before = allRows();
    ASSERT_EQ(import(), AccountingEnd::Done);
    EXPECT_EQ(allRows(), before) << "shop " << seed() + i;
    request.line[4] = '0';
    ASSERT_EQ(import(), AccountingEnd::Done);
    EXPECT_EQ(allRows(), before) << "shop " << seed() + i;
  }
}

TEST_P(AccountingOfChance, WritesWhatThePreviewSaid) {
  for (unsigned i = GetParam(); i < seeds(100); i += importShares) {
    fillByChance(seed() + i);
    const auto plan = previewAccounting(session, settings, request);
    ASSERT_TRUE(plan) << plan.error().what;
    const std::int64_t departments = count("categorie"), articles = count("articoli");
    ASSERT_EQ(import(), AccountingEnd::Done);
    EXPECT_EQ(count("categorie") - departments, static_cast<std::int64_t>(plan->countDepartments(RowFate::New)));
    EXPECT_EQ(count("articoli") - articles, static_cast<std::int64_t>(plan->countArticles(RowFate::New)));
    EXPECT_LE(count("articoli WHERE titolo <> 'Mio'"),
              static_cast<std::int64_t>(plan->countArticles(RowFate::New) + plan->countArticles(RowFate::Changed)));
  }
}

// Suites of their own, which run side by side.
INSTANTIATE_TEST_SUITE_P(First, AccountingOfChance, ::testing::Values(0U));
INSTANTIATE_TEST_SUITE_P(Second, AccountingOfChance, ::testing::Values(1U));
INSTANTIATE_TEST_SUITE_P(Third, AccountingOfChance, ::testing::Values(2U));
INSTANTIATE_TEST_SUITE_P(Fourth, AccountingOfChance, ::testing::Values(3U));

}  // namespace
}  // namespace kv::test
