#pragma once
// What one article of the catalogue becomes on the pages of one language: its derived row. The row carries every text
// that a department page shows of the article and every argument that the cart receives of it, so that the shop's PHP
// prints columns and computes nothing.

#include <array>
#include <string>
#include <string_view>

#include "builder/article/article_price.h"
#include "builder/article/derived_row.h"
#include "builder/values/html_text.h"
#include "platform/database/statement.h"
#include "platform/ports/result.h"

namespace kv {

/// The index of each source column in a query over `articoli`, found by name once per query and not once per article.
struct ArticleColumns {
  /// Finds the columns of a prepared query. Other, naming the column, when the query lacks one.
  static Result<ArticleColumns> of(const Statement& query);

  int ID, catID, codice, titolo, sottotitolo, descrizione, note, link, linkesterno, novita, correlazione, peso, popup,
      inelenco;
  std::array<int, listini> prezzo, offerta, offertaprezzo, scq;  // by listino
  std::array<int, 2> scqart, scqperc;                            // by quantity threshold
  std::array<int, 3> immagine, imgX, imgY;                       // by picture: small, big, of the lists
  std::array<std::array<int, listini>, 4> opzione;               // by variant slot, then by listino
};

/// The article in the current row of a query. Its texts live until the query's next step.
struct ArticleView {
  const Statement& row;           ///< a query that has a current row
  const ArticleColumns& columns;  ///< of that query
};

/// What an article takes from its department and from the sub-page it is on.
struct ArticleContext {
  float vatRate = 0;           ///< aliquota of the department, a fraction
  float factor = 1;            ///< fattore di reparto, the department's discount factor
  std::string pagina;          ///< page file of the sub-page, with its query
  bool singleArticle = false;  ///< one article a page: the target has no anchor
  int contatore = 0;           ///< position on the sub-page, from 1
};

/// Rules that hold for every article of one language.
struct ArticleRules {
  PriceRules prices;      ///< how amounts are computed and written
  HtmlText html;          ///< how plain text becomes HTML
  std::string offerMark;  ///< what `offerta` starts as: the template's picture, or empty
};

/// The address of an article within the shop: "cat001.php?n=1#3"; without the anchor for a page of one article.
std::string articleTarget(const ArticleContext& context);

/// Computes the derived row of an article. `row` gets one field per derived column; the texts it holds from an earlier
/// article are replaced and their memory is used again.
/// Other with the number overflowFailure, naming the article's code, when an amount leaves the range of Money.
Result<> fillDerivedRow(const ArticleView& article, const ArticleContext& context, const ArticleRules& rules,
                        const DerivedColumns& columns, DerivedRow& row);

}  // namespace kv
