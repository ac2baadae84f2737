// What the cart in the browser is told of the shop, byte by byte, and the build that puts it into the pages.

#include "builder/checkout/cart_tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

class CartTablesTest : public ::testing::Test {
 protected:
  FieldRow row(const std::string& table) {
    auto query = shop.session.catalogue.prepare("SELECT * FROM " + table).value();
    EXPECT_TRUE(query.step().value_or(false));
    return FieldRow(query);
  }
  FieldRow pagamento() { return row("pagamento"); }
  std::string countryList() { return MakePaesi(shop.session.catalogue, pagamento()).value_or("(no countries)"); }
  std::string startingSlot() { return MakeTipoSel(shop.session.catalogue, pagamento()).value_or("(no slot)"); }
  void country(const std::string& name, int zone) {
    const int id = ++countries;
    shop.insert(
        "paesi",
        {{"ID", std::int64_t{id}}, {"strID", std::to_string(id)}, {"paese", name}, {"zona", std::int64_t{zone}}});
  }
  std::string currencies() {
    const FieldRow generale = row("generale");
    return JavaValuta(generale, CurrencyForm(generale));
  }
  std::string required(const std::string& mask) {
    shop.sql("UPDATE generale SET campi_obbligatori = '" + mask + "'");
    return MakeObbligatori(row("generale"));
  }
  // The text of one tag as a page shows it.
  std::string tag(const std::string& name) {
    shop.templateFile("index.htm", "[<<1-" + name + ">>]");
    EXPECT_EQ(shop.build(), BuildOutcome::Done);
    const std::string page = shop.page("index.php");
    const auto start = page.find('[') + 1;
    return page.substr(start, page.rfind(']') - start);
  }

  TempShop shop;
  int countries = 0;
};

TEST_F(CartTablesTest, CountriesKeepTheOrderOfEntryAndTheValueHasASpaceBeforeItsSign) {
  country("Italia", 1);
  country("Francia", 2);
  country("Austria", 2);
  shop.sql("UPDATE pagamento SET paesesel = 2");
  EXPECT_EQ(countryList(),
            "<select size=\"1\" name=\"LSStato\" onChange=\"SpedPaese()\">\r\n"
            "<option value =\"1\">Italia</option>\r\n"
            "<option selected value =\"2\">Francia</option>\r\n"
            "<option value =\"2\">Austria</option>\r\n"
            "</select>\r\n");
}

TEST_F(CartTablesTest, CountriesGoByNameWhenTheMerchantWantsIt) {
  country("Italia", 1);
  country("Élite", 4);
  country("austria", 2);
  shop.sql("UPDATE pagamento SET alfabetico = 1");
  EXPECT_EQ(countryList(),
            "<select size=\"1\" name=\"LSStato\" onChange=\"SpedPaese()\">\r\n"
            "<option value =\"2\">austria</option>\r\n"
            "<option value =\"1\">Italia</option>\r\n"
            "<option value =\"4\">Élite</option>\r\n"
            "</select>\r\n");
}

TEST_F(CartTablesTest, ABarInACountrysNameBecomesAQuote) {
  country("|Regno| Unito", 3);
  EXPECT_THAT(countryList(), HasSubstr(">\"Regno\" Unito<"));
}

TEST_F(CartTablesTest, AShopWithoutCountriesHasAnEmptyList) {
  EXPECT_EQ(countryList(), "<select size=\"1\" name=\"LSStato\" onChange=\"SpedPaese()\">\r\n</select>\r\n");
}

TEST_F(CartTablesTest, PaymentMethodsAreTheActiveOnesWithThePreselectedOneMarked) {
  shop.sql(
      "UPDATE pagamento SET attivo1=1, nome1='Contrassegno', nome2='Spento', attivo3=1, nome3='Carta', attivo4=1, "
      "nome4='Bonifico', selezionato=3");
  EXPECT_EQ(MakePagamenti(pagamento()),
            "<select size=\"1\" name=\"Pagamento\" onChange=\"SpedPaese()\">\r\n"
            "<option>Contrassegno</option>\r\n"
            "<option selected>Carta</option>\r\n"
            "<option>Bonifico</option>\r\n"
            "</select>");
}

TEST_F(CartTablesTest, PaymentMethodsHaveTheirNamesInTheLanguageOfThePage) {
  TempShop two(2);
  two.sql("UPDATE pagamento SET attivo1=1, nome1='Carta', nome1_l2='Card'");
  two.templateFile("index.htm", "<html><<1-pagamento>></html>");
  ASSERT_EQ(two.build(), BuildOutcome::Done);
  EXPECT_THAT(two.page("index.php"), HasSubstr("<option>Carta</option>"));
  EXPECT_THAT(two.page("index_l2.php"), HasSubstr("<option>Card</option>"));
}

TEST_F(CartTablesTest, TheStartingSlotCountsActiveMethodsBeforeThePreselectedOne) {
  country("Italia", 5);
  shop.sql("UPDATE pagamento SET paesesel=1, attivo1=1, attivo2=0, attivo3=1, attivo4=1, selezionato=4");
  EXPECT_EQ(startingSlot(), "21");
  shop.sql("UPDATE pagamento SET selezionato=1");
  EXPECT_EQ(startingSlot(), "5");
}

TEST_F(CartTablesTest, AStartingSlotOutsideTheArraysBecomesTheFirst) {
  country("Nessuna zona", 0);
  country("Zona otto", 8);
  country("Zona nove", 9);
  shop.sql("UPDATE pagamento SET paesesel=1, attivo1=1, attivo2=1, attivo3=1, attivo4=1, selezionato=1");
  EXPECT_EQ(startingSlot(), "1");
  shop.sql("UPDATE pagamento SET paesesel=2, selezionato=4");
  EXPECT_EQ(startingSlot(), "32");
  shop.sql("UPDATE pagamento SET paesesel=3");
  EXPECT_EQ(startingSlot(), "1");
}

TEST_F(CartTablesTest, WithoutAPreselectedCountryTheCartStartsWithTheFirstSlot) { EXPECT_EQ(startingSlot(), "1"); }

TEST_F(CartTablesTest, CurrenciesOfAnItalianShop) {
  shop.sql("UPDATE generale SET usa_cambio=1, cambio=1936.27, decimali2=0, scimp=10, scimp9=2.5");
  shop.update("generale", {{"importo", money("100")}, {"importo9", money(".5")}});
  EXPECT_EQ(currencies(),
            "var valuta=\"EUR \";\r\n"
            "var valuta2=\"USD \";\r\n"
            "var exch= 1936.27;\r\n"
            "var SecVal= 1;\r\n"
            "var sepmigl=\".\";\r\n"
            "var sepdec=\",\";\r\n"
            "var PutDec= 1;\r\n"
            "var PutDec2= 0;\r\n"
            "var scimp = new Array( 100, 0, 0, 0, 0, 0, 0, 0, 0, .5);\r\n"
            "var scperc = new Array( .9, 1, 1, 1, 1, 1, 1, 1, 1, .975);\r\n");
}

TEST_F(CartTablesTest, ARateOfZeroPrintsAsOneAndTurnsTheSecondCurrencyOff) {
  shop.sql("UPDATE generale SET usa_cambio=1, cambio=0, notazione=1, decimali1=0");
  const std::string script = currencies();
  EXPECT_THAT(script, HasSubstr("var exch= 1;\r\nvar SecVal= 0;\r\nvar sepmigl=\",\";\r\nvar sepdec=\".\";\r\n"
                                "var PutDec= 0;\r\nvar PutDec2= 1;\r\n"));
}

TEST_F(CartTablesTest, ASecondCurrencyThatIsNotUsedKeepsItsRate) {
  shop.sql("UPDATE generale SET usa_cambio=0, cambio=0.5");
  EXPECT_THAT(currencies(), HasSubstr("var exch= .5;\r\nvar SecVal= 0;\r\n"));
}

TEST_F(CartTablesTest, TheDiscountByAmountOfTheCartLeavesTheShopsDiscountOut) {
  shop.sql("UPDATE generale SET sconto=50, scimp=20");
  EXPECT_THAT(currencies(), HasSubstr("var scperc = new Array( .8, 1,"));
}

TEST_F(CartTablesTest, ABarInACurrencySignBecomesAQuote) {
  shop.sql("UPDATE generale SET valuta1 = ' |E| '");
  EXPECT_THAT(currencies(), HasSubstr("var valuta=\"\"E\" \";\r\n"));
}

TEST_F(CartTablesTest, RequiredFieldsFollowTheBitsAndTheConfirmationOfAgeTheOtherWayRound) {
  EXPECT_EQ(required("0"), "obbl_magg = 0;");
  EXPECT_EQ(required("8"), "");
  EXPECT_EQ(required("9"), "obbl_rsoc = 1;");
  EXPECT_EQ(required("7"), "obbl_rsoc = 1;\r\nobbl_piva = 1;\r\nobbl_tel = 1;\r\nobbl_magg = 0;");
  EXPECT_EQ(required("14"), "obbl_piva = 1;\r\nobbl_tel = 1;");
}

TEST_F(CartTablesTest, AShopThatNeverSetRequiredFieldsAsksForNothing) {
  EXPECT_EQ(MakeObbligatori(row("generale")), "obbl_magg = 0;");
}

TEST_F(CartTablesTest, NumbersForScriptsStartWithASpace) {
  shop.update("generale", {{"qminima", std::int64_t{3}}, {"minimo", money("12.5")}});
  shop.sql("UPDATE pagamento SET ivaspese=20, imppeso=1");
  EXPECT_EQ(tag("java_qminima>>|<<1-java_minimo>>|<<1-java_aliquotaspese>>|<<1-java_tipopeso"), " 3| 12.5| .2|1");
}

TEST_F(CartTablesTest, ShippingByAmountIsTypeZero) { EXPECT_EQ(tag("java_tipopeso"), "0"); }

TEST_F(CartTablesTest, PricesThatIncludeVatGoWithShippingThatIncludesIt) {
  shop.sql("UPDATE pagamento SET attivo1=1, ivaspese=20; UPDATE generale SET ivacompresa=1");
  shop.update("zona1", {{"m1sp1", money("10")}});
  EXPECT_THAT(tag("java_importi"), HasSubstr("impspese1=new Array(12.00,"));
  shop.sql("UPDATE generale SET decimali1=0");
  EXPECT_THAT(tag("java_importi"), HasSubstr("impspese1=new Array(12,"));
  shop.sql("UPDATE generale SET ivacompresa=0");
  EXPECT_THAT(tag("java_importi"), HasSubstr("impspese1=new Array(10,"));
  EXPECT_EQ(tag("java_aliquotaspese"), " .2");
}

TEST_F(CartTablesTest, EveryPageOfEveryLanguageHasTheTables) {
  TempShop two(2);
  two.department("cat001");
  two.templateFile("modello1.htm", "<<1-java_permessi>><KV_START><KV_END>");
  two.templateFile("index.htm", "<<1-java_permessi>>");
  two.sql("UPDATE pagamento SET attivo1=1");
  ASSERT_EQ(two.build(), BuildOutcome::Done);
  for (const char* page : {"cat001.php", "cat001_l2.php", "index.php", "index_l2.php"}) {
    EXPECT_THAT(two.page(page), HasSubstr("var SpOk='11111111';\r\nvar IvaOk='00000000';")) << page;
  }
}

TEST_F(CartTablesTest, AZoneTableThatLacksAColumnStopsTheBuild) {
  shop.sql("UPDATE pagamento SET attivo1=1; ALTER TABLE zona4 DROP COLUMN m1sp2");
  EXPECT_EQ(shop.build(), BuildOutcome::Failed);
  ASSERT_EQ(shop.user.shown.size(), 1U);
  EXPECT_THAT(shop.user.shown[0].text, HasSubstr("m1sp2"));
}

TEST_F(CartTablesTest, TheCartStartsWithWhatTheServerKnowsOfTheVisitor) {
  EXPECT_EQ(tag("java_carrello"),
            "<script language=\"JavaScript\">\r\n"
            "<!--\r\n"
            "document.cookie = \"kvstore_disp=<?php echo $cartdisp; ?>\";\r\n"
            "document.cookie = \"kvstore_cliente=<?php echo $ordercliente; ?>\";\r\n"
            "var scl = <?php echo $scontocliente; ?>;\r\n"
            "MostraCarrello(<?php echo $listino; ?>);\r\n"
            "//-->\r\n"
            "</script>");
}

TEST_F(CartTablesTest, SearchGoesByAllWordsUnlessTheMerchantChoseAny) {
  EXPECT_EQ(tag("java_ANDORsearch>> <<1-java_sepsearch"), "all var sleft = \",#.*\"; var sright = \"\";");
  shop.sql("UPDATE generale SET operatorericerca=1, ricercaparole=1");
  EXPECT_EQ(tag("java_ANDORsearch>> <<1-java_sepsearch"), "any var sleft = \"#\"; var sright = \"#\";");
}

}  // namespace
}  // namespace kv::test
