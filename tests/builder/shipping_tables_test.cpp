// The shipping costs as arrays of the cart: which slot a cost is in, how it is written, which signs go with it.

#include "commerce/shipping/shipping_tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "builder/values/build_failure.h"
#include "platform/text/text.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ShippingTablesTest : public ::testing::Test {
 protected:
  FieldRow pagamento() {
    auto query = shop.session.catalogue.prepare("SELECT * FROM pagamento").value();
    EXPECT_TRUE(query.step().value_or(false));
    return FieldRow(query);
  }
  Result<AmountTables> readAmounts() { return MakeImporti(shop.session.catalogue, pagamento(), {form, aliquota}); }
  Result<std::string> readWeights() { return MakeImportiPeso(shop.session.catalogue, pagamento(), {form, aliquota}); }
  AmountTables amounts() {
    const auto tables = readAmounts();
    EXPECT_TRUE(tables.has_value());
    return tables.value_or(AmountTables());
  }
  std::string weights() {
    const auto text = readWeights();
    EXPECT_TRUE(text.has_value());
    return text.value_or("");
  }

  // The 32 values of an array of the output.
  static std::vector<std::string> values(const std::string& script, const std::string& name) {
    const std::string head = name + "=new Array(";
    const auto start = script.find(head);
    EXPECT_NE(start, std::string::npos) << name;
    if (start == std::string::npos) return {};
    const auto end = script.find(");\r\n", start);
    std::vector<std::string> found(1);
    for (std::size_t i = start + head.size(); i < end; ++i) {
      if (script[i] == ',') {
        found.emplace_back();
      } else {
        found.back() += script[i];
      }
    }
    EXPECT_EQ(found.size(), 32U) << name;
    return found;
  }
  static std::string signsOf(const AmountTables& tables) {
    const auto start = tables.java_permessi.find('\'') + 1;
    return tables.java_permessi.substr(start, tables.java_permessi.find('\'', start) - start);
  }
  static std::string repeated(const std::string& text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) out += text;
    return out;
  }

  TempShop shop;
  CurrencyForm form;
  float aliquota = 0;
};

TEST_F(ShippingTablesTest, WithoutMethodsEveryAmountIsZeroAndNoSlotHasASign) {
  const AmountTables tables = amounts();
  const std::string zeros = repeated("0,", 31) + "0);\r\n";
  const std::string costs = repeated("0.00,", 31) + "0.00);\r\n";
  EXPECT_EQ(tables.java_importi, "impord1=new Array(" + zeros + "impspese1=new Array(" + costs + "impord2=new Array(" +
                                     zeros + "impspese2=new Array(" + costs + "impspese3=new Array(" + costs);
  EXPECT_EQ(tables.java_permessi, "var SpOk='';\r\nvar IvaOk='00000000';");
}

TEST_F(ShippingTablesTest, TheArraysByWeightComeInPairsAndTheTenthHasNoLimit) {
  std::vector<std::string> names;
  const std::string script = weights();
  for (const std::string_view line : splitLines(script)) names.emplace_back(line.substr(0, line.find('=')));
  EXPECT_THAT(names, ElementsAre("imppeso1", "impspp1", "imppeso2", "impspp2", "imppeso3", "impspp3", "imppeso4",
                                 "impspp4", "imppeso5", "impspp5", "imppeso6", "impspp6", "imppeso7", "impspp7",
                                 "imppeso8", "impspp8", "imppeso9", "impspp9", "impspp10"));
}

TEST_F(ShippingTablesTest, ThreeActiveMethodsFillTwentyFourSlotsAndTheLastEightStayZero) {
  shop.sql("UPDATE pagamento SET attivo1=1, attivo2=1, attivo4=1");
  for (int zone = 1; zone <= 8; ++zone) {
    shop.update("zona" + std::to_string(zone), {{"m1sp3", money("1")},
                                                {"m2sp3", money("2")},
                                                {"m3sp3", money("3")},
                                                {"m4sp3", money("4")},
                                                {"m4spp10", money("4")}});
  }
  const AmountTables tables = amounts();
  std::vector<std::string> wanted(8, "1.00");
  wanted.insert(wanted.end(), 8, "2.00");
  wanted.insert(wanted.end(), 8, "4.00");
  wanted.insert(wanted.end(), 8, "0.00");
  EXPECT_EQ(values(tables.java_importi, "impspese3"), wanted);
  EXPECT_EQ(signsOf(tables), "111111110000000000000000");
  const auto heaviest = values(weights(), "impspp10");
  EXPECT_EQ(heaviest[16], "4.00");
  EXPECT_EQ(heaviest[24], "0.00");
}

TEST_F(ShippingTablesTest, ASlotGoesByThePositionAmongTheActiveMethodsAndNotByTheNumber) {
  shop.sql("UPDATE pagamento SET attivo1=0, attivo3=1");
  shop.update("zona5", {{"m3sp1", money("7.5")}, {"m1sp1", money("9")}});
  const auto costs = values(amounts().java_importi, "impspese1");
  EXPECT_EQ(costs[4], "7.50");
  EXPECT_EQ(std::count(costs.begin(), costs.end(), "0.00"), 31);
}

TEST_F(ShippingTablesTest, ASignShowsWhetherTheMethodIsAllowedInTheZone) {
  shop.sql("UPDATE pagamento SET attivo2=1");
  shop.sql("UPDATE zona1 SET pag2=1");
  shop.sql("UPDATE zona3 SET pag2=1");
  shop.sql("UPDATE zona8 SET pag2=1");
  EXPECT_EQ(signsOf(amounts()), "10100001");
}

TEST_F(ShippingTablesTest, FirstThresholdsAboveTheSecondAreSwappedWithTheirCosts) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.update("zona1", {{"m1imp1", money("100")},
                        {"m1sp1", money("8")},
                        {"m1imp2", money("0")},
                        {"m1sp2", money("5")},
                        {"m1sp3", money("3")}});
  const std::string script = amounts().java_importi;
  EXPECT_EQ(values(script, "impord1")[0], "0");
  EXPECT_EQ(values(script, "impspese1")[0], "5.00");
  EXPECT_EQ(values(script, "impord2")[0], "100");
  EXPECT_EQ(values(script, "impspese2")[0], "8.00");
  EXPECT_EQ(values(script, "impspese3")[0], "3.00");
}

TEST_F(ShippingTablesTest, EqualThresholdsKeepTheirOrder) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.update("zona1",
              {{"m1imp1", money("50")}, {"m1sp1", money("8")}, {"m1imp2", money("50")}, {"m1sp2", money("5")}});
  EXPECT_EQ(values(amounts().java_importi, "impspese1")[0], "8.00");
}

TEST_F(ShippingTablesTest, AThresholdIsWrittenExactlyAndWithoutAZeroBeforeThePoint) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.update("zona1", {{"m1imp1", money("0.5")}, {"m1imp2", money("123456789.1234")}});
  const std::string script = amounts().java_importi;
  EXPECT_EQ(values(script, "impord1")[0], ".5");
  EXPECT_EQ(values(script, "impord2")[0], "123456789.1234");
}

TEST_F(ShippingTablesTest, TheRateOfShippingIsInTheCostsWithTheDecimalsOfTheCurrency) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.update("zona1", {{"m1sp1", money("10")}, {"m1spp1", money("10")}, {"m1sp2", money("2.5")}});
  aliquota = 0.2F;
  EXPECT_EQ(values(amounts().java_importi, "impspese1")[0], "12.00");
  EXPECT_EQ(values(weights(), "impspp1")[0], "12.00");
  form.decimals = false;
  EXPECT_EQ(values(amounts().java_importi, "impspese1")[0], "12");
  EXPECT_EQ(values(amounts().java_importi, "impspese2")[0], "3");
  EXPECT_EQ(values(weights(), "impspp1")[0], "12");
}

TEST_F(ShippingTablesTest, ACostThatOutgrowsMoneyEndsTheRun) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.update("zona1", {{"m1sp1", money("900000000000000")}});
  aliquota = 0.2F;
  const auto tables = readAmounts();
  ASSERT_FALSE(tables);
  EXPECT_EQ(tables.error().number, overflowFailure);
  EXPECT_EQ(tables.error().what, "Spese di spedizione troppo grandi");
}

TEST_F(ShippingTablesTest, AZoneWithoutVatTurnsItOffOnlyWhenItIsThePreselectedOne) {
  shop.sql("UPDATE pagamento SET zonasel=3, ivaok1=1, ivaok3=1, ivaok8=1");
  EXPECT_THAT(amounts().java_permessi, HasSubstr("\r\nvar IvaOk='10100001';"));
  EXPECT_EQ(amounts().java_iva, "");
  EXPECT_EQ(amounts().java_iva_spese, "");
  shop.sql("UPDATE pagamento SET zonasel=2");
  EXPECT_EQ(amounts().java_iva, "totiva = 0;");
  EXPECT_EQ(amounts().java_iva_spese, "spediva = 0;");
}

TEST_F(ShippingTablesTest, WeightsTypedOutOfOrderComeOutSortedWithTheirAmounts) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.update("zona1", {{"m1peso1", 5.0},
                        {"m1spp1", money("50")},
                        {"m1peso2", 0.5},
                        {"m1spp2", money("3")},
                        {"m1peso3", 2.25},
                        {"m1spp3", money("20")},
                        {"m1spp10", money("99")}});
  const std::string script = weights();
  // Six limits were left empty: they are 0 and come first.
  EXPECT_EQ(values(script, "imppeso6")[0], "0");
  EXPECT_EQ(values(script, "imppeso7")[0], ".5");
  EXPECT_EQ(values(script, "impspp7")[0], "3.00");
  EXPECT_EQ(values(script, "imppeso8")[0], "2.25");
  EXPECT_EQ(values(script, "impspp8")[0], "20.00");
  EXPECT_EQ(values(script, "imppeso9")[0], "5");
  EXPECT_EQ(values(script, "impspp9")[0], "50.00");
  EXPECT_EQ(values(script, "impspp10")[0], "99.00");
}

TEST_F(ShippingTablesTest, EqualWeightsKeepTheOrderOfTheirAmounts) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.update("zona1", {{"m1peso1", 1.0},
                        {"m1spp1", money("7")},
                        {"m1peso2", 1.0},
                        {"m1spp2", money("6")},
                        {"m1peso3", 1.0},
                        {"m1spp3", money("5")}});
  const std::string script = weights();
  EXPECT_EQ(values(script, "impspp7")[0], "7.00");
  EXPECT_EQ(values(script, "impspp8")[0], "6.00");
  EXPECT_EQ(values(script, "impspp9")[0], "5.00");
}

TEST_F(ShippingTablesTest, AWeightIsWrittenWithTheSevenDigitsOfASingle) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.update("zona2", {{"m1peso9", 0.1}});
  shop.update("zona3", {{"m1peso9", 1234.5678}});
  const auto limits = values(weights(), "imppeso9");
  EXPECT_EQ(limits[1], ".1");
  EXPECT_EQ(limits[2], "1234.568");
}

TEST_F(ShippingTablesTest, AZoneThatLacksAColumnEndsTheRun) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.sql("ALTER TABLE zona4 DROP COLUMN m1sp2");
  EXPECT_FALSE(readAmounts());
  shop.sql("ALTER TABLE zona5 DROP COLUMN m1peso9");
  EXPECT_FALSE(readWeights());
}

TEST_F(ShippingTablesTest, AZoneWithoutItsRowEndsTheRun) {
  shop.sql("UPDATE pagamento SET attivo1=1");
  shop.sql("DELETE FROM zona8");
  EXPECT_FALSE(readAmounts());
}

}  // namespace
}  // namespace kv::test
