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

TEST(FieldRules, APriceOrAWeightBeyondTheRangeOfMoneyIsClipped) {
  for (const FieldKind kind : {FieldKind::Price, FieldKind::Weight}) {
    EXPECT_EQ(changedText(kind, "999999999999999999", "", ','), "922337203685477,5807");
    EXPECT_EQ(changedText(kind, "12,5", "", ','), "12,5");
  }
}

TEST(FieldRules, TextsRefuseTheBarAndTheSquareBrackets) {
  for (const FieldKind kind : {FieldKind::Code, FieldKind::Heading, FieldKind::Link, FieldKind::DepartmentTitle,
                               FieldKind::ShortText, FieldKind::PlainText, FieldKind::SideBySide}) {
    EXPECT_EQ(typed(kind, "a|b[c]d\xC3\xA8"), "abcd\xC3\xA8");
  }
}

TEST(FieldRules, TextsAreCutWhenTheyAreLeft) {
  const std::string longText(300, 'x');
  EXPECT_EQ(leftField({FieldKind::Code}, longText, "").text.size(), 50U);
  EXPECT_EQ(leftField({FieldKind::Heading}, longText, "").text.size(), 200U);
  EXPECT_EQ(leftField({FieldKind::Link}, longText, "").text.size(), 255U);
  EXPECT_EQ(leftField({FieldKind::DepartmentTitle}, longText, "").text.size(), 100U);
  EXPECT_EQ(leftField({FieldKind::ShortText}, longText, "").text.size(), 50U);
  EXPECT_EQ(leftField({FieldKind::PlainText}, longText, "").text.size(), 300U);
}

TEST(FieldRules, ACutCountsCharactersAndNotBytes) {
  std::string text;
  for (int i = 0; i < 60; ++i) text += "\xC3\xA8";
  EXPECT_EQ(leftField({FieldKind::Code}, text, "").text.size(), 100U);
}

TEST(FieldRules, APercentAbove100Becomes100AndANonNumber0) {
  EXPECT_EQ(changedText(FieldKind::Percent, "101", "", ','), "100");
  EXPECT_EQ(changedText(FieldKind::Percent, "99,5", "", ','), "99,5");
  EXPECT_EQ(leftField({FieldKind::Percent}, "", "5").text, "0");
  EXPECT_EQ(leftField({FieldKind::Percent}, ",", "5").text, "0");
  EXPECT_EQ(leftField({FieldKind::Percent}, "12,5", "5").text, "12,5");
}

TEST(FieldRules, AnAmountGoesBackToTheLastGoodOneAndIsNormalisedWhenLeft) {
  EXPECT_EQ(changedText(FieldKind::Amount, "1,2,3", "1,2", ','), "1,2");
  EXPECT_EQ(leftField({FieldKind::Amount}, "007,50", "").text, "7,5");
  EXPECT_EQ(leftField({FieldKind::Amount}, ",5", "").text, "0,5");
  EXPECT_EQ(leftField({FieldKind::Amount}, "", "12").text, "12");
}

TEST(FieldRules, TheMostArticlesOfAPageAreDigits) {
  EXPECT_EQ(typed(FieldKind::WholeNumber, "1-2x5"), "125");
  EXPECT_FALSE(keyTyped(FieldKind::WholeNumber, ",", ',').accepted);
  EXPECT_EQ(pastedNumber(FieldKind::WholeNumber, "1.250,75", ',').text, "1250");
  EXPECT_EQ(pastedNumber(FieldKind::WholeNumber, "12.7", ',').text, "12");
  EXPECT_EQ(changedText(FieldKind::WholeNumber, "12,7", "", ','), "12");
}

TEST(FieldRules, AnEmptySideBySideBecomesASpace) { EXPECT_EQ(changedText(FieldKind::SideBySide, "", "", ','), " "); }

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
  EXPECT_EQ(typed(FieldKind::Folder, "/www neg+ozio_1\\\xC3\xA8"), "/wwwnegozio_1\\");
  for (const char* key : {"-", ".", "+", " "}) EXPECT_FALSE(keyTyped(FieldKind::Folder, key, ',').accepted) << key;
  EXPECT_EQ(pasted(FieldKind::Folder, "/www.nome.it/cgi-bin", ','), "/www.nome.it/cgi-bin");
}

TEST(FieldRules, ALeftFieldIsStoredAsItsColumnWantsIt) {
  EXPECT_EQ(leftField({FieldKind::PlainText, ColumnForm::Lines}, "a\nb", "").value, Value(std::string("a\r\nb")));
  EXPECT_EQ(leftField({FieldKind::PlainText, ColumnForm::Flag}, "1", "").value, Value(true));
  EXPECT_EQ(leftField({FieldKind::PlainText, ColumnForm::Index}, "2", "").value, Value(std::int64_t{2}));
  EXPECT_EQ(leftField({FieldKind::Weight, ColumnForm::Number}, "1,5", "").value, Value(std::string("1.5")));
  EXPECT_EQ(leftField({FieldKind::Weight, ColumnForm::Number}, " ", "").value, Value(Null{}));
}

TEST(FieldRules, WhatIsNoNumberIsStoredAs0WhereTheFieldSaysSo) {
  const FieldText left = leftField({FieldKind::Price, ColumnForm::Number, true}, "x", "5");
  EXPECT_EQ(left.text, "x");
  EXPECT_EQ(left.value, Value(std::int64_t{0}));
  EXPECT_FALSE(left.valid);
}

}  // namespace
}  // namespace kv::test
