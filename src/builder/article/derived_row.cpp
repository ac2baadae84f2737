#include "builder/article/derived_row.h"

#include "platform/text/text.h"

namespace kv {

void DerivedField::bindTo(Statement& statement, int position) const {
  switch (kind) {
    case Kind::Null:
      statement.bindNull(position);
      break;
    case Kind::Integer:
      statement.bind(position, whole);
      break;
    case Kind::Real:
      statement.bind(position, real);
      break;
    case Kind::Money:
      statement.bind(position, Money::ofTenThousandths(whole));
      break;
    case Kind::Text:
      statement.bind(position, std::string_view(text));
      break;
  }
}

DerivedColumns::DerivedColumns() : columns(derivedArticleColumns()) {
  ID = place("ID");
  catID = place("catID");
  codice = place("codice");
  correlazione = place("correlazione");
  novita = place("novita");
  for (std::size_t n = 0; n < listini; ++n) {
    const std::string suffix(listinoSuffixes[n]);
    implistino[n] = place("implistino" + suffix);
    importo[n] = place("importo" + suffix);
    scq[n] = place("scq" + suffix);
    for (std::size_t slot = 0; slot < opzione.size(); ++slot) {
      opzione[slot][n] = place(variantColumn(static_cast<int>(slot) + 1, static_cast<int>(n)));
    }
  }
  for (std::size_t i = 0; i < 2; ++i) {
    scqperc[i] = place("scqperc" + std::to_string(i));
    scqart[i] = place("scqart" + std::to_string(i));
  }
  titolo = place("titolo");
  plain_titolo = place("plain_titolo");
  sottotitolo = place("sottotitolo");
  plain_sottotitolo = place("plain_sottotitolo");
  cart_articolo = place("cart_articolo");
  for (std::size_t i = 0; i < immagine.size(); ++i) immagine[i] = place("immagine" + std::to_string(i + 1));
  offerta = place("offerta");
  iva = place("iva");
  listino = place("listino");
  prezzo = place("prezzo");
  cambio = place("cambio");
  cart_prezzo = place("cart_prezzo");
  cart_iva = place("cart_iva");
  cart_peso = place("cart_peso");
  descrizione = place("descrizione");
  note = place("note");
  for (std::size_t i = 0; i < cart_opzione.size(); ++i) cart_opzione[i] = place("cart_opzione" + std::to_string(i + 1));
  contatore = place("contatore");
  java_acquista = place("java_acquista");
}

int DerivedColumns::place(std::string_view name) const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (equalsIgnoringCase(columns[i].name, name)) return static_cast<int>(i);
  }
  return -1;
}

Result<DerivedRowWriter> DerivedRowWriter::open(Database& database, std::string_view table,
                                                const DerivedColumns& derived, std::vector<std::string> extra) {
  auto info = database.table(table);
  if (!info) return fail(info.error());
  DerivedRowWriter writer;
  std::string names, marks;
  for (const ColumnInfo& column : info->columns) {
    const int place = derived.place(column.name);
    std::size_t index = place < 0 ? 0 : static_cast<std::size_t>(place);
    bool isExtra = false;
    for (std::size_t i = 0; i < extra.size(); ++i) {
      if (!equalsIgnoringCase(extra[i], column.name)) continue;
      isExtra = true;
      index = i;
    }
    if (place < 0 && !isExtra) continue;
    names += (names.empty() ? "\"" : ",\"") + column.name + "\"";
    marks += marks.empty() ? "?" : ",?";
    writer.sources_.push_back({isExtra, index});
  }
  auto insert = database.prepare("INSERT INTO " + std::string(table) + " (" + names + ") VALUES (" + marks + ")");
  if (!insert) return fail(insert.error());
  writer.insert_ = std::move(*insert);
  return writer;
}

Result<> DerivedRowWriter::write(const DerivedRow& row, const std::vector<DerivedField>& extra) {
  int position = 0;
  for (const Source& source : sources_) {
    const DerivedField& field = source.isExtra ? extra[source.index] : row[source.index];
    field.bindTo(insert_, ++position);
  }
  return insert_.execute();
}

}  // namespace kv
