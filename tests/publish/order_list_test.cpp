// What the window of orders shows and takes: days, states, amounts, all of an order as text.
#include "publish/orders/desk/order_list.h"

#include <gmock/gmock.h>

#include "publish/orders/wire/order_answers.h"
#include "support/order_host.h"

namespace kv::test {
namespace {

DeskOrder theOrder(const HostOrder& order = {}) { return deskOrder(readJson(orderJson(order)).value()).value(); }

TEST(TheListOfOrders, TakesDaysInTheUsualForms) {
  EXPECT_EQ(typedDay("1/2/2026"), "2026-02-01");
  EXPECT_EQ(typedDay(" 01-02-26 "), "2026-02-01");
  EXPECT_EQ(typedDay("2026-02-01"), "2026-02-01");
  EXPECT_EQ(typedDay(""), "");
  for (const char* text : {"30/2/2026", "1/2", "x", "1/2/2026/3", "1//2026", "1/2/99999", "-1/2/2026"}) {
    EXPECT_FALSE(typedDay(text)) << text;
  }
  EXPECT_EQ(dayNote("31.12.2026"), "");
  EXPECT_EQ(dayNote("oggi"), "Un giorno si scrive così: 31/12/2026");
}

TEST(TheListOfOrders, OffersAllStatesAndThoseToFulfil) {
  EXPECT_THAT(orderStateChoices(),
              ::testing::ElementsAre("Tutti", "Da evadere", "Nuovo", "Da verificare", "Importo diverso", "Pagato",
                                     "Rifiutato", "Spedito", "Annullato"));
  EXPECT_EQ(orderLookup({"", 0, "", ""})->state, "");
  EXPECT_EQ(orderLookup({"", 1, "", ""})->state, "da evadere");
  EXPECT_EQ(orderLookup({"", 4, "", ""})->state, "importo diverso");
  EXPECT_FALSE(orderLookup({"", 0, "x", ""}));
}

TEST(TheListOfOrders, ShowsAllOfAnOrder) {
  EXPECT_EQ(orderDetails(theOrder()),
            "Ordine: KV1\nData: 31/05/2026 10:20\nStato: Nuovo\nPagamento: Bonifico\nCliente: Anna Neri\n"
            "E-mail: anna@posta.it\nLocalità: 47121 Forlì\n\nArticoli\n"
            "2 × T1 Tazza (rossa): EUR\u00A010,25\nMerce: EUR\u00A020,50\nSpese: EUR\u00A05,00\n"
            "Totale: EUR\u00A025,50\n\nAnnotazioni\n31/05/2026 11:00 Chiamare\n");
  DeskOrder bare = theOrder();
  bare.lines.clear();
  bare.summary = "Due tazze";
  // A customer's text of several lines is none of the order's own.
  bare.fields["Note"] = "Suonare\r\nStato: Pagato\u2028Totale: EUR 0,00";
  EXPECT_THAT(orderDetails(bare), ::testing::HasSubstr("\nDue tazze\n"));
  EXPECT_THAT(orderDetails(bare),
              ::testing::HasSubstr("\nNote del cliente: Suonare\n    Stato: Pagato\n    Totale: EUR 0,00\n"));
}

TEST(TheListOfOrders, CountsInWords) {
  EXPECT_EQ(orderSummaryLine({0, 0, ""}), "Nessun ordine; premere Aggiorna per riceverli dal server");
  EXPECT_EQ(orderSummaryLine({1, 1, "22/11/2026 15:20"}),
            "Un ordine, uno nuovo; ricevuti l'ultima volta il 22/11/2026 15:20");
  EXPECT_EQ(orderSummaryLine({12, 3, "22/11/2026 15:20"}),
            "12 ordini, 3 nuovi; ricevuti l'ultima volta il 22/11/2026 15:20");
  EXPECT_EQ(newOrdersText(0), "");
  EXPECT_EQ(newOrdersText(1), "Un ordine nuovo");
  EXPECT_EQ(newOrdersText(2), "2 ordini nuovi");
}

TEST(TheListOfOrders, AChangeOfStateIsToAnotherOne) {
  EXPECT_FALSE(typedStateChange(theOrder(), 0));
  EXPECT_FALSE(typedStateChange(theOrder(), -1));
  const auto paid = typedStateChange(theOrder(), 3);
  ASSERT_TRUE(paid);
  EXPECT_EQ(paid->from, "nuovo");
  EXPECT_EQ(paid->to, "pagato");
  EXPECT_FALSE(offersStock(theOrder(), 3));
  EXPECT_TRUE(offersStock(theOrder(), 6));
  EXPECT_TRUE(offersStock(theOrder({1, "2026-05-31 10:20:30", "annullato"}), 0));
}

TEST(TheListOfOrders, ALevelOfStockIsPiecesOrNoLimit) {
  EXPECT_EQ(typedStock(true, " 12 "), "1|12");
  EXPECT_EQ(typedStock(true, ""), "1|");
  EXPECT_EQ(typedStock(true, "007"), "1|7");
  EXPECT_EQ(typedStock(false, "0"), "0|0");
  for (const char* text : {"x", "-1", "1,5", "12345678"}) EXPECT_FALSE(typedStock(true, text)) << text;
}

}  // namespace
}  // namespace kv::test
