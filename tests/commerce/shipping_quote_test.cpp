// Trying the shipping: what the dialog answers is what the cart's own script asks with the arrays of the build.

#include "commerce/shipping/shipping_quote.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "commerce/shipping/shipping_tables.h"
#include "commerce_shop.h"
#include "platform/database/field_row.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"
#include "support/command_output.h"
#include "support/test_seed.h"
#include "support/value_of.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TryingTheShipping : public CommerceShop {
 protected:
  void SetUp() override {
    sql("UPDATE generale SET ivacompresa = 0, decimali1 = 1, notazione = 0, valuta1 = 'EUR'");
    sql("UPDATE pagamento SET imppeso = 0, ivaspese = 22");
  }
  ShippingQuote quote(const char* amount, double weight, const char* country, int method) {
    const auto answer = quoteShipping(session.catalogue, {*Money::parse(amount), weight, country, method});
    EXPECT_TRUE(answer) << answer.error().what;
    return answer.value_or(ShippingQuote());
  }
  std::string text(const ShippingQuote& answer) {
    return quoteText(answer, CurrencyForm(firstRow(session.catalogue, "SELECT * FROM generale").value()));
  }
};

TEST_F(TryingTheShipping, AnOrderUpToALimitPaysTheCostOfThatLimit) {
  EXPECT_EQ(text(quote("49", 0, "1", 2)), "Spese: EUR 6,90, IVA: EUR 1,52, totale: EUR 8,42");
  EXPECT_EQ(text(quote("49.01", 0, "1", 2)), "Spese: EUR 4,90, IVA: EUR 1,08, totale: EUR 5,98");
  EXPECT_EQ(text(quote("99.01", 0, "1", 2)), "Spese: EUR 0,00, totale: EUR 0,00");
}

TEST_F(TryingTheShipping, WithPricesThatHoldVatTheCostHoldsItToo) {
  sql("UPDATE generale SET ivacompresa = 1");
  EXPECT_EQ(text(quote("10", 0, "1", 2)), "Spese: EUR 8,42, totale: EUR 8,42");
}

TEST_F(TryingTheShipping, AZoneWithoutVatAddsNone) {
  EXPECT_EQ(text(quote("10", 0, "46", 2)), "Spese: EUR 42,00, totale: EUR 42,00");
}

TEST_F(TryingTheShipping, ByWeightTheStepsOfTheWeightsCount) {
  sql("UPDATE pagamento SET imppeso = 1");
  EXPECT_EQ(quote("10", 1, "1", 2).cost, *Money::parse("5.9"));
  EXPECT_EQ(quote("10", 1.001, "1", 2).cost, *Money::parse("6.7"));
  EXPECT_EQ(quote("10", 31, "1", 2).cost, *Money::parse("21.9"));
}

TEST_F(TryingTheShipping, AWeightTableInDisorderIsReadAsTheBuildSortsIt) {
  sql("UPDATE pagamento SET imppeso = 1");
  sql("UPDATE zona1 SET m2peso1 = 30, m2spp1 = 179000, m2peso9 = 1, m2spp9 = 59000");
  EXPECT_EQ(quote("10", 0.5, "1", 2).cost, *Money::parse("5.9"));
  EXPECT_EQ(quote("10", 25, "1", 2).cost, *Money::parse("17.9"));
}

TEST_F(TryingTheShipping, AMethodThatIsOffOrNotOfTheZoneIsNotAllowed) {
  EXPECT_EQ(text(quote("10", 0, "2", 1)), "Questo metodo non è ammesso per il paese scelto");
  EXPECT_FALSE(quote("10", 0, "1", 3).allowed);
  EXPECT_FALSE(quote("10", 0, "4711", 2).allowed);
}

TEST_F(TryingTheShipping, AShopInOrderHasNothingToCheck) { EXPECT_THAT(shippingGaps(session.catalogue), IsEmpty()); }

TEST_F(TryingTheShipping, AZoneWithoutAMethodAndStepsOutOfOrderAreNamed) {
  sql("UPDATE zona3 SET pag2 = 0");
  sql("UPDATE zona1 SET m1imp1 = 1000000, m1imp2 = 500000");
  EXPECT_THAT(
      shippingGaps(session.catalogue),
      ElementsAre("Zona 1, Contrassegno: i limiti non sono in ordine crescente", "Zona 3: nessun metodo è ammesso"));
  sql("UPDATE pagamento SET imppeso = 1");
  sql("UPDATE zona2 SET m2peso3 = 0");
  EXPECT_THAT(shippingGaps(session.catalogue),
              ElementsAre("Zona 2, Bonifico anticipato: i limiti non sono in ordine crescente",
                          "Zona 3: nessun metodo è ammesso"));
}

constexpr int ordersOfShop = 10;

class TheTrialAndTheCart : public TryingTheShipping {
 protected:
  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(engine); }
  std::string flag() { return below(2) == 0 ? "0" : "1"; }

  void fillTables() {
    for (int zone = 1; zone <= shippingZones; ++zone) {
      std::string columns;
      for (int method = 1; method <= paymentMethods; ++method) {
        const std::string m = "m" + std::to_string(method);
        columns += "pag" + std::to_string(method) + " = " + flag() + ", ";
        for (const char* amount : {"imp1", "imp2"})
          columns += m + amount + " = " + std::to_string(below(3000000)) + ", ";
        for (const char* cost : {"sp1", "sp2", "sp3"})
          columns += m + cost + " = " + std::to_string(below(500000)) + ", ";
        for (int i = 1; i <= 9; ++i) {
          columns += m + "peso" + std::to_string(i) + " = " + std::to_string(below(400)) + ".25, ";
        }
        for (int i = 1; i <= 10; ++i)
          columns += m + "spp" + std::to_string(i) + " = " + std::to_string(below(500000)) + ", ";
      }
      sql("UPDATE zona" + std::to_string(zone) + " SET " + columns.substr(0, columns.size() - 2));
    }
  }
  void fillSettings() {
    sql("UPDATE generale SET ivacompresa = " + flag() + ", decimali1 = " + flag());
    std::string columns = "attivo1 = 1, attivo2 = " + flag() + ", attivo3 = " + flag() + ", attivo4 = " + flag();
    for (int zone = 1; zone <= shippingZones; ++zone) columns += ", ivaok" + std::to_string(zone) + " = " + flag();
    sql("UPDATE pagamento SET " + columns + ", imppeso = " + flag() + ", ivaspese = " + std::to_string(below(26)));
    sql("UPDATE paesi SET zona = ID % 8 + 1");
  }
  /// The variables of the build as JSON text.
  std::string script() {
    const FieldRow generale = firstRow(session.catalogue, "SELECT * FROM generale").value();
    const FieldRow pagamento = firstRow(session.catalogue, "SELECT * FROM pagamento").value();
    const CurrencyForm form(generale);
    const float vat = pagamento.single("ivaspese") / 100.0F;
    const ShippingPrice price{form, generale.flag("ivacompresa") ? vat : 0.0F};
    const AmountTables amounts = valueOf(MakeImporti(session.catalogue, pagamento, price));
    std::string text = "var SecVal=0,exch=1,sepmigl='.',sepdec=',',PutDec=" + std::string(form.decimals ? "1" : "0") +
                       ";var scimp=[0],scperc=[1];" + amounts.java_importi + amounts.java_permessi +
                       valueOf(MakeImportiPeso(session.catalogue, pagamento, price));
    text += ";tipopeso='" + std::string(pagamento.flag("imppeso") ? "1" : "0") + "';ivacompresa='" +
            (generale.flag("ivacompresa") ? "1" : "0") + "';aliquotaspese=" + plainNumber(vat) + ";";
    return replaceAll(replaceAll(text, "\r\n", "\\n"), "\"", "\\\"");
  }

  std::mt19937 engine{seed()};
};

TEST_F(TheTrialAndTheCart, AndTheServerAgreeToTheCent) {
  std::string cases, expected;
  for (int shop = 0; shop < operationsOf(60) / ordersOfShop; ++shop) {
    fillTables();
    fillSettings();
    const std::string variables = script();
    const int unit = field("SELECT decimali1 FROM generale") == "1" ? 100 : 1;
    for (int order = 0; order < ordersOfShop; ++order) {
      int method = 1 + below(4);
      if (field("SELECT attivo" + std::to_string(method) + " FROM pagamento") != "1") method = 1;
      int position = 0;
      for (int n = 1; n <= method; ++n)
        position += field("SELECT attivo" + std::to_string(n) + " FROM pagamento") == "1";
      const int country = 1 + below(60), goods = below(40000), weight = below(4500000);
      const Money amount = Money::ofTenThousandths(std::int64_t{goods} * (10000 / unit));
      const auto answer = quoteShipping(session.catalogue, {amount, weight / 10000.0, std::to_string(country), method});
      ASSERT_TRUE(answer);
      const auto smallest = [unit](Money money) { return std::to_string(money.tenThousandths() / (10000 / unit)); };
      expected +=
          std::string(answer->allowed ? "1 " : "0 ") + smallest(answer->cost) + " " + smallest(answer->vat) + "\n";
      cases += "{\"script\":\"" + variables + "\",\"goods\":" + std::to_string(goods) +
               ",\"weight\":" + std::to_string(weight) + ",\"method\":" + std::to_string(position) +
               ",\"zone\":" + std::to_string(country % 8 + 1) + "}\n";
    }
  }
  ASSERT_TRUE(writeBytes(root / "cases", cases));
  const std::string given = " " KORVANE_APP_DATA "/code " + (root / "cases");
  EXPECT_EQ(outputOf("node " KORVANE_TEST_DATA "/commerce/cart_answers.js" + given), expected);
  EXPECT_EQ(outputOf("php -n " KORVANE_TEST_DATA "/commerce/server_answers.php" + given), expected);
}

}  // namespace
}  // namespace kv::test
