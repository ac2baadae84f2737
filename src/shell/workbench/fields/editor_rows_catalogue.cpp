#include "shell/workbench/fields/editor_rows.h"

namespace kv {
namespace {

Editor shownBy(Editor row, Control control, FieldKind kind) {
  row.control = control;
  row.kind = kind;
  return row;
}
Editor department(std::string_view column, std::string_view group, std::string_view label,
                  Control control = Control::Line, FieldKind kind = FieldKind::PlainText) {
  return shownBy(editorRow(EditedSet::Categorie, Tab::Departments, column, group, label), control, kind);
}
Editor article(std::string_view column, std::string_view group, std::string_view label, Control control = Control::Line,
               FieldKind kind = FieldKind::PlainText) {
  return shownBy(editorRow(EditedSet::Articoli, Tab::Articles, column, group, label), control, kind);
}

Editor env(Editor row, std::string_view unit, std::string_view toolTip, std::string_view choices = "") {
  row.unit = unit;
  row.toolTip = toolTip;
  row.choices = choices;
  return row;
}
Editor perListino(Editor row) {
  row.per = Per::Listino;
  return row;
}
Editor from(Editor row, ChoiceSource source) {
  row.source = source;
  return row;
}
Editor numbered(Editor row, int number) {
  row.number = number;
  return row;
}

Editor beside(Editor row) {
  row.beside = true;
  return row;
}

constexpr std::string_view safety = "Sicurezza del prodotto";
constexpr std::string_view delivery = "Consegna";

std::vector<Editor> departmentEditors() {
  using enum Control;
  constexpr std::string_view general = "Reparto", list = "Listino", texts = "Testi", pictures = "Immagini";
  return {department("titolo", general, "&Titolo:", Line, FieldKind::DepartmentTitle),
          env(department("pagina", general, "Pagina:", Shown), "", "Il nome del file della pagina, che non cambia più"),
          from(env(department("template", general, "Mode&llo di pagina:", Pick), "",
                   "Il modello del template con cui è costruita la pagina del reparto"),
               ChoiceSource::Models),
          env(department("maxarticoli", general, "Articoli per &pagina:", Line, FieldKind::WholeNumber), "",
              "Oltre questo numero il reparto continua su un'altra pagina; vuoto: il numero predefinito"),
          env(department("affiancati", general, "Articoli affian&cati:", Combo, FieldKind::SideBySide), "",
              "Quanti articoli stanno sulla stessa riga; vuoto: come nella scheda Sito", " |1|2|3|4|5|6"),
          env(department("iva", general, "&IVA:", Combo, FieldKind::Vat), "%",
              "L'aliquota di tutti gli articoli del reparto", "22|10|5|4|0"),
          env(department("nascosto", general, "&Nascondi nell'elenco dei reparti", Check), "",
              "Il reparto e i suoi sottoreparti non compaiono nell'elenco dei reparti del negozio"),
          perListino(env(department("sconto", list, "&Sconto:", Line, FieldKind::Percent), "%",
                         "Lo sconto del reparto nel listino scelto")),
          perListino(env(department("inaccessibile", list, "Non &accessibile", Check), "",
                         "Il reparto è chiuso ai clienti del listino scelto")),
          beside(from(env(department("produttore", safety, "Produttore:", Pick), "",
                          "Il produttore degli articoli del reparto e dei sottoreparti, se non ne hanno uno proprio"),
                      ChoiceSource::Makers)),
          beside(env(department("consegna", delivery, "Tempo di consegna:"), "",
                     "Per esempio: 2-4 giorni lavorativi. Vale per gli articoli del reparto e dei sottoreparti")),
          department("descrizione", texts, "&Descrizione:", Memo),
          department("note", texts, "N&ote:", Memo),
          numbered(department("immagine0", pictures, "Immagine:", Picture), 0),
          numbered(env(department("immagine1", pictures, "Pulsante:", Picture), "",
                       "L'immagine del pulsante del reparto, una per lingua"),
                   1)};
}

/// What each new article is given first, in the order in which it is typed.
std::vector<Editor> articleNames() {
  using enum Control;
  constexpr std::string_view general = "Articolo";
  return {article("codice", general, "&Codice:", Line, FieldKind::Code),
          article("titolo", general, "&Titolo:", Line, FieldKind::Heading),
          article("sottotitolo", general, "&Sottotitolo:", Line, FieldKind::Heading)};
}

std::vector<Editor> articleTexts() {
  using enum Control;
  constexpr std::string_view general = "Altri dati", texts = "Testi";
  return {article("descrizione", texts, "&Descrizione:", Memo),
          article("note", texts, "N&ote:", Memo),
          env(article("peso", general, "&Peso:", Line, FieldKind::Weight), "",
              "Nell'unità usata per le spese di spedizione"),
          from(env(article("correlazione", general, "Articoli co&rrelati:", Combo), "",
                   "Una parola comune agli articoli che si richiamano a vicenda"),
               ChoiceSource::RelatedWords),
          env(article("link", general, "&Link:", Line, FieldKind::Link), "",
              "La pagina a cui porta l'articolo; vuoto: nessuna"),
          article("linkesterno", general, "Apri il link in una n&uova finestra", Check),
          env(article("novita", general, "&Novità", Check), "", "L'articolo porta il segno delle novità"),
          env(article("inelenco", general, "In v&etrina", Check), "", "L'articolo compare nella vetrina del negozio"),
          env(article("popup", general, "Immagine in&grandita in una finestra", Check), "",
              "Un clic sull'immagine piccola apre quella grande in una finestra"),
          env(article("fuoricatalogo", general, "Fuor&i catalogo", Check), "", "L'articolo è escluso dal negozio")};
}

std::vector<Editor> articlePrices() {
  using enum Control;
  constexpr std::string_view list = "Listino";
  std::vector<Editor> rows{perListino(article("prezzo", list, "Pre&zzo:", Line, FieldKind::Price)),
                           perListino(article("offerta", list, "In offert&a", Check)),
                           perListino(article("offertaprezzo", list, "Prezzo in offerta:", Line, FieldKind::Price)),
                           perListino(env(article("scq", list, "Sconto per &quantità", Check), "",
                                          "Applica in questo listino i due sconti per quantità dell'articolo"))};
  constexpr std::string_view variantLabels[] = {"Variante 1:", "Variante 2:", "Variante 3:", "Variante 4:"};
  constexpr std::string_view variantColumns[] = {"opzione1", "opzione2", "opzione3", "opzione4"};
  for (int slot = 1; slot <= 4; ++slot) {
    const auto index = static_cast<std::size_t>(slot - 1);
    rows.push_back(perListino(numbered(article(variantColumns[index], list, variantLabels[index], Variant), slot)));
  }
  return rows;
}

std::vector<Editor> articleRest() {
  using enum Control;
  constexpr std::string_view quantity = "Sconto per quantità", pictures = "Immagini";
  constexpr std::string_view unit = "Prezzo per unità";
  return {
      beside(env(
          article("contenuto", unit, "Contenuto:", Line, FieldKind::Weight), "",
          "Quanto contiene una confezione, nell'unità scelta: 0,25 per 250 grammi; vuoto: nessun prezzo per unità")),
      beside(env(article("misura", unit, "Unità:", Pick), "",
                 "Chilogrammi, litri, metri o pezzi: il sito mostra il prezzo di uno accanto a ogni prezzo",
                 "|kg|l|m|pz")),
      beside(from(env(article("produttore", safety, "Produttore:", Pick), "",
                      "Il produttore dell'articolo; vuoto: quello del reparto"),
                  ChoiceSource::Makers)),
      beside(env(article("consegna", delivery, "Tempo di consegna:"), "",
                 "Il tempo di consegna dell'articolo; vuoto: quello del reparto")),
      env(article("scqart0", quantity, "Da pezzi (1):", Line, FieldKind::WholeNumber), "pezzi",
          "Da questa quantità vale il primo sconto"),
      env(article("scqperc0", quantity, "Sconto (1):", Line, FieldKind::Percent), "%", ""),
      env(article("scqart1", quantity, "Da pezzi (2):", Line, FieldKind::WholeNumber), "pezzi",
          "Da questa quantità vale il secondo sconto"),
      env(article("scqperc1", quantity, "Sconto (2):", Line, FieldKind::Percent), "%", ""),
      numbered(article("immagine0", pictures, "Immagine 1:", Picture), 0),
      numbered(article("immagine1", pictures, "Immagine 2:", Picture), 1),
      numbered(article("immagine2", pictures, "Immagine piccola:", Picture), 2)};
}

}  // namespace

std::vector<Editor> catalogueEditors() {
  std::vector<Editor> rows = departmentEditors();
  for (const auto& part : {articleNames(), articlePrices(), articleTexts(), articleRest()}) {
    rows.insert(rows.end(), part.begin(), part.end());
  }
  return rows;
}

}  // namespace kv
