// Orders on paper: what each of the papers says, and what addresses and labels hold.
#include <gtest/gtest.h>

#include "platform/files/files.h"
#include "publish/orders/desk/order_list.h"
#include "publish/orders/papers/order_documents.h"
#include "publish/orders/papers/order_labels.h"
#include "publish/orders/values/order_texts.h"
#include "publish/orders/values/order_withdrawals.h"
#include "store/catalogue/shop_identity.h"
#include "support/sample_orders.h"
#include "support/temp_shop.h"

namespace kv::test {
namespace {

const ShopSender paperSender{"Bottega <B>", {"Via Roma 1", "Partita IVA 099"}, ""};

/// What a paper holds after its style.
std::string bodyOf(const DeskOrder& order, OrderPaper paper, const LogoSize& logo = {}) {
  const std::string html = orderPaper(order, paper, paperSender, logo);
  return html.substr(html.find("<body>"));
}

std::string paragraphs(const std::vector<std::string>& lines) {
  std::string html;
  for (const std::string& line : lines) html += "<p style=\"margin-top:0px;margin-bottom:0px\">" + line + "</p>";
  return html;
}

bool holdsPart(const std::string& html, const std::string& part) { return html.find(part) != std::string::npos; }

TEST(OrderPapers, AnOrderSaysAllThatWasOrderedToTheByte) {
  EXPECT_EQ(
      bodyOf(sampleOrder(), OrderPaper::Order),
      "<body><table width=\"100%\" cellspacing=\"0\"><tr><td width=\"55%\"><p><b>Bottega &lt;B&gt;</b><br>Via Roma "
      "1<br>"
      "Partita IVA 099</p></td><td width=\"45%\"><h2>Destinatario</h2>" +
          paragraphs({"Anna Neri", "Neri &amp; Figli", "Via &lt;1&gt;", "50100 Firenze FI", "Italia",
                      "E-mail: anna@casa.example", "Telefono: 055 1", "Partita IVA: 0123", "Cliente: n. 12"}) +
          "</td></tr></table><h1>Ordine A1041</h1><p>Ordine A1041 del 31/05/2026 · Pagamento: Bonifico · "
          "pagato</p>"
          "<h2>Articoli</h2><table width=\"100%\" border=\"1\" cellspacing=\"0\" cellpadding=\"4\" "
          "style=\"border-collapse:collapse;margin-top:6px;margin-bottom:6px\"><thead><tr><th align=\"left\" "
          "width=\"55%\">Articolo</th><th align=\"right\" "
          "style=\"white-space:nowrap\" width=\"13%\">Quantità</th><th align=\"right\" style=\"white-space:nowrap\" "
          "width=\"16%\">Importo</th><th align=\"right\" style=\"white-space:nowrap\" "
          "width=\"16%\">Totale</th></tr></thead>"
          "<tr><td align=\"left\">Vaso blu<br><small>Misura: M</small><br><small><i>Blue vase (Size: "
          "M)</i></small></td>"
          "<td align=\"right\" style=\"white-space:nowrap\">2</td><td align=\"right\" "
          "style=\"white-space:nowrap\">600,00"
          "</td><td align=\"right\" style=\"white-space:nowrap\">1.200,00</td></tr><tr><td align=\"left\">Tazza</td>"
          "<td align=\"right\" style=\"white-space:nowrap\">1</td><td align=\"right\" "
          "style=\"white-space:nowrap\">12,50</td>"
          "<td align=\"right\" style=\"white-space:nowrap\">12,50</td></tr></table>"
          "<table align=\"right\" cellspacing=\"0\" cellpadding=\"4\"><tr><td align=\"right\">Totale articoli</td>"
          "<td align=\"right\" style=\"white-space:nowrap\">1.212,50</td></tr><tr><td align=\"right\">Sconto</td>"
          "<td align=\"right\" style=\"white-space:nowrap\">-5,00</td></tr><tr><td align=\"right\">Spese di "
          "spedizione</td>"
          "<td align=\"right\" style=\"white-space:nowrap\">22,00</td></tr><tr><td align=\"right\"><b>Totale</b></td>"
          "<td align=\"right\" style=\"white-space:nowrap\"><b>€\u00A01.234,50</b></td></tr></table>"
          "<h2>Note del cliente</h2><p>Suonare<br>&quot;due&quot; volte</p></body></html>");
}

TEST(OrderPapers, ADeliveryNoteCountsPiecesAndNamesNoAmount) {
  const std::string html = bodyOf(sampleOrder(), OrderPaper::Delivery);
  EXPECT_TRUE(holdsPart(html, "<h1>Documento di consegna A1041</h1><p>Ordine A1041 del 31/05/2026</p>"));
  EXPECT_TRUE(holdsPart(html,
                        "<td align=\"right\" style=\"white-space:nowrap\">2</td><td align=\"left\">V7</td><td "
                        "align=\"left\">Vaso blu"));
  EXPECT_TRUE(holdsPart(html, "<p>Pezzi: 3</p>"));
  EXPECT_TRUE(holdsPart(html, "Data e firma del destinatario"));
  EXPECT_TRUE(holdsPart(html, "Note del cliente"));
  for (const char* amount : {"600,00", "1.234,50", "Bonifico", "Totale", "pagato"})
    EXPECT_FALSE(holdsPart(html, amount));
}

TEST(OrderPapers, AReceiptSaysWhetherTheAmountHasCome) {
  DeskOrder order = sampleOrder();
  for (const char* state : {"pagato", "spedito"}) {
    order.state = state;
    EXPECT_TRUE(holdsPart(bodyOf(order, OrderPaper::Receipt),
                          "<p>Importo ricevuto. La ricevuta non vale come fattura.</p></body>"));
  }
  order.state = "nuovo";
  const std::string html = bodyOf(order, OrderPaper::Receipt);
  EXPECT_TRUE(holdsPart(html, "<p>Importo da ricevere. La ricevuta non vale come fattura.</p>"));
  EXPECT_TRUE(holdsPart(html, "<h1>Ricevuta A1041</h1><p>Ordine A1041 del 31/05/2026 · Pagamento: Bonifico</p>"));
  EXPECT_FALSE(holdsPart(html, "Note del cliente"));
}

TEST(OrderPapers, VatThatIsNotDueIsNamedSo) {
  DeskOrder order = sampleOrder();
  order.totals["iva"] = cents(-2200);
  EXPECT_TRUE(holdsPart(bodyOf(order, OrderPaper::Order),
                        "IVA non dovuta</td><td align=\"right\" style=\"white-space:nowrap\">-22,00</td>"));
  order.totals["iva"] = cents(2200);
  EXPECT_TRUE(holdsPart(bodyOf(order, OrderPaper::Order),
                        "\">IVA</td><td align=\"right\" style=\"white-space:nowrap\">22,00</td>"));
}

TEST(OrderPapers, ThePaymentIsNamedInTheCustomersWordsWhereTheyDiffer) {
  DeskOrder order = sampleOrder();
  order.fields["NomePagamento"] = "Bank transfer";
  EXPECT_TRUE(holdsPart(bodyOf(order, OrderPaper::Receipt), "Pagamento: Bonifico (Bank transfer)"));
  order.fields["NomePagamento"] = "Bonifico";
  EXPECT_TRUE(holdsPart(bodyOf(order, OrderPaper::Receipt), "Pagamento: Bonifico</p>"));
}

TEST(OrderPapers, WithdrawalsAreMarkedOnEachPaper) {
  DeskOrder order = sampleOrder();
  order.withdrawals = {{"R1", "2026-06-02 11:00:00", "ricevuto"}, {"R2", "2026-06-03 12:30:00", "accolto"}};
  for (const OrderPaper paper : {OrderPaper::Order, OrderPaper::Delivery, OrderPaper::Receipt}) {
    EXPECT_TRUE(holdsPart(bodyOf(order, paper),
                          "<h2>Recessi</h2><p>R1 del 02/06/2026 11:00: ricevuto<br>R2 del "
                          "03/06/2026 12:30: accolto</p></body>"));
  }
}

/// The sample order, of which one vase was given back, and another withdrawal refused.
DeskOrder withdrawnOrder() {
  DeskOrder order = sampleOrder();
  order.withdrawals = {{"R1", "2026-06-02 11:00:00", "accolto", {{0, "Blue vase", "Size: M", 1}}},
                       {"R2", "2026-06-03 12:30:00", "respinto", {{1, "Tazza", "", 1}}}};
  return order;
}

TEST(OrderPapers, WhatIsGivenBackIsNamedByLineAndPiecesWithTheSumsThatRemain) {
  const std::string list =
      "<h2>Recessi</h2><p>R1 del 02/06/2026 11:00: accolto<br>1 × Vaso blu (Misura: M)<br>R2 del 03/06/2026 12:30: "
      "respinto<br>1 × Tazza</p>";
  for (const OrderPaper paper : {OrderPaper::Order, OrderPaper::Receipt}) {
    const std::string html = bodyOf(withdrawnOrder(), paper);
    EXPECT_TRUE(holdsPart(html, "(Size: M)</i></small><br><small><b>Recesso: 1 pezzo su 2</b></small></td>")) << html;
    EXPECT_TRUE(holdsPart(html, list + "<p><b>Recesso: 1 pezzo su 3, €\u00A0600,00.</b></p><p><b>Restano: 2 pezzi, "
                                       "€\u00A0612,50 (sconto, IVA e spese sono dell'ordine intero).</b></p></body>"))
        << html;
    EXPECT_FALSE(holdsPart(html, "Tazza<br><small><b>Recesso")) << "a refused withdrawal takes nothing";
  }
  const std::string note = bodyOf(withdrawnOrder(), OrderPaper::Delivery);
  EXPECT_TRUE(holdsPart(note, list + "<p><b>Recesso: 1 pezzo su 3.</b></p><p><b>Restano: 2 pezzi.</b></p></body>"))
      << note;
  EXPECT_TRUE(holdsPart(note, "<p>Pezzi: 3</p>"));
}

TEST(OrderPapers, AnOrderThatIsGivenBackAsAWholeLeavesNothing) {
  DeskOrder order = sampleOrder();
  order.withdrawals = {{"R1", "2026-06-02 11:00:00", "ricevuto", {{0, "", "", 1}, {1, "", "", 1}}},
                       {"R2", "2026-06-02 12:00:00", "ricevuto", {{0, "", "", 1}}}};
  EXPECT_TRUE(holdsPart(bodyOf(order, OrderPaper::Order),
                        "<p><b>Recesso: 3 pezzi su 3, €\u00A01.212,50.</b></p><p><b>Non resta nulla.</b></p>"));
  EXPECT_TRUE(holdsPart(labelText(order), "<small>Ordine A1041 · recesso totale</small>"));
  order.lines.clear();
  order.withdrawals = {{"R1", "2026-06-02 11:00:00", "ricevuto", {{-1, "A1041", "", 1}}}};
  EXPECT_TRUE(holdsPart(bodyOf(order, OrderPaper::Order),
                        "ricevuto<br>1 × l'intero ordine</p><p><b>Recesso dall'intero ordine.</b></p>"));
}

TEST(OrderPapers, WithdrawalsBeyondTheOrderAreKeptWithinIt) {
  DeskOrder order = sampleOrder();
  order.withdrawals = {
      {"R1", "2026-06-02 11:00:00", "ricevuto", {{0, "", "", 900}, {7, "Brocca", "Blu", 4}, {-3, "", "", 1}}}};
  const OrderWithdrawn sums = withdrawnOf(order);
  EXPECT_EQ(sums.ofLine, (std::vector<std::int64_t>{2, 0}));
  EXPECT_EQ(sums.piecesLeft, 1);
  EXPECT_EQ(sums.amountLeft, cents(1250));
  EXPECT_EQ(withdrawalLines(order, order.withdrawals[0]),
            (std::vector<std::string>{"900 × Vaso blu (Misura: M)", "4 × Brocca (Blu)", "1 × "}));
}

TEST(OrderPapers, TheWindowShowsTheSameOfAWithdrawal) {
  EXPECT_TRUE(holdsPart(orderDetails(withdrawnOrder()),
                        "\nRecessi\nR1, 02/06/2026 11:00: accolto\n    1 × Vaso blu (Misura: M)\nR2, 03/06/2026 12:30: "
                        "respinto\n    1 × Tazza\nRecesso: 1 pezzo su 3, €\u00A0600,00.\nRestano: 2 pezzi, "
                        "€\u00A0612,50 (sconto, IVA e spese sono dell'ordine intero).\n"));
  EXPECT_TRUE(holdsPart(labelText(withdrawnOrder()), "<small>Ordine A1041 · restano 2 pezzi su 3</small>"));
}

TEST(OrderPapers, AnOrderWithoutLinesShowsItsSummaryOnEachPaper) {
  DeskOrder order = sampleOrder();
  order.lines.clear();
  order.summary = "1 x Vaso\r\n2 x <Tazza>";
  for (const OrderPaper paper : {OrderPaper::Order, OrderPaper::Delivery, OrderPaper::Receipt}) {
    EXPECT_TRUE(holdsPart(bodyOf(order, paper), "\">1 x Vaso<br>2 x &lt;Tazza&gt;</pre>"));
  }
}

TEST(OrderPapers, CharactersOfAnyScriptStayAsTheyAre) {
  DeskOrder order = sampleOrder();
  order.lines[0].shopTitle = "茶碗 ☕ Łódź";
  order.fields["Citta"] = "Кијев";
  const std::string html = bodyOf(order, OrderPaper::Order);
  EXPECT_TRUE(holdsPart(html, "茶碗 ☕ Łódź"));
  EXPECT_TRUE(holdsPart(html, "50100 Кијев FI"));
}

TEST(OrderPapers, ALongNameMayBreakAfterEach24Characters) {
  const std::string run = "àbcdefghijklmnopqrstuvwx";
  EXPECT_EQ(textAsHtml(run), run);
  EXPECT_EQ(textAsHtml(run + run + "y"), run + "&#8203;" + run + "&#8203;y");
  EXPECT_EQ(textAsHtml(run + " " + run), run + " " + run);
}

TEST(OrderPapers, TheLogoKeepsItsShapeAndItsRoom) {
  EXPECT_TRUE(holdsPart(bodyOf(sampleOrder(), OrderPaper::Order, logoOnPaper(480, 100)),
                        "<p><img src=\"logo\" width=\"240\" height=\"50\"></p><p><b>Bottega"));
  EXPECT_EQ(logoOnPaper(100, 720).height, 72);
  EXPECT_EQ(logoOnPaper(100, 720).width, 10);
  EXPECT_EQ(logoOnPaper(64, 32).width, 64);
  EXPECT_EQ(logoOnPaper(0, 32).width, 0);
  EXPECT_EQ(logoOnPaper(5000, 1).height, 1);
}

TEST(OrderPapers, ABareOrderIsAddressedByItsName) {
  DeskOrder order;
  order.name = "Anna Neri";
  EXPECT_EQ(addresseeLines(order), std::vector<std::string>{"Anna Neri"});
  order.fields = {{"Cognome", "Neri"}, {"Citta", "Firenze"}};
  EXPECT_EQ(addresseeLines(order), (std::vector<std::string>{"Neri", "Firenze"}));
}

TEST(OrderPapers, AmountsBeyondTheRangeStopAtItsEnd) {
  DeskOrderLine line;
  line.price = Money::ofUnits(900'000'000'000'000);
  line.quantity = 2000;
  EXPECT_EQ(decimalText(lineTotal(line)), "922.337.203.685.477,58");
  line.quantity = -2000;
  EXPECT_EQ(decimalText(lineTotal(line)), "-922.337.203.685.477,58");
  EXPECT_EQ(decimalText(Money::ofTenThousandths(-49)), "0,00");
  EXPECT_EQ(decimalText(Money::ofTenThousandths(12345650)), "1.234,57");
}

TEST(AddressLabels, FillASheetFromTheFirstFreeOneOn) {
  const LabelSheet& small = labelSheets()[0];
  EXPECT_EQ(small.count(), 24);
  const auto at = [&](int first, int index) {
    const LabelPosition position = labelPosition(small, first, index);
    return std::vector<double>{static_cast<double>(position.page), position.left, position.top};
  };
  EXPECT_EQ(at(0, 0), (std::vector<double>{0, 0, 0.5}));
  EXPECT_EQ(at(0, 5), (std::vector<double>{0, 140, 37.5}));
  EXPECT_EQ(at(22, 1), (std::vector<double>{0, 140, 259.5}));
  EXPECT_EQ(at(22, 2), (std::vector<double>{1, 0, 0.5}));
}

TEST(AddressLabels, LieWithinTheirPaper) {
  for (const LabelSheet& sheet : labelSheets()) {
    const LabelPosition last = labelPosition(sheet, 0, sheet.count() - 1);
    EXPECT_EQ(last.page, 0);
    EXPECT_NEAR(last.left + sheet.width + sheet.left, 210, 0.01) << sheet.caption;
    EXPECT_NEAR(last.top + sheet.height + sheet.top, 297, 0.01) << sheet.caption;
  }
}

TEST(AddressLabels, HoldTheAddressAndTheOrder) {
  EXPECT_EQ(labelText(sampleOrder()), "<html><body>" +
                                          paragraphs({"Anna Neri", "Neri &amp; Figli", "Via &lt;1&gt;",
                                                      "50100 Firenze FI", "Italia", "<small>Ordine A1041</small>"}) +
                                          "</body></html>");
}

TEST(TheSenderOfPapers, IsTheShopWithItsSignatureAndWhatTheLawAsks) {
  TempShop shop;
  shop.update("generale",
              {{"titolo", Value(std::string("Ceramiche Rossi"))},
               {"firma_email", Value(std::string("Ceramiche Rossi\r\nVia Roma 1, Firenze\r\n\r\nTel. 055 1\r\n"))},
               {"immagine0", Value(std::string("manca.png"))},
               {"immagine1", Value(std::string("logo.gif"))}});
  shop.shopFile("work/logo.gif", "GIF");
  ASSERT_TRUE(prepareIdentity(shop.session.catalogue));
  ASSERT_TRUE(writeIdentity(shop.session.catalogue, "legale_sede", "Via Roma 1, Firenze"));
  ASSERT_TRUE(writeIdentity(shop.session.catalogue, "legale_piva", "01234567890"));
  ASSERT_TRUE(writeIdentity(shop.session.catalogue, "legale_registro", "FI-12"));
  const auto sender = readShopSender(shop.session);
  ASSERT_TRUE(sender) << sender.error().what;
  EXPECT_EQ(sender->name, "Ceramiche Rossi");
  EXPECT_EQ(sender->lines, (std::vector<std::string>{"Via Roma 1, Firenze", "Tel. 055 1", "Partita IVA 01234567890",
                                                     "Registro imprese FI-12"}));
  EXPECT_EQ(sender->logo, joinPath(shop.folder(), "work/logo.gif"));
}

TEST(TheSenderOfPapers, NeedsNoMoreThanAShopWithoutAnything) {
  TempShop shop;
  shop.update("generale", {{"titolo", Value()}, {"firma_email", Value()}});
  const auto sender = readShopSender(shop.session);
  ASSERT_TRUE(sender) << sender.error().what;
  EXPECT_EQ(sender->name, "");
  EXPECT_TRUE(sender->lines.empty());
  EXPECT_EQ(sender->logo, "");
}

TEST(TheDepartmentsOfArticles, AreKnownByTheirTitles) {
  TempShop shop;
  shop.department("cat001", {{"titolo", Value(std::string("Vasi"))}});
  const std::int64_t ID = shop.article("cat001");
  const auto titles = readArticleDepartments(shop.session.catalogue);
  ASSERT_TRUE(titles) << titles.error().what;
  EXPECT_EQ(*titles, (std::map<std::int64_t, std::string>{{ID, "Vasi"}}));
}

}  // namespace
}  // namespace kv::test
