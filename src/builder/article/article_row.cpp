#include "builder/article/article_row.h"

#include "builder/values/build_failure.h"
#include "platform/numbers/number_format.h"
#include "platform/text/text.h"

namespace kv {

namespace {

constexpr std::int64_t popupWidth = 600;  // of a pop-up picture whose size is not known
constexpr std::int64_t popupHeight = 350;

/// Finds columns of a query by name and remembers the first one that the query lacks.
class ColumnFinder {
 public:
  explicit ColumnFinder(const Statement& query) : query_(query) {}

  int find(std::string_view name) {
    for (int i = 0; i < query_.columnCount(); ++i) {
      if (equalsIgnoringCase(query_.columnName(i), name)) return i;
    }
    if (missing_.empty()) missing_ = name;
    return 0;
  }
  const std::string& missing() const { return missing_; }

 private:
  const Statement& query_;
  std::string missing_;
};

void findTexts(ArticleColumns& columns, ColumnFinder& query) {
  columns.ID = query.find("ID");
  columns.catID = query.find("catID");
  columns.codice = query.find("codice");
  columns.titolo = query.find("titolo");
  columns.sottotitolo = query.find("sottotitolo");
  columns.descrizione = query.find("descrizione");
  columns.note = query.find("note");
  columns.link = query.find("link");
  columns.linkesterno = query.find("linkesterno");
  columns.novita = query.find("novita");
  columns.correlazione = query.find("correlazione");
  columns.peso = query.find("peso");
  columns.popup = query.find("popup");
  columns.inelenco = query.find("inelenco");
}

void findNumbered(ArticleColumns& columns, ColumnFinder& query) {
  for (std::size_t n = 0; n < listini; ++n) {
    const std::string suffix(listinoSuffixes[n]);
    columns.prezzo[n] = query.find("prezzo" + suffix);
    columns.offerta[n] = query.find("offerta" + suffix);
    columns.offertaprezzo[n] = query.find("offertaprezzo" + suffix);
    columns.scq[n] = query.find("scq" + suffix);
    for (std::size_t slot = 0; slot < columns.opzione.size(); ++slot) {
      columns.opzione[slot][n] = query.find(variantColumn(static_cast<int>(slot) + 1, static_cast<int>(n)));
    }
  }
  for (std::size_t i = 0; i < columns.scqart.size(); ++i) {
    columns.scqart[i] = query.find("scqart" + std::to_string(i));
    columns.scqperc[i] = query.find("scqperc" + std::to_string(i));
  }
  for (std::size_t i = 0; i < columns.immagine.size(); ++i) {
    columns.immagine[i] = query.find("immagine" + std::to_string(i));
    columns.imgX[i] = query.find("imgX" + std::to_string(i));
    columns.imgY[i] = query.find("imgY" + std::to_string(i));
  }
}

DerivedField& at(DerivedRow& row, int index) { return row[static_cast<std::size_t>(index)]; }

void fillListini(const ArticleView& article, const DerivedColumns& columns, DerivedRow& row) {
  for (std::size_t n = 0; n < listini; ++n) {
    const Money price = article.row.money(article.columns.prezzo[n]);
    at(row, columns.implistino[n]).setMoney(price);
    at(row, columns.importo[n])
        .setMoney(article.row.flag(article.columns.offerta[n]) ? article.row.money(article.columns.offertaprezzo[n])
                                                               : price);
    at(row, columns.scq[n]).setWhole(article.row.flag(article.columns.scq[n]) ? 1 : 0);
    for (std::size_t slot = 0; slot < columns.opzione.size(); ++slot) {
      at(row, columns.opzione[slot][n]).setWhole(article.row.integer(article.columns.opzione[slot][n]));
    }
  }
  for (std::size_t i = 0; i < 2; ++i) {
    at(row, columns.scqperc[i]).setReal((100.0 - article.row.number(article.columns.scqperc[i])) / 100.0);
    at(row, columns.scqart[i]).setWhole(article.row.integer(article.columns.scqart[i]));
  }
}

Result<> fillPrices(const ArticleView& article, const ArticleContext& context, const ArticleRules& rules,
                    const DerivedColumns& columns, DerivedRow& row) {
  PriceSource prices{article.row.money(article.columns.prezzo[0]), std::nullopt, context.vatRate, context.factor};
  if (!article.row.isNull(article.columns.offertaprezzo[0]))
    prices.offerPrice = article.row.money(article.columns.offertaprezzo[0]);
  auto texts = priceTexts(rules.prices, prices, rules.offerMark);
  if (!texts) {
    return fail(ErrorKind::Other, "", "Prezzo troppo grande: " + std::string(article.row.text(article.columns.codice)),
                overflowFailure);
  }
  at(row, columns.listino).set(std::move(texts->listino));
  at(row, columns.prezzo).set(std::move(texts->prezzo));
  at(row, columns.cambio).set(std::move(texts->cambio));
  at(row, columns.iva).set(std::move(texts->iva));
  at(row, columns.offerta).set(std::move(texts->offerta));
  at(row, columns.cart_prezzo).set(std::move(texts->cartPrice));
  at(row, columns.cart_iva).set(std::move(texts->cartVat));
  at(row, columns.cart_peso).set(trimmedNumber(article.row.single(article.columns.peso)));
  return {};
}

void fillPictures(const ArticleView& article, const DerivedColumns& columns, DerivedRow& row) {
  const std::string_view link = article.row.text(article.columns.link);
  const bool outside = article.row.flag(article.columns.linkesterno);
  const bool popup = article.row.flag(article.columns.popup);
  std::array<std::string, 3> tags;
  for (std::size_t i = 0; i < tags.size(); ++i) {
    tags[i] = pictureTag(article.row.text(article.columns.immagine[i]), article.row.integer(article.columns.imgX[i]),
                         article.row.integer(article.columns.imgY[i]));
  }
  const std::string_view big = article.row.text(article.columns.immagine[1]);
  if (popup && !big.empty()) {
    const auto width =
        article.row.isNull(article.columns.imgX[1]) ? popupWidth : article.row.integer(article.columns.imgX[1]);
    const auto height =
        article.row.isNull(article.columns.imgY[1]) ? popupHeight : article.row.integer(article.columns.imgY[1]);
    std::string script = "javascript:PopupImage('";
    script.append(big).append("',").append(std::to_string(width)).append(",").append(std::to_string(height));
    at(row, columns.immagine[0]).set(PutOnClick(tags[0], script.append("); return false;")));
  } else {
    at(row, columns.immagine[0]).set(PutLink(tags[0], link, outside));
  }
  at(row, columns.immagine[1]).set(popup ? std::move(tags[1]) : PutLink(tags[1], link, outside));
  at(row, columns.immagine[2]).set(PutLink(tags[2], link, outside));
}

void fillTexts(const ArticleView& article, const ArticleRules& rules, const DerivedColumns& columns, DerivedRow& row) {
  const std::string_view title = article.row.text(article.columns.titolo);
  const std::string_view subtitle = article.row.text(article.columns.sottotitolo);
  const std::string_view link = article.row.text(article.columns.link);
  const bool outside = article.row.flag(article.columns.linkesterno);
  at(row, columns.ID).setWhole(article.row.integer(article.columns.ID));
  at(row, columns.novita).setWhole(article.row.flag(article.columns.novita) ? 1 : 0);
  at(row, columns.catID).set(article.row.text(article.columns.catID));
  at(row, columns.codice).set(article.row.text(article.columns.codice));
  at(row, columns.correlazione).set(article.row.text(article.columns.correlazione));
  at(row, columns.titolo).set(PutLink(rules.html.TestoHTML(title), link, outside));
  at(row, columns.plain_titolo).set(title);
  at(row, columns.sottotitolo).set(PutLink(rules.html.TestoHTML(subtitle), link, outside));
  at(row, columns.plain_sottotitolo).set(subtitle);
  at(row, columns.cart_articolo).set(CartArticolo(article.row.text(article.columns.codice), title));
  at(row, columns.descrizione).set(article.row.text(article.columns.descrizione));
  at(row, columns.note).set(article.row.text(article.columns.note));
}

// The text ends inside an attribute: its second quote closes the href it is meant for, the template's own closing
// quote ends the onMouseOver.
std::string buyLink(const DerivedColumns& columns, const DerivedRow& row) {
  const auto text = [&row](int index) -> const std::string& { return row[static_cast<std::size_t>(index)].text; };
  std::string out = "javascript:window.status='';Acquista('";
  out.append(text(columns.cart_articolo)).append("','").append(text(columns.cart_prezzo)).append("','");
  out.append(text(columns.cart_iva)).append("',document.itemsform.qt").append(text(columns.contatore));
  out.append(".value,'");
  for (std::size_t i = 0; i < 3; ++i) out.append(text(columns.cart_opzione[i])).append("','");
  out.append(text(columns.cart_peso)).append("')\" onMouseOver=\"window.status=''; return true");
  return out;
}

}  // namespace

Result<ArticleColumns> ArticleColumns::of(const Statement& query) {
  ArticleColumns columns{};
  ColumnFinder finder(query);
  findTexts(columns, finder);
  findNumbered(columns, finder);
  if (!finder.missing().empty()) {
    return fail(ErrorKind::Other, "", "Colonna non trovata: articoli." + finder.missing());
  }
  return columns;
}

std::string articleTarget(const ArticleContext& context) {
  if (context.singleArticle) return context.pagina;
  return context.pagina + "#" + formatNumber(std::int64_t{context.contatore}, "#####0");
}

Result<> fillDerivedRow(const ArticleView& article, const ArticleContext& context, const ArticleRules& rules,
                        const DerivedColumns& columns, DerivedRow& row) {
  row.resize(columns.columns.size());
  fillTexts(article, rules, columns, row);
  fillListini(article, columns, row);
  fillPictures(article, columns, row);
  if (auto filled = fillPrices(article, context, rules, columns, row); !filled) return filled;
  const std::string position = std::to_string(context.contatore);
  at(row, columns.contatore).set(position);
  for (std::size_t i = 0; i < columns.cart_opzione.size(); ++i) {
    at(row, columns.cart_opzione[i]).set("op" + std::to_string(i + 1) + position);
  }
  at(row, columns.java_acquista).set(buyLink(columns, row));
  return {};
}

}  // namespace kv
