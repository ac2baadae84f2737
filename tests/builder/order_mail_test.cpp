// The confirmation mail as text of a PHP or Perl script: what is escaped, where lines end, what the tags become.

#include "builder/checkout/order_mail.h"

#include <gtest/gtest.h>

namespace kv::test {
namespace {

TEST(OrderMailTest, AnEmptyTextGivesNothing) {
  EXPECT_EQ(CreaMail("", MailForm::Php), "");
  EXPECT_EQ(CreaMail("", MailForm::Perl), "");
}

TEST(OrderMailTest, EachLineIsAppendedToTheMailAfterOneMoreLineEnd) {
  EXPECT_EQ(CreaMail("Grazie.\r\n\r\nA presto", MailForm::Php),
            "\r\n"
            "$info .= \"Grazie.\\r\\n\";\r\n"
            "$info .= \"\\r\\n\";\r\n"
            "$info .= \"A presto\\r\\n\";\r\n");
}

TEST(OrderMailTest, ThePerlFormEndsItsLinesWithALineFeedAlone) {
  EXPECT_EQ(CreaMail("Grazie.\r\nA presto", MailForm::Perl),
            "\r\n"
            "$info .= \"Grazie.\\n\";\r\n"
            "$info .= \"A presto\\n\";\r\n");
}

TEST(OrderMailTest, ALineEndAtTheEndOpensNoFurtherLine) {
  EXPECT_EQ(CreaMail("Grazie.\r\n", MailForm::Php), "\r\n$info .= \"Grazie.\\r\\n\";\r\n");
}

TEST(OrderMailTest, OnlyCarriageReturnAndLineFeedTogetherEndALine) {
  EXPECT_EQ(CreaMail("a\nb\rc", MailForm::Php), "\r\n$info .= \"a\nb\rc\\r\\n\";\r\n");
}

TEST(OrderMailTest, AQuoteStaysValidPhp) {
  EXPECT_EQ(CreaMail("la \"Bottega\" a@b.it", MailForm::Php), "\r\n$info .= \"la \\\"Bottega\\\" a@b.it\\r\\n\";\r\n");
}

TEST(OrderMailTest, ThePerlFormHasApostrophesForQuotesAndSoNoneThatIsEscaped) {
  EXPECT_EQ(CreaMail("la \"Bottega\" a@b.it", MailForm::Perl), "\r\n$info .= \"la 'Bottega' a\\@b.it\\n\";\r\n");
}

TEST(OrderMailTest, TagsBecomeWhatThePhpScriptKnowsOfTheOrder) {
  EXPECT_EQ(CreaMail("Ordine <<codice>> di <<importo>>:\r\n<<riepilogo>>", MailForm::Php),
            "\r\n"
            "$info .= \"Ordine \" . $codice . \" di \" . $mail_valuta . $totale_lordo . \":\\r\\n\";\r\n"
            "$info .= \"\" . $riepilogo . \"\\r\\n\";\r\n");
}

TEST(OrderMailTest, TagsBecomeWhatThePerlScriptKnowsOfTheOrder) {
  EXPECT_EQ(CreaMail("Ordine <<codice>> di <<importo>>:\r\n<<riepilogo>>", MailForm::Perl),
            "\r\n"
            "$info .= \"Ordine \".$FORM{'Codice_Ordine'}.\" di \".$mail_valuta.$FORM{'Totale_Ordine'}.\":\\n\";\r\n"
            "$info .= \"\".$FORM{'Riepilogo'}.\"\\n\";\r\n");
}

TEST(OrderMailTest, TagsAreFoundInAnyCaseAndEveryTime) {
  EXPECT_EQ(CreaMail("<<IMPORTO>> e <<Importo>>", MailForm::Php),
            "\r\n$info .= \"\" . $mail_valuta . $totale_lordo . \" e \" . $mail_valuta . $totale_lordo . "
            "\"\\r\\n\";\r\n");
}

TEST(OrderMailTest, ATagAcrossTwoLinesStaysAsItIs) {
  EXPECT_EQ(CreaMail("<<imp\r\norto>>", MailForm::Php),
            "\r\n$info .= \"<<imp\\r\\n\";\r\n$info .= \"orto>>\\r\\n\";\r\n");
}

TEST(OrderMailTest, PerlTextHasItsAtSignsEscapedAndNoQuotes) {
  EXPECT_EQ(MakePerl("\"Bottega\" <ordini@bottega.it>"), "'Bottega' <ordini\\@bottega.it>");
  EXPECT_EQ(MakePerl(""), "");
}

}  // namespace
}  // namespace kv::test
