// What typing, changing and leaving do to a field.

#include "shell/workbench/fields/field_rules.h"

#include <gtest/gtest.h>

namespace kv::test {
namespace {

std::string typed(FieldKind kind, std::string_view keys, char separator = ',') { return pasted(kind, keys, separator); }

TEST(FieldRules, AStarInAPriceTypesThreeZeros) {
  EXPECT_EQ(typed(FieldKind::Price, "12*"), "12000");
  EXPECT_EQ(typed(FieldKind::Weight, "1*"), "1000");
  EXPECT_EQ(typed(FieldKind::Percent, "1*"), "1");
}

TEST(FieldRules, APriceTakesDigitsAndTheSeparatorOfTheLocaleAlone) {
  EXPECT_EQ(typed(FieldKind::Price, "1.234,50 EUR"), "1234,50");
  EXPECT_EQ(typed(FieldKind::Price, "1,234.50", '.'), "1234.50");
}

TEST(FieldRules, APriceBeyondTheRangeOfMoneyIsClipped) {
  EXPECT_EQ(changedText(FieldKind::Price, "999999999999999999", "", ','), "922337203685477,5807");
  EXPECT_EQ(changedText(FieldKind::Price, "12,5", "", ','), "12,5");
}

TEST(FieldRules, TextsRefuseTheBarAndTheSquareBrackets) {
  for (const FieldKind kind : {FieldKind::Code, FieldKind::Heading, FieldKind::Link, FieldKind::DepartmentTitle,
                               FieldKind::ShortText, FieldKind::PlainText, FieldKind::SideBySide}) {
    EXPECT_EQ(typed(kind, "a|b[c]d\xC3\xA8"), "abcd\xC3\xA8");
  }
}

TEST(FieldRules, TextsAreCutWhenTheyAreLeft) {
  const std::string longText(300, 'x');
  EXPECT_EQ(leftText(FieldKind::Code, longText, "", ',').size(), 50U);
  EXPECT_EQ(leftText(FieldKind::Heading, longText, "", ',').size(), 200U);
  EXPECT_EQ(leftText(FieldKind::Link, longText, "", ',').size(), 255U);
  EXPECT_EQ(leftText(FieldKind::DepartmentTitle, longText, "", ',').size(), 100U);
  EXPECT_EQ(leftText(FieldKind::ShortText, longText, "", ',').size(), 50U);
  EXPECT_EQ(leftText(FieldKind::PlainText, longText, "", ',').size(), 300U);
}

TEST(FieldRules, ACutCountsLettersAndNotBytes) {
  std::string text;
  for (int i = 0; i < 60; ++i) text += "\xC3\xA8";
  EXPECT_EQ(leftText(FieldKind::Code, text, "", ',').size(), 100U);
}

TEST(FieldRules, APercentAbove100Becomes100AndANonNumber0) {
  EXPECT_EQ(changedText(FieldKind::Percent, "101", "", ','), "100");
  EXPECT_EQ(changedText(FieldKind::Percent, "99,5", "", ','), "99,5");
  EXPECT_EQ(leftText(FieldKind::Percent, "", "5", ','), "0");
  EXPECT_EQ(leftText(FieldKind::Percent, ",", "5", ','), "0");
  EXPECT_EQ(leftText(FieldKind::Percent, "12,5", "5", ','), "12,5");
}

TEST(FieldRules, AnAmountGoesBackToTheLastGoodOneAndIsNormalisedWhenLeft) {
  EXPECT_EQ(changedText(FieldKind::Amount, "1,2,3", "1,2", ','), "1,2");
  EXPECT_EQ(leftText(FieldKind::Amount, "007,50", "", ','), "7,5");
  EXPECT_EQ(leftText(FieldKind::Amount, ",5", "", ','), "0,5");
  EXPECT_EQ(leftText(FieldKind::Amount, "", "12", ','), "12");
}

TEST(FieldRules, TheMostArticlesOfAPageAreDigits) {
  EXPECT_EQ(typed(FieldKind::WholeNumber, "1-2x5"), "125");
  EXPECT_FALSE(keyTyped(FieldKind::WholeNumber, ",", ',').accepted);
  EXPECT_EQ(pasted(FieldKind::WholeNumber, "1.250,75", ','), "1250");
  EXPECT_EQ(changedText(FieldKind::WholeNumber, "12,7", "", ','), "12");
}

TEST(FieldRules, AnEmptySideBySideBecomesABlank) { EXPECT_EQ(changedText(FieldKind::SideBySide, "", "", ','), " "); }

TEST(FieldRules, TheOtherRateIsOneThroughTheValueAndAZeroIsSkipped) {
  EXPECT_EQ(reverseRate("4", ','), "0,25");
  EXPECT_EQ(reverseRate("1,95583", ','), "0,511292");
  EXPECT_EQ(reverseRate("0", ','), "");
  EXPECT_EQ(reverseRate("x", ','), "");
}

TEST(FieldRules, TheEuroSignBringsItsNote) {
  EXPECT_EQ(currencySignNote("EUR"), "");
  EXPECT_EQ(currencySignNote("\xE2\x82\xAC"),
            "Attenzione: il carattere \"\xE2\x82\xAC\" non è supportato da tutti i browser e dalle e-mail,\n"
            "e potrebbe quindi creare problemi.\n\n"
            "Si consiglia di utilizzare invece la notazione estesa \"Euro\" o l'abbreviazione ufficiale \"EUR\".");
}

TEST(FieldRules, AFolderTakesLettersDigitsUnderlinesAndSlashes) {
  EXPECT_EQ(typed(FieldKind::Folder, "/www neg-ozio_1\\\xC3\xA8"), "/wwwnegozio_1\\");
}

}  // namespace
}  // namespace kv::test
