// The two databases of a build. What MySQL will be asked to create from new.mdb sets the widths here: no column
// needs NOT NULL or a default, and the texts of fixed width are so short that a row of each table stays below half a
// page of InnoDB (8126 bytes) with four bytes for each character. Source: MySQL 8.0 Reference Manual, 15.22 InnoDB
// Limits; 8.4.7 Limits on Table Column Count and Row Size.
#include <algorithm>
#include <utility>

#include "store/schema/schema_parts.h"

namespace kv {

using namespace columns;  // the shorthands of a list of rules

namespace {

constexpr int keyWidth = 20;     // "cat" and the digits of a Long, with room
constexpr int codeWidth = 50;    // the editor's limit for an article's code
constexpr int titleWidth = 200;  // the editor's limit for title and subtitle
constexpr int priceWidth = 100;  // a currency label of 50, the widest amount, "<strike>" around both
constexpr int figureWidth = 30;  // the widest plain amount of a money value
constexpr int fieldWidth = 12;   // "op1" and five digits

constexpr std::array<std::string_view, 97> pageTags{"titolo",
                                                    "note",
                                                    "descrizione",
                                                    "immagine",
                                                    "sottopagine",
                                                    "reparti",
                                                    "repartimenu",
                                                    "elenco",
                                                    "vetrina",
                                                    "search_maxart",
                                                    "lingua1",
                                                    "lingua2",
                                                    "lingua3",
                                                    "lingua4",
                                                    "home1",
                                                    "home2",
                                                    "condizioni",
                                                    "recesso",
                                                    "datipers",
                                                    "testo1",
                                                    "testo2",
                                                    "paesi",
                                                    "pagamento",
                                                    "java_zona",
                                                    "java_importi",
                                                    "java_permessi",
                                                    "java_iva",
                                                    "java_iva_spese",
                                                    "java_importi_peso",
                                                    "java_tipopeso",
                                                    "java_aliquotaspese",
                                                    "java_qminima",
                                                    "java_minimo",
                                                    "CGIsearch",
                                                    "CGIordine",
                                                    "email",
                                                    "username",
                                                    "password",
                                                    "negozio",
                                                    "java_valuta",
                                                    "email_ordini",
                                                    "perl_path",
                                                    "java_ivacompresa",
                                                    "merchantid",
                                                    "urlback",
                                                    "urldone",
                                                    "testo_contrassegno",
                                                    "testo_anticipato",
                                                    "foldercgi",
                                                    "perl_shopURL",
                                                    "perl_cgiURL",
                                                    "perl_shopname",
                                                    "perl_email",
                                                    "testo_email",
                                                    "perl_testo_email",
                                                    "valuta",
                                                    "perl_mailend",
                                                    "firma",
                                                    "java_search",
                                                    "java_daticliente",
                                                    "java_campi",
                                                    "java_redirect",
                                                    "java_ANDORsearch",
                                                    "java_sepsearch",
                                                    "java_carrello",
                                                    "IDnegozio",
                                                    "IDlingua",
                                                    "ric_pagina",
                                                    "ric_codice",
                                                    "ric_titolo",
                                                    "ric_sottotitolo",
                                                    "ric_foto",
                                                    "logo1",
                                                    "logo2",
                                                    "meta_keywords",
                                                    "meta_description",
                                                    "colore0",
                                                    "colore1",
                                                    "colore2",
                                                    "colore3",
                                                    "db_security",
                                                    "db_hostname",
                                                    "db_username",
                                                    "db_password",
                                                    "db_dbname",
                                                    "bo_username",
                                                    "bo_password",
                                                    "compact_privacy_policy",
                                                    "php_vars",
                                                    "php_globals",
                                                    "output",
                                                    "login",
                                                    "rifiuto",
                                                    "thankyou",
                                                    "java_PGAction",
                                                    "metodo_pagamento",
                                                    "paymsg"};

// The columns of the derived row that hold words of a language, or a link to a page of it.
constexpr std::array<std::string_view, 10> languageColumns{
    "titolo", "plain_titolo", "sottotitolo", "plain_sottotitolo", "cart_articolo", "offerta",
    "iva",    "descrizione",  "note",        "java_acquista"};

ColumnRule real(std::string_view name) {
  ColumnRule rule = number(name);
  rule.type = ColumnType::Double;
  return rule;
}

std::vector<ColumnRule> derivedRules() {
  std::vector<ColumnRule> rules{number("ID"),
                                flag("novita"),
                                text("catID", keyWidth),
                                text("correlazione"),
                                text("codice", codeWidth),
                                perListino(money("implistino")),
                                perListino(money("importo")),
                                perListino(flag("scq")),
                                real("scqperc0"),
                                real("scqperc1"),
                                number("scqart0"),
                                number("scqart1"),
                                memo("titolo"),
                                text("plain_titolo", titleWidth),
                                memo("sottotitolo"),
                                text("plain_sottotitolo", titleWidth),
                                memo("cart_articolo"),
                                memo("immagine1"),
                                memo("immagine2"),
                                memo("immagine3"),
                                memo("offerta"),
                                memo("iva"),
                                text("listino", priceWidth),
                                text("prezzo", priceWidth),
                                text("cambio", priceWidth),
                                text("cart_prezzo", figureWidth),
                                text("cart_iva", figureWidth),
                                text("cart_peso", figureWidth),
                                memo("descrizione"),
                                memo("note")};
  for (int listino = 0; listino < listini; ++listino) {
    for (int slot = 1; slot <= 4; ++slot) rules.push_back(number(variantColumn(slot, listino)));
  }
  for (int slot = 1; slot <= 4; ++slot) rules.push_back(text("cart_opzione" + std::to_string(slot), fieldWidth));
  rules.push_back(text("contatore", fieldWidth));
  rules.push_back(memo("java_acquista"));
  return rules;
}

enum class Home { Articles, Details, Order };

// Which of the three tables carries a column of the derived row; `ID` is in each of them.
Home homeOf(std::string_view column) {
  if (std::ranges::find(languageColumns, column) != languageColumns.end()) return Home::Articles;
  const bool amount = column.starts_with("implistino") || column.starts_with("importo");
  return amount || column == "contatore" ? Home::Order : Home::Details;
}

void appendDerived(TableInfo& table, Home home) {
  for (ColumnInfo& column : derivedArticleColumns()) {
    if (column.name != "ID" && homeOf(column.name) == home) table.columns.push_back(std::move(column));
  }
}

TableInfo articleTexts(std::string_view suffix) {
  TableInfo table =
      exported({"articoli" + std::string(suffix), {number("ID"), text("pagina", 100), number("sottopagina")}});
  appendDerived(table, Home::Articles);
  IndexInfo page;
  page.name = "ix_" + table.name + "_pagina";
  page.columns = {"pagina", "sottopagina"};
  table.indexes.push_back(std::move(page));
  return table;
}

TableInfo variantLists(std::string_view suffix) {
  return exported({"opzioni" + std::string(suffix), {number("ID"), text("nomeopzione", 100), memo("opzione")}});
}

}  // namespace

TableInfo exported(const TableRule& rule) {
  TableInfo table = spreadTable(rule);
  IndexInfo index;
  index.name = "ix_" + table.name + "_ID";
  index.columns = {"ID"};
  table.indexes.push_back(std::move(index));
  return table;
}

std::span<const std::string_view> pageTagColumns() { return pageTags; }

std::vector<ColumnInfo> derivedArticleColumns() { return spreadTable({"articoli", derivedRules()}).columns; }

std::vector<TableInfo> tagDatabaseTables() {
  TableRule page{"categoria", {}};
  for (std::string_view name : pageTags) page.columns.push_back(memo(name));
  return {spreadTable(page), spreadTable({"articoli", derivedRules()})};
}

TableInfo levelOffersTable() { return exported({"kv_offerte", {number("ID"), number("offerte")}}); }

std::vector<TableInfo> buildDatabaseTables() {
  std::vector<TableInfo> tables{exported({"categorie",
                                          {text("ID", keyWidth), flag("nascosto"), single("iva"),
                                           perListino(single("sconto")), perListino(flag("inaccessibile"))}}),
                                exported({"opcodici", {number("ID"), text("codice"), number("OpID")}})};
  for (std::string_view suffix : languageSuffixes) tables.push_back(variantLists(suffix));
  for (std::string_view suffix : languageSuffixes) tables.push_back(articleTexts(suffix));
  TableInfo details = exported({"dettaglio", {number("ID"), memo("beforecode"), memo("aftercode")}});
  appendDerived(details, Home::Details);
  tables.push_back(std::move(details));
  TableInfo order = exported({"ordinamento", {number("ID")}});
  appendDerived(order, Home::Order);
  tables.push_back(std::move(order));
  return tables;
}

}  // namespace kv
