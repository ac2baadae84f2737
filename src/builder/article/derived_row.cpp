#include "builder/article/derived_row.h"

#include "platform/text/text.h"

namespace kv {

void DerivedField::bindTo(Statement& statement, int parameter) const {
  switch (kind) {
    case Kind::Null:
      statement.bindNull(parameter);
      break;
    case Kind::Integer:
      statement.bind(parameter, whole);
      break;
    case Kind::Real:
      statement.bind(parameter, real);
      break;
    case Kind::Money:
      statement.bind(parameter, Money::ofTenThousandths(whole));
      break;
    case Kind::Text:
      statement.bind(parameter, std::string_view(text));
      break;
  }
}

DerivedRow& DerivedRows::next() {
  if (rows_.size() <= count_) rows_.emplace_back();
  return rows_[count_];
}

DerivedColumns::DerivedColumns() : columns(derivedArticleColumns()) {
  ID = indexOf("ID");
  catID = indexOf("catID");
  codice = indexOf("codice");
  correlazione = indexOf("correlazione");
  novita = indexOf("novita");
  titolo = indexOf("titolo");
  plain_titolo = indexOf("plain_titolo");
  sottotitolo = indexOf("sottotitolo");
  plain_sottotitolo = indexOf("plain_sottotitolo");
  cart_articolo = indexOf("cart_articolo");
  offerta = indexOf("offerta");
  iva = indexOf("iva");
  listino = indexOf("listino");
  prezzo = indexOf("prezzo");
  cambio = indexOf("cambio");
  cart_prezzo = indexOf("cart_prezzo");
  cart_iva = indexOf("cart_iva");
  cart_peso = indexOf("cart_peso");
  descrizione = indexOf("descrizione");
  note = indexOf("note");
  contatore = indexOf("contatore");
  java_acquista = indexOf("java_acquista");
  findNumbered();
}

void DerivedColumns::findNumbered() {
  for (std::size_t n = 0; n < listini; ++n) {
    const std::string suffix(listinoSuffixes[n]);
    implistino[n] = indexOf("implistino" + suffix);
    importo[n] = indexOf("importo" + suffix);
    scq[n] = indexOf("scq" + suffix);
    for (std::size_t slot = 0; slot < opzione.size(); ++slot) {
      opzione[slot][n] = indexOf(variantColumn(static_cast<int>(slot) + 1, static_cast<int>(n)));
    }
  }
  for (std::size_t i = 0; i < scqperc.size(); ++i) {
    scqperc[i] = indexOf("scqperc" + std::to_string(i));
    scqart[i] = indexOf("scqart" + std::to_string(i));
  }
  for (std::size_t i = 0; i < immagine.size(); ++i) immagine[i] = indexOf("immagine" + std::to_string(i + 1));
  for (std::size_t i = 0; i < cart_opzione.size(); ++i) {
    cart_opzione[i] = indexOf("cart_opzione" + std::to_string(i + 1));
  }
}

int DerivedColumns::indexOf(std::string_view name) const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (equalsIgnoringCase(columns[i].name, name)) return static_cast<int>(i);
  }
  return -1;
}

Result<DerivedRowWriter> DerivedRowWriter::open(Database& database, std::string_view table,
                                                const DerivedColumns& derived, const std::vector<std::string>& extra) {
  auto info = database.table(table);
  if (!info) return fail(info.error());
  DerivedRowWriter writer;
  std::string names, marks;
  for (const ColumnInfo& column : info->columns) {
    const auto source = sourceOf(column.name, derived, extra);
    if (!source) continue;
    names += (names.empty() ? "\"" : ",\"") + column.name + "\"";
    marks += marks.empty() ? "?" : ",?";
    writer.sources_.push_back(*source);
  }
  auto insert = database.prepare("INSERT INTO " + std::string(table) + " (" + names + ") VALUES (" + marks + ")");
  if (!insert) return fail(insert.error());
  writer.insert_ = std::move(*insert);
  return writer;
}

// An extra field wins over a derived one of the same name.
std::optional<DerivedRowWriter::Source> DerivedRowWriter::sourceOf(std::string_view column,
                                                                   const DerivedColumns& derived,
                                                                   const std::vector<std::string>& extra) {
  for (std::size_t i = extra.size(); i > 0; --i) {
    if (equalsIgnoringCase(extra[i - 1], column)) return Source{true, i - 1};
  }
  const int index = derived.indexOf(column);
  if (index < 0) return std::nullopt;
  return Source{false, static_cast<std::size_t>(index)};
}

Result<> DerivedRowWriter::write(const DerivedRow& row, const std::vector<DerivedField>& extra) {
  int parameter = 0;
  for (const Source& source : sources_) {
    const DerivedField& field = source.isExtra ? extra[source.index] : row[source.index];
    field.bindTo(insert_, ++parameter);
  }
  return insert_.execute();
}

}  // namespace kv
