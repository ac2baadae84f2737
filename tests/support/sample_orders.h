#pragma once
// Orders as tests of papers, files and sums want them.

#include <random>
#include <string>
#include <vector>

#include "publish/orders/values/desk_order.h"

namespace kv::test {

/// An amount of cents.
inline Money cents(std::int64_t count) { return Money::ofTenThousandths(count * 100); }

/// An order of two articles with every field; one line in the customer's words, with choices.
inline DeskOrder sampleOrder() {
  DeskOrder order;
  order.id = 41;
  order.code = "A1041";
  order.created = "2026-05-31 09:05:07";
  order.customer = 12;
  order.name = "Anna Neri";
  order.email = "anna@casa.example";
  order.total = cents(123450);
  order.currency = "€";
  order.method = "Bonifico";
  order.state = "pagato";
  order.fields = {{"Nome", "Anna"},
                  {"Cognome", "Neri"},
                  {"RagioneSociale", "Neri & Figli"},
                  {"Indirizzo", "Via <1>"},
                  {"CAP", "50100"},
                  {"Citta", "Firenze"},
                  {"Provincia", "FI"},
                  {"Paese", "Italia"},
                  {"Telefono", "055 1"},
                  {"PartitaIVA", "0123"},
                  {"Note", "Suonare\n\"due\" volte"}};
  order.lines = {{7, "V7", "Blue vase", "Size: M", "Vaso blu", "Misura: M", 2, cents(60000)},
                 {9, "T9", "Tazza", "", "Tazza", "", 1, cents(1250)}};
  order.totals = {{"merce", cents(121250)}, {"sconto", cents(500)}, {"spese", cents(2200)}, {"iva", cents(0)}};
  return order;
}

/// An order of chance: few articles, several days and states, two currencies, now and then without lines.
inline DeskOrder randomOrder(std::mt19937& random, std::int64_t id) {
  const auto below = [&](unsigned limit) { return static_cast<std::int64_t>(random() % limit); };
  DeskOrder order;
  order.id = id;
  order.code = "C" + std::to_string(id);
  const std::string month = std::to_string(10 + below(3)), day = std::to_string(10 + below(19));
  order.created = (below(5) == 0 ? "2025-" : "2026-") + month + "-" + day + " 10:00:00";
  order.currency = below(4) == 0 ? "$" : "€";
  order.state = orderStates()[static_cast<std::size_t>(below(7))];
  order.total = cents(below(1000000));
  for (auto lines = below(5); lines > 0; --lines) {
    DeskOrderLine line;
    line.article = below(6);
    line.code = "A" + std::to_string(line.article);
    line.shopTitle = "Articolo " + line.code;
    line.quantity = 1 + below(9);
    line.price = cents(below(100000));
    order.lines.push_back(line);
  }
  return order;
}

/// Many of them.
inline std::vector<DeskOrder> randomOrders(unsigned seed) {
  std::mt19937 random(seed);
  std::vector<DeskOrder> orders;
  for (auto count = static_cast<std::int64_t>(random() % 40); count > 0; --count) {
    orders.push_back(randomOrder(random, count));
  }
  return orders;
}

}  // namespace kv::test
