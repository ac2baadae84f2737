// Random edits in the dialogs of shipping and variants: Annulla leaves rows, schema and serial numbers as they were,
// and an OK is undone and done again as one step.

#include <gtest/gtest.h>

#include "commerce_shop.h"
#include "platform/files/settings.h"
#include "random_merchant.h"
#include "store/catalogue/table_rollback.h"
#include "store/catalogue/undo_history.h"
#include "support/fixed_clock.h"
#include "support/test_seed.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

const int rounds = operationsOf(60);

class RandomEdits : public CommerceShop {
 protected:
  void SetUp() override {
    copyModules();
    session.languageCount = 4;
    ASSERT_TRUE(sets.bind());
    const auto shown = sets.MostraArticolo(1);
    ASSERT_TRUE(shown && *shown);
    // Answers beyond the list are the defaults, which delete nothing.
    user.answers.assign(20000, Answer::Yes);
  }
  void TearDown() override { sets.release(); }

  /// Every row of all tables but the zones 5 to 8, with the engine's row numbers; the last serial numbers; the schema.
  std::string whole() {
    std::string text;
    auto names =
        checked(session.catalogue.prepare("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"));
    EXPECT_TRUE(names);
    std::vector<std::string> tables;
    for (auto more = names->step(); more && *more; more = names->step()) tables.emplace_back(names->text(0));
    for (const std::string& table : tables) {
      if (table >= "zona5" && table <= "zona8") continue;
      if (table == "articoli" || table == "categorie") continue;  // neither dialog edits them, and they are long
      const bool isSequence = table == "sqlite_sequence";
      addRows(text, "SELECT rowid, * FROM " + table + " ORDER BY " + (isSequence ? "name" : "rowid"), isSequence);
    }
    addRows(text, "SELECT 0, type, name, sql FROM sqlite_master ORDER BY name", false);
    return text;
  }
  void addRows(std::string& text, const std::string& query, bool withoutNumber) {
    auto rows = checked(session.catalogue.prepare(query));
    EXPECT_TRUE(rows) << query;
    for (auto more = rows->step(); more && *more; more = rows->step()) {
      for (int i = withoutNumber ? 1 : 0; i < rows->columnCount(); ++i) text += std::string(rows->text(i)) + "|";
      text += "\n";
    }
  }

  MemorySettings settings;
  FixedClock clock;
  FixedRandom random;
  Environment env{user, settings, clock, random, root.path(), {}};
  CatalogueSets sets{session};
  TableRollback rollback{sets, env};
  ShippingEditor shipping{session, user, ','};
  VariantEditor variants{session, user, ','};
  RandomMerchant merchant{shipping, variants, seed()};
};

TEST_F(RandomEdits, AnnullaOfShippingLeavesEverythingButTheZonesFiveToEight) {
  const std::string before = whole();
  for (int round = 0; round < rounds; ++round) {
    const auto ended = rollback.SalvaTabelleSpedizione([this]() -> Result<bool> {
      for (int n = 1 + merchant.below(5); n > 0; --n) merchant.editShipping();
      return false;
    });
    ASSERT_TRUE(ended) << ended.error().what;
    if (round % 10 == 9) {
      ASSERT_EQ(whole(), before) << round;
    }
  }
}

TEST_F(RandomEdits, AnnullaOfVariantsLeavesEverything) {
  const std::string before = whole();
  for (int round = 0; round < rounds; ++round) {
    const auto ended =
        rollback.SalvaTabelleVarianti("opzione1", [this](const std::string&) -> Result<std::optional<std::int64_t>> {
          for (int n = 1 + merchant.below(5); n > 0; --n) merchant.editVariants();
          return std::optional<std::int64_t>();
        });
    ASSERT_TRUE(ended) << ended.error().what;
    if (round % 10 == 9) {
      ASSERT_EQ(whole(), before) << round;
    }
  }
}

TEST_F(RandomEdits, AnOkIsUndoneAndDoneAgain) {
  UndoHistory history(sets);
  history.begin();
  // Serial numbers once given are not given again, whatever is undone.
  const auto rowsAlone = [this] {
    std::string text;
    for (const char* table : {"opzioni", "dettagliop", "paesi", "pagamento", "zona1", "zona6"}) {
      addRows(text, std::string("SELECT * FROM ") + table + " ORDER BY 1", false);
    }
    return text;
  };
  for (int round = 0; round < operationsOf(15); ++round) {
    const std::string before = rowsAlone();
    const auto done = history.record("Prova", [this, round]() -> Result<> {
      const auto edit = [this, round] {
        for (int n = 1 + merchant.below(5); n > 0; --n)
          round % 2 == 0 ? merchant.editShipping() : merchant.editVariants();
      };
      const auto ended = rollback.SalvaTabelleSpedizione([&edit]() -> Result<bool> {
        edit();
        return true;
      });
      return ended ? Result<>() : Result<>(fail(ended.error()));
    });
    ASSERT_TRUE(done) << done.error().what;
    const std::string after = rowsAlone();
    if (after == before) continue;
    ASSERT_TRUE(history.undo());
    ASSERT_EQ(rowsAlone(), before) << round;
    ASSERT_TRUE(history.redo());
    ASSERT_EQ(rowsAlone(), after) << round;
  }
  history.end();
}

}  // namespace
}  // namespace kv::test
