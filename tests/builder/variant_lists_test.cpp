// Variants as lists of options: the form of one value, and the rows that a build makes of the catalogue.

#include "builder/article/variant_lists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temp_shop.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

std::int64_t number(int value) { return value; }

/// A shop whose one article has the variant 2 in its first slot.
class VariantShop : public TempShop {
 public:
  explicit VariantShop(int languages = 1) : TempShop(languages) {
    sql("UPDATE generale SET nodiff = 1, showsigns = 1");
    department("cat001");
    variant(2, "Taglia");
    article("cat001", {{"opzione1", number(2)}});
  }
  void variant(int id, const std::string& nome) { insert("opzioni", {{"ID", number(id)}, {"nome", nome}}); }
  void value(const Row& fields, int variant = 2) {
    Row row{{"OpID", number(variant)}};
    row.insert(row.end(), fields.begin(), fields.end());
    insert("dettagliop", row);
  }
  std::string list(const std::string& table = "opzioni", int variant = 2) {
    EXPECT_EQ(build(), BuildOutcome::Done);
    return rows("SELECT opzione FROM " + table + " WHERE ID = " + std::to_string(variant));
  }
};

TEST(VariantListsTest, AValueHasPriceWeightCodeAndLabelInItsFixedForm) {
  VariantShop shop;
  shop.value(
      {{"testo", std::string(" Grande ")}, {"codice", std::string(" G1 ")}, {"prezzo", money("12.5")}, {"peso", 0.25}});
  EXPECT_EQ(shop.list(), "<option value=\"<<12.50>>=.25#G1|Taglia: G1 Grande\">Grande ( + EUR <<importo>> )</option>");
}

TEST(VariantListsTest, AValueWithoutACodeHasNoneInValueAndLabel) {
  VariantShop shop;
  shop.value({{"testo", std::string("Grande")}});
  EXPECT_EQ(shop.list(), "<option value=\"<<0.00>>=0#|Taglia: Grande\">Grande</option>");
}

TEST(VariantListsTest, AnEqualSignInACodeIsEncodedInTheValueAndGoneFromTheLabel) {
  VariantShop shop;
  shop.value({{"testo", std::string("x")}, {"codice", std::string("A=1")}});
  EXPECT_EQ(shop.list(), "<option value=\"<<0.00>>=0#A%3D1|Taglia: A1 x\">x</option>");
}

TEST(VariantListsTest, AVariantWithoutValuesGivesARowWithAnEmptyList) {
  VariantShop shop;
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT ID, nomeopzione, opzione FROM opzioni"), "2|Taglia|");
}

TEST(VariantListsTest, AVariantThatIsNotThereGivesARowWithEmptyTexts) {
  VariantShop shop;
  shop.article("cat001", {{"opzione3_9", number(77)}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT ID, nomeopzione, opzione FROM opzioni"), "2|Taglia|\n77||");
}

TEST(VariantListsTest, APriceOfZeroHasNoDifferenceWhateverTheMode) {
  for (const char* settings : {"nodiff = 0, showsigns = 0", "nodiff = 1, showsigns = 0", "nodiff = 1, showsigns = 1"}) {
    VariantShop shop;
    shop.sql(std::string("UPDATE generale SET ") + settings);
    shop.value({{"testo", std::string("x")}, {"prezzo", money("0")}});
    EXPECT_EQ(shop.list(), "<option value=\"<<0.00>>=0#|Taglia: x\">x</option>") << settings;
  }
}

TEST(VariantListsTest, APriceTooSmallForItsDecimalsStillShowsADifference) {
  VariantShop shop;
  shop.sql("UPDATE generale SET decimali1 = 0");
  shop.value({{"testo", std::string("x")}, {"prezzo", money("0.3")}});
  EXPECT_EQ(shop.list(), "<option value=\"<<0>>=0#|Taglia: x\">x ( + EUR <<importo>> )</option>");
}

TEST(VariantListsTest, DifferencesFollowTheTwoSettings) {
  VariantShop shop;
  shop.value({{"testo", std::string("x")}, {"prezzo", money("2")}});
  shop.value({{"testo", std::string("y")}, {"prezzo", money("-2")}});
  const std::string x = "<option value=\"<<2.00>>=0#|Taglia: x\">x", y = "<option value=\"<<-2.00>>=0#|Taglia: y\">y";
  EXPECT_EQ(shop.list(), x + " ( + EUR <<importo>> )</option>" + y + " ( - EUR <<importo>> )</option>");
  shop.sql("UPDATE generale SET showsigns = 0");
  EXPECT_EQ(shop.list(), x + " ( EUR <<importo>> )</option>" + y + " ( - EUR <<importo>> )</option>");
  shop.sql("UPDATE generale SET nodiff = 0");
  EXPECT_EQ(shop.list(), x + "</option>" + y + "</option>");
}

TEST(VariantListsTest, TheDefaultValueIsSelectedAndCarriesAStarInTextAndLabel) {
  VariantShop shop;
  shop.value({{"testo", std::string("x")}, {"selezionato", std::string("1")}});
  EXPECT_EQ(shop.list(), "<option selected value=\"<<0.00>>=0#|Taglia: x *\">x *</option>");
}

TEST(VariantListsTest, AValueOfMarksAloneGivesNoOption) {
  VariantShop shop;
  shop.value({{"testo", std::string("?#=<>\"")}});
  shop.value({{"testo", std::string(" | ")}});
  shop.value({});
  EXPECT_EQ(shop.list(), "");
}

TEST(VariantListsTest, MarksGoFromTheTextAndABarBecomesASpace) {
  VariantShop shop;
  shop.value({{"testo", std::string("<b>2|3</b> \"pollici\"")}});
  EXPECT_THAT(shop.list(), HasSubstr("|Taglia: b2 3/b pollici\">b2 3/b pollici</option>"));
}

TEST(VariantListsTest, TheEndOfAnOptionGoesFromTheLabelInAnyCase) {
  EXPECT_EQ(VariantList().option({"x", "", {}, 0, ""}, "a</OPTION>b</option>"),
            "<option value=\"<<0.00>>=0#|ab: x\">x</option>");
}

TEST(VariantListsTest, ValuesComeInTheOrderOfTheirTable) {
  VariantShop shop;
  shop.value({{"ID", number(9)}, {"testo", std::string("b")}});
  shop.value({{"ID", number(4)}, {"testo", std::string("a")}});
  EXPECT_THAT(shop.list(), HasSubstr(">a</option><option value=\"<<0.00>>=0#|Taglia: b\">b"));
}

TEST(VariantListsTest, ANameEndsBeforeItsFirstBarAndHasNoMarks) {
  VariantShop shop;
  shop.variant(3, "Colore <1>|*2");
  shop.article("cat001", {{"opzione4", number(3)}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT nomeopzione FROM opzioni WHERE ID = 3"), "Colore 1");
}

TEST(VariantListsTest, TheFixedVariantForNoneHasNeitherNameNorValues) {
  VariantShop shop;
  shop.variant(1, "(nessuna)");
  shop.value({{"testo", std::string("x")}}, 1);
  auto reader = VariantReader::open(shop.session.catalogue, FieldRow(), "");
  ASSERT_TRUE(reader.has_value());
  EXPECT_EQ(valueOf(reader->CreaNomeOpzione(1)), "");
  EXPECT_EQ(valueOf(reader->InserisciOpzione(1, "x")), "");
  EXPECT_EQ(valueOf(reader->CreaNomeOpzione(2)), "Taglia");
}

TEST(VariantListsTest, EachLanguageHasItsTableWithItsWords) {
  VariantShop shop(2);
  shop.sql("UPDATE opzioni SET nome_l2 = 'Size'");
  shop.value({{"testo", std::string("Grande")}, {"testo_l2", std::string("Large")}});
  EXPECT_EQ(shop.list("opzioni_l2"), "<option value=\"<<0.00>>=0#|Size: Large\">Large</option>");
  EXPECT_EQ(shop.rows("SELECT nomeopzione FROM opzioni UNION ALL SELECT nomeopzione FROM opzioni_l2"), "Taglia\nSize");
}

TEST(VariantListsTest, ExcludedArticlesCountToo) {
  VariantShop shop;
  shop.variant(3, "Colore");
  shop.article("cat001", {{"opzione2_5", number(3)}, {"fuoricatalogo", true}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT ID FROM opzioni"), "2\n3");
}

TEST(OptionCodesTest, CodesOfVariantsInLaterSlotsAloneAreNotExported) {
  VariantShop shop;
  shop.article("cat001", {{"opzione2", number(3)}, {"opzione4_9", number(4)}, {"opzione1_9", number(5)}});
  for (const int variant : {2, 3, 4, 5}) shop.value({{"codice", " c" + std::to_string(variant) + " "}}, variant);
  shop.value({{"codice", std::string()}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT OpID, codice FROM opcodici ORDER BY OpID"), "2|c2\n5|c5");
}

TEST(OptionCodesTest, NoVariantMeansTheVariantOneAndNotTheNumberZero) {
  VariantShop shop;
  shop.article("cat001", {{"opzione1", number(1)}});
  shop.value({{"codice", std::string("uno")}}, 1);
  shop.value({{"codice", std::string("zero")}}, 0);
  shop.insert("dettagliop", {{"codice", std::string("null")}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT codice FROM opcodici"), "");
  shop.article("cat001", {{"opzione1_3", number(0)}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT codice FROM opcodici"), "zero");
}

}  // namespace
}  // namespace kv::test
