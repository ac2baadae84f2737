#pragma once
// What one article of the catalogue becomes: its derived row, its entry in the lists, its cell in the showcase.

#include <array>
#include <string>
#include <string_view>

#include "builder/article/article_price.h"
#include "builder/article/derived_row.h"
#include "builder/values/html_text.h"
#include "builder/values/run_failure.h"
#include "platform/database/statement.h"

namespace kv {

/// Places of the source columns in a query over `articoli`, found by name once per query.
struct ArticleColumns {
  explicit ArticleColumns(const Statement& query);
  ArticleColumns() = default;

  int ID, catID, codice, titolo, sottotitolo, descrizione, note, link, linkesterno, novita, correlazione, peso, popup,
      inelenco;
  std::array<int, listini> prezzo, offerta, offertaprezzo, scq;
  std::array<int, 2> scqart, scqperc;
  std::array<int, 3> immagine, imgX, imgY;
  std::array<std::array<int, listini>, 4> opzione;
};

/// The article that a query stands on, with the places of its columns.
struct ArticleView {
  const Statement& row;
  const ArticleColumns& columns;
};

/// What an article takes from its department and page.
struct ArticlePlace {
  float vatRate = 0;           ///< aliquota of the department, a fraction
  float factor = 1;            ///< fattore di reparto
  std::string pagina;          ///< page file of the sub-page, with its query
  bool singleArticle = false;  ///< one article a page: the target has no anchor
  int contatore = 0;           ///< position on the sub-page, from 1
};

/// Rules that hold for every article of one language.
struct ArticleRules {
  PriceRules prices;
  HtmlText html;
  std::string offerMark;  ///< what `offerta` starts as
};

/// The address of an article within the shop: "cat001.php?n=1#3".
std::string articleTarget(const ArticlePlace& place);

/// Fills `row` from an article. Throws RunFailure when an amount leaves the range of Money.
void fillDerivedRow(const ArticleView& article, const ArticlePlace& place, const ArticleRules& rules,
                    const DerivedColumns& columns, DerivedRow& row);

}  // namespace kv
