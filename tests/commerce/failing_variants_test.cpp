// Every routine of the variant editor with each call of the store failing in its turn: variants and options are as
// before, the user is told, and the next try works.
#include <functional>

#include "commerce/variants/variant_editor.h"
#include "commerce_shop.h"
#include "store/schema/schema.h"
#include "support/failing_store.h"

namespace kv::test {
namespace {

constexpr std::int64_t triedVariant = 2;  // "Smalto" of the model shop, with four options

struct TriedRoutine {
  const char* name;
  std::function<bool(VariantEditor&)> run;
};

std::int64_t firstOption(VariantEditor& editor) {
  const auto rows = editor.options(triedVariant);
  return rows.empty() ? 0 : rows.front().ID;
}

std::vector<TriedRoutine> routines() {
  using E = VariantEditor&;
  return {{"Renamed", [](E editor) { return editor.rename(triedVariant, "Vernice"); }},
          {"Added", [](E editor) { return editor.addVariant().has_value(); }},
          {"Deleted", [](E editor) { return editor.deleteVariant(triedVariant); }},
          {"Duplicated", [](E editor) { return editor.duplicateVariant(triedVariant).has_value(); }},
          {"OptionAdded", [](E editor) { return editor.addOption(triedVariant).has_value(); }},
          {"OptionsPasted", [](E editor) { return editor.pasteOptions(triedVariant, "A\tuno\t1\nB\tdue\t2\n"); }},
          {"Accepted", [](E editor) {
             editor.settings = {true, true};
             return editor.accept();
           }}};
}

class FailingVariants : public CommerceShop {
 protected:
  void SetUp() override {
    sql("UPDATE generale SET nodiff = 0, showsigns = 0;"
        "CREATE TEMP TABLE variants AS SELECT * FROM opzioni; CREATE TEMP TABLE options AS SELECT * FROM dettagliop");
    for (int listino = 0; listino < listini; ++listino) {
      for (int slot = 1; slot <= 4; ++slot) sql("UPDATE articoli SET " + variantColumn(slot, listino) + " = NULL");
    }
  }
  void restore() {
    sql("DELETE FROM opzioni; INSERT INTO opzioni SELECT * FROM variants;"
        "DELETE FROM dettagliop; INSERT INTO dettagliop SELECT * FROM options;"
        "UPDATE generale SET nodiff = 0, showsigns = 0");
  }
  std::string stored() {
    return field("SELECT group_concat(ID || '|' || COALESCE(nome, '')) FROM opzioni") + "\n" +
           field(
               "SELECT group_concat(ID || '|' || OpID || '|' || COALESCE(codice, '') || '|' || COALESCE(testo, '') || "
               "'|' || COALESCE(prezzo, '') || COALESCE(selezionato, '')) FROM dettagliop") +
           "\n" + field("SELECT nodiff || showsigns FROM generale");
  }
  void failEverywhere(const std::function<bool(VariantEditor&)>& run) {
    const std::string before = stored();
    std::int64_t call = 0;
    for (bool hasFailed = true; hasFailed && !HasFailure();) {
      SCOPED_TRACE("call " + std::to_string(++call));
      user.answers = {Answer::Yes};
      user.shown.clear();
      FailingStore store(call);
      const bool done = run(editor);
      hasFailed = store.hasFailed();
      setStatementGate(nullptr);
      EXPECT_TRUE(done || hasFailed);
      // A failure that a cell has met before is told once; its mark says it again.
      EXPECT_TRUE(done || !user.shown.empty() || !editor.failure().empty());
      EXPECT_EQ(stored() == before, !done);
      // A list that was read in part is enough where it holds the row: the next call has the rows again, too.
      if (done) restore();
    }
    EXPECT_GT(call, 1);
  }

  VariantEditor editor{session, user, ','};
};

class FailingVariantsTest : public FailingVariants, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(FailingVariantsTest, StayAsTheyAreWhicheverCallOfTheStoreFails) { failEverywhere(routines()[GetParam()].run); }

INSTANTIATE_TEST_SUITE_P(EachOf, FailingVariantsTest, ::testing::Range(std::size_t{0}, routines().size()),
                         [](const auto& tried) { return routines()[tried.param].name; });

TEST_F(FailingVariants, OptionsStayAsTheyAreWhicheverCallOfTheStoreFails) {
  const std::int64_t ID = firstOption(editor);
  const std::int64_t other = editor.options(triedVariant).back().ID;
  failEverywhere([&](VariantEditor& each) { return each.setOption(ID, OptionCell::Prezzo, "12,5"); });
  failEverywhere([&](VariantEditor& each) { return each.markOption(triedVariant, other); });
  failEverywhere([&](VariantEditor& each) { return each.deleteOption(ID); });
}

}  // namespace
}  // namespace kv::test
