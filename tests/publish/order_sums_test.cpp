// Sales by time, department and article: exact sums, each currency by itself, what is no sale left out.
#include "publish/orders/sales/order_sums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "publish/orders/sales/sales_days.h"
#include "publish/orders/sales/sales_view.h"
#include "support/sample_orders.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

DeskOrder saleOn(const std::string& day, std::int64_t total, const std::string& state = "pagato") {
  DeskOrder order;
  order.created = day + " 12:00:00";
  order.total = cents(total);
  order.currency = "€";
  order.state = state;
  return order;
}

/// Sums as "key label amount/pieces/orders" by lines.
std::string rowsTold(const std::vector<SalesRow>& rows) {
  std::string text;
  for (const SalesRow& row : rows) {
    text += row.key + " [" + row.label + "] " + std::to_string(row.amount.tenThousandths()) + "/" +
            std::to_string(row.pieces) + "/" + std::to_string(row.orders) + "\n";
  }
  return text;
}

std::string salesTold(const std::vector<DeskOrder>& orders, const SalesQuestion& question) {
  const auto sales = salesOf(orders, question);
  if (!sales) return "failed: " + sales.error().what;
  std::string text;
  for (const CurrencySales& each : *sales) {
    text += each.currency + " " + std::to_string(each.total.tenThousandths()) + "/" + std::to_string(each.orders) +
            "\n" + rowsTold(each.rows);
  }
  return text;
}

TEST(SumsOfSales, ByDayHaveTheDaysBetweenThemToo) {
  const std::vector orders{saleOn("2026-03-01", 1000), saleOn("2026-02-27", 250), saleOn("2026-03-01", 1)};
  EXPECT_EQ(salesTold(orders, {SalesBy::Day}),
            "€ 125100/3\n2026-02-27 [27/02/2026] 25000/0/1\n2026-02-28 [28/02/2026] 0/0/0\n"
            "2026-03-01 [01/03/2026] 100100/0/2\n");
}

TEST(SumsOfSales, ByWeekBeginOnMonday) {
  const std::vector orders{saleOn("2026-01-04", 100), saleOn("2026-01-05", 200), saleOn("2026-01-11", 300)};
  EXPECT_EQ(salesTold(orders, {SalesBy::Week}),
            "€ 60000/3\n2025-12-29 [dal 29/12/2025 al 04/01/2026] 10000/0/1\n"
            "2026-01-05 [dal 05/01/2026 al 11/01/2026] 50000/0/2\n");
}

TEST(SumsOfSales, ByMonthGoOverTheEndOfAYear) {
  const std::vector orders{saleOn("2025-12-31", 100), saleOn("2026-02-01", 200)};
  EXPECT_EQ(salesTold(orders, {SalesBy::Month}),
            "€ 30000/2\n2025-12-01 [dicembre 2025] 10000/0/1\n2026-01-01 [gennaio 2026] 0/0/0\n"
            "2026-02-01 [febbraio 2026] 20000/0/1\n");
}

TEST(SumsOfSales, LeaveOutWhatIsNoSaleAndWhatIsOutsideTheSpan) {
  const std::vector orders{saleOn("2026-03-01", 1, "annullato"),
                           saleOn("2026-03-01", 2, "rifiutato"),
                           saleOn("2026-03-01", 4, "nuovo"),
                           saleOn("2026-02-28", 8),
                           saleOn("2026-03-02", 16),
                           saleOn("un giorno", 32)};
  EXPECT_EQ(salesTold(orders, {SalesBy::Day, "2026-03-01", "2026-03-01"}),
            "€ 400/1\n2026-03-01 [01/03/2026] 400/0/1\n");
  EXPECT_EQ(salesTold(orders, {SalesBy::Month, "2026-03-01", ""}), "€ 2000/2\n2026-03-01 [marzo 2026] 2000/0/2\n");
  EXPECT_EQ(salesTold({}, {SalesBy::Day}), "");
}

TEST(SumsOfSales, KeepCurrenciesApartTheMostUsedFirst) {
  std::vector orders{saleOn("2026-03-01", 100), saleOn("2026-03-01", 200), saleOn("2026-03-01", 400)};
  orders[0].currency = "$";
  EXPECT_EQ(salesTold(orders, {SalesBy::Day}),
            "€ 60000/2\n2026-03-01 [01/03/2026] 60000/0/2\n$ 10000/1\n2026-03-01 [01/03/2026] 10000/0/1\n");
}

TEST(SumsOfSales, ByDepartmentAskTheCallerAndCountAnOrderOnce) {
  DeskOrder order = sampleOrder();
  order.lines.push_back({11, "X", "", "", "Piatto", "", 3, cents(1)});
  const auto departmentOf = [](std::int64_t article) { return article == 9 ? std::string() : std::string("Vasi"); };
  EXPECT_EQ(
      salesTold({order, saleOn("2026-03-01", 700)}, {SalesBy::Department, "", "", departmentOf}),
      "€ 12415000/2\nVasi [Vasi] 12000300/5/1\n [Senza reparto] 125000/1/1\n\t [Ordini senza dettaglio] 70000/0/1\n");
}

TEST(SumsOfSales, ByArticleTakeTheNewestTitle) {
  DeskOrder newer = sampleOrder(), older = sampleOrder();
  older.id = 1;
  older.lines[0].shopTitle = "Vaso";
  older.lines[1] = {0, "T9", "", "", "Tazza", "", 1, cents(2)};
  EXPECT_EQ(salesTold({newer, older}, {SalesBy::Article}),
            "€ 24690000/2\n7 [V7 Vaso blu] 24000000/4/2\n9 [T9 Tazza] 125000/1/1\n\tT9\tTazza [T9 Tazza] 200/1/1\n");
}

TEST(SumsOfSales, BeyondTheRangeAreRefused) {
  DeskOrder order = saleOn("2026-03-01", 0);
  order.total = Money::ofTenThousandths(std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(salesTold({order, order}, {SalesBy::Day}), "failed: a sum is out of range");
}

/// The sums of one currency by one kind of row, computed row by row.
Money literalSum(const std::vector<DeskOrder>& orders, const std::string& currency,
                 const std::function<std::int64_t(const DeskOrder&)>& part) {
  std::int64_t sum = 0;
  for (const DeskOrder& order : orders) {
    if (order.currency == currency && order.state != "annullato" && order.state != "rifiutato") sum += part(order);
  }
  return Money::ofTenThousandths(sum);
}

/// The sums by the time from one key to the next.
void expectSumsOfTimes(const std::vector<DeskOrder>& orders, const CurrencySales& sales) {
  for (std::size_t i = 0; i < sales.rows.size(); ++i) {
    const std::string& from = sales.rows[i].key;
    const std::string until = i + 1 < sales.rows.size() ? sales.rows[i + 1].key : "9999";
    EXPECT_EQ(sales.rows[i].amount,
              literalSum(orders, sales.currency,
                         [&](const DeskOrder& order) {
                           return order.created >= from && order.created < until ? order.total.tenThousandths() : 0;
                         }))
        << from;
  }
}

/// The sums of the lines that belong to each row, by the key that a line has.
void expectSumsOfLines(const std::vector<DeskOrder>& orders, const CurrencySales& sales,
                       const std::function<std::string(const DeskOrderLine&)>& keyOf) {
  for (const SalesRow& row : sales.rows) {
    EXPECT_EQ(row.amount, literalSum(orders, sales.currency,
                                     [&](const DeskOrder& order) {
                                       std::int64_t sum =
                                           order.lines.empty() && row.key == "\t" ? order.total.tenThousandths() : 0;
                                       for (const DeskOrderLine& line : order.lines) {
                                         if (keyOf(line) == row.key) sum += line.price.tenThousandths() * line.quantity;
                                       }
                                       return sum;
                                     }))
        << row.key;
  }
}

TEST(SumsOfSales, AreWhatALiteralComputationGives) {
  const auto departmentOf = [](std::int64_t article) {
    return article == 0 ? std::string() : article % 2 == 0 ? std::string("Pari") : std::string("Dispari");
  };
  for (unsigned round = 0; round < seeds(50); ++round) {
    SCOPED_TRACE(round);
    const std::vector<DeskOrder> orders = randomOrders(seed() + round);
    for (const SalesBy by : {SalesBy::Day, SalesBy::Week, SalesBy::Month, SalesBy::Department, SalesBy::Article}) {
      const auto sums = salesOf(orders, {by, "", "", departmentOf});
      ASSERT_TRUE(sums);
      for (const CurrencySales& sales : *sums) {
        if (isByTime(by)) {
          expectSumsOfTimes(orders, sales);
        } else if (by == SalesBy::Department) {
          expectSumsOfLines(orders, sales, [&](const DeskOrderLine& line) { return departmentOf(line.article); });
        } else {
          expectSumsOfLines(orders, sales, [](const DeskOrderLine& line) {
            return line.article == 0 ? std::string("\tA0\tArticolo A0") : std::to_string(line.article);
          });
        }
      }
    }
  }
}

TEST(SumsOfSales, WhatIsLeftAfterTheFirstRowsIsOneMore) {
  const std::vector<SalesRow> rows{{"a", "A", cents(9), 3, 2}, {"b", "B", cents(5), 2, 1}, {"c", "C", cents(2), 1, 1}};
  EXPECT_EQ(rowsTold(topRows(rows, 1)), "a [A] 900/3/2\n [Altri (2)] 700/3/2\n");
  EXPECT_EQ(topRows(rows, 2), rows) << "one other is no less than itself";
  EXPECT_EQ(salesBlock({{"a", "A\tB\"", cents(123456), 3, 2}}, SalesBy::Article),
            "Articolo\tImporto\tPezzi\tOrdini\nA B \t1234,56\t3\t2\n");
  EXPECT_EQ(salesBlock({{"a", "-5% Tazza", cents(100), 1, 1}}, SalesBy::Article),
            "Articolo\tImporto\tPezzi\tOrdini\n'-5% Tazza\t1,00\t1\t1\n");
}

TEST(PeriodsOfSales, AreSeenFromToday) {
  const auto today = *dayOf("2026-03-15");
  EXPECT_EQ(spanOf(SalesPeriod::LastDays, today), (SalesSpan{"2026-02-14", "2026-03-15"}));
  EXPECT_EQ(spanOf(SalesPeriod::ThisMonth, today), (SalesSpan{"2026-03-01", "2026-03-31"}));
  EXPECT_EQ(spanOf(SalesPeriod::LastMonth, today), (SalesSpan{"2026-02-01", "2026-02-28"}));
  EXPECT_EQ(spanOf(SalesPeriod::LastMonth, *dayOf("2024-01-31")), (SalesSpan{"2023-12-01", "2023-12-31"}));
  EXPECT_EQ(spanOf(SalesPeriod::ThisYear, today), (SalesSpan{"2026-01-01", "2026-12-31"}));
  EXPECT_EQ(spanOf(SalesPeriod::LastYear, today), (SalesSpan{"2025-01-01", "2025-12-31"}));
  EXPECT_EQ(spanOf(SalesPeriod::Everything, today), SalesSpan());
}

TEST(PeriodsOfSales, ReadADayOfTheCalendarAlone) {
  EXPECT_EQ(dayText(*dayOf("2024-02-29 10:00")), "2024-02-29");
  for (const char* none : {"2026-02-29", "2026-13-01", "2026-1-01", "26/05/2026", "", "2026-05", "2026x05x01"}) {
    EXPECT_FALSE(dayOf(none)) << none;
  }
}

TEST(TheChartOfSales, HasMarksOfRoundAmounts) {
  const auto marks = [](std::int64_t highest, int most) {
    const AxisMarks found = axisMarks(cents(highest), most);
    return std::to_string(found.step.tenThousandths() / 100) + "x" + std::to_string(found.count);
  };
  EXPECT_EQ(marks(123456, 6), "50000x3");
  EXPECT_EQ(marks(100000, 5), "20000x5");
  EXPECT_EQ(marks(100001, 5), "50000x3");
  EXPECT_EQ(marks(1, 6), "1x1");
  EXPECT_EQ(marks(0, 6), "0x0");
  EXPECT_EQ(axisMarks(Money::ofTenThousandths(std::numeric_limits<std::int64_t>::max()), 1).count, 1);
}

TEST(TheChartOfSales, HasABarForEachRowWithAShortName) {
  SalesView view;
  const std::vector orders{saleOn("2026-03-01", 123450), saleOn("2026-04-01", 200)};
  ASSERT_TRUE(view.update(orders));
  EXPECT_EQ(view.bars().front(), (SalesBar{"01/03/2026", "01/03", cents(123450), "€\u00A01.234,50"}));
  view.by = SalesBy::Month;
  ASSERT_TRUE(view.update(orders));
  EXPECT_EQ(view.bars().back().brief, "apr 26");
  EXPECT_EQ(view.summary(), "2 ordini, totale €\u00A01.236,50. Gli importi sono i totali degli ordini.");
  view.by = SalesBy::Article;
  view.top = 1;
  ASSERT_TRUE(view.update(std::vector{sampleOrder()}));
  EXPECT_EQ(view.bars().size(), 2U);
  EXPECT_EQ(view.bars().front().brief, "V7 Vaso blu");
  EXPECT_EQ(view.summary(),
            "Un ordine, totale €\u00A01.234,50. Gli importi sono quelli delle righe, senza sconti, IVA "
            "aggiunta e spese.");
  view.span = {"2027-01-01", ""};
  ASSERT_TRUE(view.update(orders));
  EXPECT_EQ(view.summary(), "Nessuna vendita in questo periodo.");
  EXPECT_TRUE(view.rows().empty());
}

}  // namespace
}  // namespace kv::test
