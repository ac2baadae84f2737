// The pages that end an order: one for each active payment method, with the module's descriptor in it and the module's
// scripts beside it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::string builtMessage() {
  return "Creazione del negozio terminata. Aggiornare il sito per rendere effettive le modifiche.";
}

class PaymentPagesTest : public ::testing::Test {
 protected:
  PaymentPagesTest() {
    shop.templateFile("thankyou.htm", "<html><<1-metodo_pagamento>>:<<1-thankyou>>:<<1-java_PGAction>></html>");
  }
  // The lines of the list of files that follow a page's own, up to the next page.
  std::vector<std::string> linesAfter(const std::string& page) const {
    const auto lines = shop.fileList();
    auto line = std::find(lines.begin(), lines.end(), "#" + shop.session.onlineFolder + "/" + page);
    std::vector<std::string> found;
    if (line == lines.end()) return {"(missing)"};
    for (++line; line != lines.end() && line->find(".php") != std::string::npos &&
                 line->find("thankyou") == std::string::npos && line->find("/scripts/") == std::string::npos;
         ++line) {
      found.push_back(line->substr(line->rfind('/') + 1));
    }
    return found;
  }

  TempShop shop;
};

TEST_F(PaymentPagesTest, ThankYouPagesCountActiveMethodsOnly) {
  shop.sql(
      "UPDATE pagamento SET metodo1='A', attivo1=0, metodo2='B', attivo2=1, nome2='Due', metodo4='D', attivo4=1, "
      "nome4='Quattro'");
  shop.shopFile("code/B.kpg", "testo B");
  shop.shopFile("code/D.kpg", "testo D");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("thankyou1.php"), HasSubstr("<html>Due:testo B:</html>"));
  EXPECT_THAT(shop.page("thankyou2.php"), HasSubstr("<html>Quattro:testo D:</html>"));
  EXPECT_FALSE(shop.hasPage("thankyou3.php"));
  EXPECT_FALSE(shop.hasPage("thankyou.tmp"));
  EXPECT_FALSE(shop.hasPage("thankyou.php"));
}

TEST_F(PaymentPagesTest, TagsWithinADescriptorAreExpandedEvenAtItsVeryStart) {
  shop.sql("UPDATE pagamento SET metodo1='B', attivo1=1");
  shop.shopFile("code/B.kpg", "<<1-negozio>> <<4-pay_ok>> <<1-nonesiste>>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("thankyou1.php"), HasSubstr(":Bottega ok italiano <<1-nonesiste>>:"));
}

TEST_F(PaymentPagesTest, ATextOfTheShopDoesNotEndTheTextBlockOfADescriptor) {
  shop.sql(
      "UPDATE pagamento SET metodo1='B', attivo1=1;"
      "UPDATE generale SET contrassegno='<b>Si paga</b>' || char(13, 10) || 'KORVANE_ISTRUZIONI' || char(13, 10) || "
      "'); x('");
  shop.shopFile("code/B.kpg",
                "<?php f(<<<'KORVANE_ISTRUZIONI'\r\n<<1-testo_contrassegno>>\r\nKORVANE_ISTRUZIONI\r\n); ?>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("thankyou1.php"),
              HasSubstr(":<?php f(<<<'KORVANE_ISTRUZIONI_1'\r\n<b>Si paga</b>\r\nKORVANE_ISTRUZIONI\r\n); x(\r\n"
                        "KORVANE_ISTRUZIONI_1\r\n); ?>:"));
}

TEST_F(PaymentPagesTest, AMissingDescriptorIsToldAndThePageIsBuiltAllTheSame) {
  shop.sql("UPDATE pagamento SET metodo3='Cilme', attivo3=1, nome3='Tre'");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("thankyou1.php"), HasSubstr("<html>Tre::</html>"));
  EXPECT_THAT(shop.user.texts(), ElementsAre("Impossibile trovare il file 'Cilme.kpg'", builtMessage()));
  EXPECT_EQ(shop.user.shown[0].icon, Icon::Exclamation);
}

TEST_F(PaymentPagesTest, AMethodWithoutAModuleHasAnEmptyTextAndNoMessage) {
  shop.sql("UPDATE pagamento SET attivo1=1, nome1='Uno'");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("thankyou1.php"), HasSubstr("<html>Uno::</html>"));
  EXPECT_THAT(shop.user.texts(), ElementsAre(builtMessage()));
}

TEST_F(PaymentPagesTest, TheFormPostsToTheScriptOfTheModuleInTheLanguage) {
  TempShop two(2);
  two.templateFile("thankyou.htm", "<html><<1-metodo_pagamento>>:<<1-java_PGAction>></html>");
  two.sql("UPDATE pagamento SET metodo1='M', attivo1=1, nome1='Carta', nome1_l2='Card'");
  two.shopFile("code/M.kpg", "x");
  two.shopFile("code/M/conf.ini", "mid=a=b\r\naction=vai\r\n");
  ASSERT_EQ(two.build(), BuildOutcome::Done);
  EXPECT_THAT(two.page("thankyou1.php"), HasSubstr("<html>Carta:vai.php</html>"));
  EXPECT_THAT(two.page("thankyou1_l2.php"), HasSubstr("<html>Card:vai_l2.php</html>"));
}

TEST_F(PaymentPagesTest, TheScriptsOfAModuleReachTheSiteWithTheirTagsExpanded) {
  shop.sql("UPDATE pagamento SET metodo1='Banca Sella', attivo1=1");
  shop.shopFile("code/Banca Sella.kpg", "x");
  shop.shopFile("code/Banca Sella/conf.ini", "php(default)=gestpay\r\nphp=s2s\r\nphp(sel)=scelta\r\nmid=1\r\n");
  shop.shopFile("code/Banca Sella/gestpay.php", "<?php // <<1-negozio>> ?>");
  shop.shopFile("code/Banca Sella/s2s.php", "<?php // <<4-pay_ok>> ?>");
  shop.shopFile("code/Banca Sella/scelta.php", "<?php ?>");
  shop.shopFile("code/Banca Sella/resta.php", "<?php ?>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.page("gestpay.php"), "<?php // Bottega ?>\r\n");
  EXPECT_EQ(shop.page("s2s.php"), "<?php // ok italiano ?>\r\n");
  EXPECT_FALSE(shop.hasPage("resta.php"));
  EXPECT_THAT(linesAfter("thankyou1.php"), ElementsAre("gestpay.php", "s2s.php", "scelta.php"));
}

TEST_F(PaymentPagesTest, TheScriptsOfAModuleComeInEveryLanguage) {
  TempShop two(2);
  two.templateFile("thankyou.htm", "<html></html>");
  two.sql("UPDATE pagamento SET metodo1='M', attivo1=1");
  two.shopFile("code/M.kpg", "x");
  two.shopFile("code/M/conf.ini", "php=esito\r\n");
  two.shopFile("code/M/esito.php", "<?php include \"funcs<<1-IDlingua>>.php\"; ?>");
  ASSERT_EQ(two.build(), BuildOutcome::Done);
  EXPECT_EQ(two.page("esito.php"), "<?php include \"funcs.php\"; ?>\r\n");
  EXPECT_EQ(two.page("esito_l2.php"), "<?php include \"funcs_l2.php\"; ?>\r\n");
}

TEST_F(PaymentPagesTest, AScriptThatFailsIsToldAndTheOthersFollow) {
  shop.sql("UPDATE pagamento SET metodo1='M', attivo1=1");
  shop.shopFile("code/M.kpg", "x");
  shop.shopFile("code/M/conf.ini", "php=rotto\r\nphp=manca\r\nphp=../../fuori\r\nphp=buono\r\n");
  shop.shopFile("code/M/rotto.php", "<?php // <<1-negozio ?>");
  shop.shopFile("code/M/buono.php", "<?php ?>");
  shop.shopFile("fuori.php", "<?php ?>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.user.texts(),
              ElementsAre("Errore nell'elaborazione del file rotto.php",
                          "Il file manca.php non è presente nel template selezionato.\n"
                          "Selezionare un altro template per il sito o un altro modello per i reparti.",
                          "Errore nell'elaborazione del file manca.php",
                          "Errore nell'elaborazione del file ../../fuori.php", builtMessage()));
  EXPECT_TRUE(shop.hasPage("buono.php"));
  EXPECT_THAT(linesAfter("thankyou1.php"), ElementsAre("buono.php"));
  EXPECT_THAT(shop.fileList(), Not(Contains(HasSubstr("fuori"))));
}

TEST_F(PaymentPagesTest, AnInactiveMethodBringsNoScripts) {
  shop.sql("UPDATE pagamento SET metodo1='M', attivo1=0");
  shop.shopFile("code/M/conf.ini", "php=esito\r\n");
  shop.shopFile("code/M/esito.php", "<?php ?>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_FALSE(shop.hasPage("esito.php"));
}

TEST_F(PaymentPagesTest, TheTagsOfAMethodAreEmptyOnEveryOtherPage) {
  shop.sql("UPDATE pagamento SET metodo1='M', attivo1=1, nome1='Carta'");
  shop.shopFile("code/M.kpg", "x");
  shop.shopFile("code/M/conf.ini", "action=vai\r\n");
  shop.templateFile("ultima.htm", "<html>[<<1-thankyou>><<1-java_PGAction>><<1-metodo_pagamento>>]</html>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("ultima.php"), HasSubstr("<html>[]</html>"));
}

TEST_F(PaymentPagesTest, PaymentMessagesGiveTwoPagesFromOneTemplate) {
  shop.templateFile("paymsg.htm", "<html><<1-paymsg>></html>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("payok.php"), HasSubstr("<html>ok italiano</html>"));
  EXPECT_THAT(shop.page("payerr.php"), HasSubstr("<html>ko</html>"));
}

}  // namespace
}  // namespace kv::test
