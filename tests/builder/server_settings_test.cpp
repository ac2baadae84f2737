// What the scripts of the server are told of the shop, byte by byte, and the pages and scripts that receive it.

#include "builder/checkout/server_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "support/temp_shop.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class ServerSettingsTest : public ::testing::Test {
 protected:
  std::string globals() {
    auto query = shop.session.catalogue.prepare("SELECT * FROM generale").value();
    EXPECT_TRUE(query.step().value_or(false));
    const FieldRow generale(query);
    return phpGlobals(generale, CurrencyForm(generale), shopFactor(generale.text("sconto")),
                      shop.applicationFolder() + "/template/prova");
  }
  // The text of one tag as a page of the shop shows it.
  std::string tag(const std::string& name) {
    shop.templateFile("index.htm", "[<<1-" + name + ">>]");
    EXPECT_EQ(shop.build(), BuildOutcome::Done);
    const std::string page = shop.page("index.php");
    const auto start = page.find('[') + 1;
    return page.substr(start, page.rfind(']') - start);
  }
  void set(const std::string& column, std::string_view value) {
    auto update = valueOf(shop.session.catalogue.prepare("UPDATE generale SET " + column + " = ?"));
    update.bind(1, value);
    EXPECT_TRUE(update.execute());
  }

  TempShop shop;
};

TEST_F(ServerSettingsTest, APlainShopHasTheBlockWithoutItsTwoOptionalLines) {
  EXPECT_EQ(globals(),
            "$ivacompresa = 0;\r\n"
            "$visdec = array(1,1, 2);\r\n"
            "$vissconto = 0;\r\n"
            "$valuta = array(\"EUR \",\"USD \");\r\n"
            "$cambio = 0;\r\n"
            "$notazione = 0;\r\n"
            "$regobbl = 0;\r\n"
            "$visofferta = \"\";\r\n"
            "$visnovita = \"<img src=\\\"kvan_novita.gif\\\">\";\r\n"
            "$scontoperc = array(1,1,1,1,1,1,1,1,1,1);\r\n"
            "$scontoimp = array(0,0,0,0,0,0,0,0,0,0);\r\n");
}

TEST_F(ServerSettingsTest, AShopWithEverythingOnHasEachLineInItsOrder) {
  ASSERT_TRUE(writeBytes(shop.applicationFolder() + "/template/prova/kvan_offerta.gif", onePixelGif(1, 2, 3)));
  shop.sql(
      "UPDATE generale SET ivacompresa=1, decimali1=0, decimali2=1, vis_sconto=1, usa_cambio=1, cambio=1936.27, "
      "notazione=1, regobbl=1, regprices=1, subtitleincart=1, vis_offerta=1, scimp=10, scimp9=100");
  shop.update("generale", {{"importo", money("100.5")}, {"importo9", money(".25")}});
  EXPECT_EQ(globals(),
            "$ivacompresa = 1;\r\n"
            "$visdec = array(0,1, 2);\r\n"
            "$vissconto = 1;\r\n"
            "$valuta = array(\"EUR \",\"USD \");\r\n"
            "$cambio =  1936.27;\r\n"
            "$notazione = 1;\r\n"
            "$regobbl = 1;\r\n"
            "$regpr = 1;\r\n"
            "$subtitleincart = 1;\r\n"
            "$visofferta = \"<img src=\\\"kvan_offerta.gif\\\" height=\\\"1\\\" width=\\\"1\\\">\";\r\n"
            "$visnovita = \"<img src=\\\"kvan_novita.gif\\\">\";\r\n"
            "$scontoperc = array(.9,1,1,1,1,1,1,1,1,0);\r\n"
            "$scontoimp = array(100.5,0,0,0,0,0,0,0,0,.25);\r\n");
}

TEST_F(ServerSettingsTest, TheRateHasTwoSpacesBeforeItAndNoneTooManyWhenItIsOff) {
  shop.sql("UPDATE generale SET usa_cambio=1, cambio=1");
  EXPECT_THAT(globals(), HasSubstr("$cambio =  1;\r\n"));
  shop.sql("UPDATE generale SET usa_cambio=0");
  EXPECT_THAT(globals(), HasSubstr("$cambio = 0;\r\n"));
}

TEST_F(ServerSettingsTest, TheShopsDiscountIsInEachFactor) {
  shop.sql("UPDATE generale SET sconto=10, scimp2=20");
  EXPECT_THAT(globals(), HasSubstr("$scontoperc = array(.9,.9,.72,.9,.9,.9,.9,.9,.9,.9);\r\n"));
}

TEST_F(ServerSettingsTest, AShopDiscountOf150IsIgnoredRatherThanRefused) {
  shop.sql("UPDATE generale SET sconto=150");
  EXPECT_THAT(globals(), HasSubstr("$scontoperc = array(1,1,1,1,1,1,1,1,1,1);\r\n"));
  shop.department("cat001");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.rows("SELECT sconto FROM categorie"), "1");
}

TEST_F(ServerSettingsTest, TheFactorsOfTheBlockAreThoseOfTheDepartmentsAndArticles) {
  shop.sql("UPDATE generale SET sconto=12.5, scimp=33.3");
  shop.department("cat001", {{"sconto", 33.3}});
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  const std::string factor = shop.rows("SELECT sconto FROM categorie");
  EXPECT_EQ(factor, ".583625");
  EXPECT_THAT(globals(), HasSubstr("$scontoperc = array(.583625,.875,"));
}

TEST_F(ServerSettingsTest, EveryLanguageHasTheSameBlock) {
  TempShop two(2);
  two.templateFile("index.htm", "[<<1-php_globals>>]");
  ASSERT_EQ(two.build(), BuildOutcome::Done);
  EXPECT_THAT(two.page("index.php"), HasSubstr("[$ivacompresa = 0;\r\n"));
  EXPECT_THAT(two.page("index_l2.php"), HasSubstr("[$ivacompresa = 0;\r\n"));
}

TEST_F(ServerSettingsTest, ADepartmentLoadsItsVariablesAndClosesItselfToAListino) {
  shop.department("cat001");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("cat001.php"),
              HasSubstr("\r\n<?php\r\n"
                        "SetVariables(\"cat001\");\r\n"
                        "if ($inaccessibile[$listino]) { header(\"Location: login$Lingua.php?m=11\"); }\r\n"
                        "?>\r\n"));
}

TEST_F(ServerSettingsTest, AStaticPageHasNoDepartmentLines) { EXPECT_EQ(tag("php_vars"), ""); }

TEST_F(ServerSettingsTest, OutputAndLoginIncludeTheScriptsOfTheLanguage) {
  TempShop two(2);
  two.templateFile("index.htm", "[<<1-output>>|<<1-login>>]");
  ASSERT_EQ(two.build(), BuildOutcome::Done);
  EXPECT_THAT(two.page("index.php"),
              HasSubstr("[<?php\r\ninclude \"output.php\";\r\n?>|<?php\r\ninclude \"lognew.php\";\r\n?>]"));
  EXPECT_THAT(two.page("index_l2.php"),
              HasSubstr("[<?php\r\ninclude \"output_l2.php\";\r\n?>|<?php\r\ninclude \"lognew_l2.php\";\r\n?>]"));
}

TEST_F(ServerSettingsTest, ASlashTypedTooOftenLeavesOneCleanAddress) {
  shop.sql("UPDATE generale SET URL=' www.bottega.example/ ', cartella='/negozio/', cartellaCGI='cgi-bin/'");
  EXPECT_EQ(tag("perl_shopURL>>|<<1-perl_cgiURL"),
            "http://www.bottega.example/negozio|http://www.bottega.example/cgi-bin");
}

TEST_F(ServerSettingsTest, ThePagesAfterAPaymentHaveTheirAddressInTheLanguage) {
  TempShop two(2);
  two.templateFile("index.htm", "[<<1-urldone>> <<1-urlback>>]");
  ASSERT_EQ(two.build(), BuildOutcome::Done);
  EXPECT_THAT(two.page("index.php"),
              HasSubstr("[http://www.bottega.example/payok.php http://www.bottega.example/payerr.php]"));
  EXPECT_THAT(two.page("index_l2.php"),
              HasSubstr("[http://www.bottega.example/payok_l2.php http://www.bottega.example/payerr_l2.php]"));
}

TEST_F(ServerSettingsTest, TheNamesOfTheServerScriptsCarryTheLanguage) {
  TempShop two(2);
  two.sql("UPDATE generale SET CGIsearch='kvsearch.pl', CGIordine='ordine'");
  two.templateFile("index.htm", "[<<1-CGIsearch>> <<1-CGIordine>>]");
  ASSERT_EQ(two.build(), BuildOutcome::Done);
  EXPECT_THAT(two.page("index.php"), HasSubstr("[kvsearch.pl ordine]"));
  EXPECT_THAT(two.page("index_l2.php"), HasSubstr("[kvsearch_l2.pl ordine]"));
}

TEST_F(ServerSettingsTest, WhatGoesIntoQuotesOfPhpIsEscaped) {
  set("db_password", "a\"b'c");
  set("bo_username", "l'ape");
  set("p3p", "\"ALL\"");
  EXPECT_EQ(tag("db_password>> <<1-bo_username>> <<1-compact_privacy_policy"), "a\\\"b\\'c l\\'ape \\\"ALL\\\"");
}

TEST_F(ServerSettingsTest, AccountsForPagesAreWrittenAsTyped) {
  set("password", "a\"b'c");
  set("folderCGI", "  /cgi  ");
  set("perl", "/usr/bin/perl");
  EXPECT_EQ(tag("password>> <<1-foldercgi>> <<1-perl_path>> <<1-valuta"), "a\"b'c /cgi /usr/bin/perl EUR ");
}

TEST_F(ServerSettingsTest, TheTokenOfTheBuildIsTheSecret) { EXPECT_EQ(tag("db_security"), "abcdefghijklmnopqrst"); }

TEST_F(ServerSettingsTest, TheShopsNameHasApostrophesForQuotes) {
  set("titolo", "La \"Bottega\" di @nna");
  EXPECT_EQ(tag("negozio>>|<<1-perl_shopname"), "La 'Bottega' di @nna|La 'Bottega' di \\@nna");
}

TEST_F(ServerSettingsTest, PerlHasItsAddressAndSignatureEscaped) {
  set("email_ordini", "ordini@bottega.it");
  set("firma_email", "La \"Bottega\"\r\ninfo@bottega.it");
  EXPECT_EQ(tag("email_ordini>>|<<1-perl_email"), "ordini@bottega.it|ordini\\@bottega.it");
  EXPECT_EQ(tag("firma>>|<<1-perl_mailend"), "La \"Bottega\"\r\ninfo@bottega.it|La 'Bottega'\r\ninfo\\@bottega.it");
}

TEST_F(ServerSettingsTest, TheMailIsWrittenInBothForms) {
  set("testo_email", "Ordine <<Codice>>\r\n\"x\"@y");
  EXPECT_EQ(tag("testo_email"),
            "\r\n$info .= \"Ordine \" . $codice . \"\\r\\n\";\r\n$info .= \"\\\"x\\\"@y\\r\\n\";\r\n");
  EXPECT_EQ(tag("perl_testo_email"),
            "\r\n$info .= \"Ordine \".$FORM{'Codice_Ordine'}.\"\\n\";\r\n$info .= \"'x'\\@y\\n\";\r\n");
}

TEST_F(ServerSettingsTest, ASearchResultIsMadeOfTheFiveArguments) {
  shop.templateFile("results.htm",
                    "<<3-ric_pagina>> <<3-ric_codice>> <<3-ric_titolo>> <<3-ric_sottotitolo>> <<3-ric_foto>>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_EQ(shop.page("results.htm"), "$arg1 $arg2 $arg3 $arg4 $arg5\r\n");
}

TEST_F(ServerSettingsTest, ScriptsOfTheServerReceiveTheBlock) {
  shop.application("code/funcs.php", "<?php\r\n<<1-php_globals>>$fine = 1;\r\n?>");
  ASSERT_EQ(shop.build(), BuildOutcome::Done);
  EXPECT_THAT(shop.page("funcs.php"), HasSubstr("<?php\r\n$ivacompresa = 0;\r\n"));
  EXPECT_THAT(shop.page("funcs.php"), HasSubstr("$scontoimp = array(0,0,0,0,0,0,0,0,0,0);\r\n$fine = 1;\r\n?>"));
  EXPECT_THAT(shop.page("funcs.php"), Not(HasSubstr("<<")));
}

TEST_F(ServerSettingsTest, TheShopNumberOfAFolderWithoutAUrlIsThatOfTheFolder) {
  set("URL", "");
  set("cartella", "shop");
  EXPECT_EQ(tag("IDnegozio"), "1104");  // 115 * 1 + 104 * 2 + 111 * 3 + 112 * 4
  set("cartella", "/shop/");
  EXPECT_EQ(tag("IDnegozio"), "1104");
}

}  // namespace
}  // namespace kv::test
