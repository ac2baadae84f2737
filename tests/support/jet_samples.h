#pragma once
// Tables of the accounting package for tests of Jet databases: every type of a column, Null, accents, long texts and
// deleted rows.

#include <random>

#include "support/jet_writer.h"

namespace kv::test {

inline JetTable categoriesTable() {
  return {"Categoria",
          {{"Id", JetType::Long}, {"Nome", JetType::Text}},
          {{std::int64_t{7}, std::string("Caffè e tazze")},
           {std::int64_t{8}, Null{}},
           {std::int64_t{9}, std::string("Città €")}},
          {}};
}

inline std::vector<JetColumn> articleColumns() {
  return {{"Id", JetType::Long},          {"IdCategoria", JetType::Long}, {"Codice", JetType::Text},
          {"Descrizione", JetType::Memo}, {"iva", JetType::Double},       {"Vendita1", JetType::Money},
          {"Vendita2", JetType::Single},  {"Vista", JetType::Int},        {"Attivo", JetType::Flag},
          {"Peso", JetType::Byte},        {"Nota", JetType::Text}};
}

/// Four articles: one without code, one that has been deleted, one with a long text, one with odd amounts.
inline JetTable articlesTable() {
  const auto amount = [](std::int64_t count) { return Value(Money::ofTenThousandths(count)); };
  std::string longText;
  for (int i = 0; i < 30000; ++i) longText += static_cast<char>('a' + i % 26);
  const std::string wide(250, 'y'), middle = "è" + std::string(2500, 'm');
  return {"Articoli",
          articleColumns(),
          {{std::int64_t{42}, std::int64_t{7}, Null{}, std::string("Tazza blu"), 22.0, amount(12345678), 0.25,
            std::int64_t{0}, true, std::int64_t{200}, wide},
           {std::int64_t{43}, std::int64_t{7}, std::string("via"), std::string("Tolto"), 22.0, amount(10000), 1.0,
            std::int64_t{0}, true, std::int64_t{1}, Null{}},
           {std::int64_t{44}, std::int64_t{8}, std::string("D'A-€"), longText, Null{}, Null{}, Null{}, Null{}, false,
            Null{}, wide},
           {std::int64_t{-45}, std::int64_t{9}, std::string("L1"), middle, 4.1, amount(-50), -0.5, std::int64_t{3},
            true, std::int64_t{255}, std::string("Perché")}},
          {1}};
}

/// Articles by chance, about one in seven deleted and some fields Null.
inline JetTable chanceArticles(unsigned chanceSeed, std::size_t count) {
  JetTable table{"Articoli", articleColumns(), {}, {}};
  std::mt19937 chance{chanceSeed};
  const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(chance); };
  const auto text = [&](int most) {
    static const std::vector<std::string> pieces{"a", "è", "€", "'", "\"", ",", "ñ", " ", "Z", "ß"};
    std::string made = "t";
    for (int i = upTo(most); i > 0; --i) made += pieces[static_cast<std::size_t>(upTo(9))];
    return made + "t";
  };
  const auto orNull = [&](Value value) { return upTo(6) == 0 ? Value(Null{}) : value; };
  for (std::size_t i = 0; i < count; ++i) {
    table.rows.push_back({static_cast<std::int64_t>(i), std::int64_t{upTo(9)}, orNull(text(20)),
                          orNull(text(upTo(40) == 0 ? 3000 : 60)), orNull(upTo(22000) / 1000.0),
                          orNull(Money::ofTenThousandths(upTo(2000000000) - 1000000000)), orNull(0.25 * upTo(4000)),
                          orNull(std::int64_t{upTo(3)}), upTo(1) == 0, orNull(std::int64_t{upTo(255)}),
                          orNull(text(100))});
    if (upTo(6) == 0) table.deleted.insert(i);
  }
  return table;
}

}  // namespace kv::test
