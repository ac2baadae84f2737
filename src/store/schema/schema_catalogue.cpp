#include <utility>

#include "platform/text/text.h"
#include "store/schema/schema_parts.h"

namespace kv {

using namespace columns;  // the shorthands of a list of rules

namespace {

constexpr int variantSlots = 4;
constexpr int legacyOptions = 15;

ColumnRule onlyPlain(ColumnRule rule) {
  rule.inLanguageView = false;
  return rule;
}

const TableRule& categorieRule() {
  static const TableRule rule{"categorie",
                              {text("ID"),
                               perLanguage(text("titolo", 100)),
                               text("pagina"),
                               smallNumber("maxarticoli"),
                               text("template"),
                               text("genitore"),
                               flag("hafigli"),
                               number("ordinamento"),
                               perLanguage(memo("descrizione")),
                               text("immagine0"),
                               perLanguage(memo("note")),
                               smallNumber("livello"),
                               number("contatore"),
                               smallNumber("imgX0"),
                               smallNumber("imgY0"),
                               perLanguage(text("immagine1")),
                               perLanguage(smallNumber("imgX1")),
                               perLanguage(smallNumber("imgY1")),
                               single("iva"),
                               perListino(single("sconto")),
                               text("affiancati"),
                               perListino(flag("inaccessibile")),
                               flag("nascosto")}};
  return rule;
}

const TableRule& articoliRule() {
  static const TableRule rule = [] {
    TableRule made{"articoli",
                   {number("ID"),
                    text("catID"),
                    text("codice", shortName),
                    perLanguage(text("titolo", 200)),
                    perLanguage(text("sottotitolo", 200)),
                    perLanguage(memo("descrizione")),
                    perLanguage(memo("note")),
                    number("ordinamento"),
                    text("link", 255),
                    flag("linkesterno"),
                    perListino(money("prezzo")),
                    perListino(flag("offerta")),
                    perListino(money("offertaprezzo")),
                    perListino(flag("scq")),
                    number("scqart0"),
                    number("scqart1"),
                    single("scqperc0"),
                    single("scqperc1"),
                    flag("novita"),
                    text("immagine0"),
                    smallNumber("imgX0"),
                    smallNumber("imgY0"),
                    text("immagine1"),
                    smallNumber("imgX1"),
                    smallNumber("imgY1"),
                    text("immagine2"),
                    smallNumber("imgX2"),
                    smallNumber("imgY2")}};
    for (int listino = 0; listino < listini; ++listino) {
      for (int slot = 1; slot <= variantSlots; ++slot) made.columns.push_back(number(variantColumn(slot, listino)));
    }
    for (ColumnRule& column :
         std::vector{text("correlazione"), single("peso"), flag("popup"), flag("fuoricatalogo"), flag("inelenco")})
      made.columns.push_back(std::move(column));
    return made;
  }();
  return rule;
}

const TableRule& opzioniRule() {
  static const TableRule rule = [] {
    TableRule made{"opzioni", {number("ID"), perLanguage(text("nome", shortName)), smallNumber("selezionato")}};
    for (int i = 1; i <= legacyOptions; ++i)
      made.columns.push_back(onlyPlain(perLanguage(text("opzione" + std::to_string(i)))));
    for (int i = 1; i <= legacyOptions; ++i) made.columns.push_back(onlyPlain(money("prezzo" + std::to_string(i))));
    for (int i = 1; i <= legacyOptions; ++i) made.columns.push_back(onlyPlain(single("peso" + std::to_string(i))));
    return made;
  }();
  return rule;
}

const TableRule& dettagliopRule() {
  static const TableRule rule{"dettagliop",
                              {number("ID"), text("codice"), perLanguage(text("testo")), money("prezzo"),
                               single("peso"), number("OpID"), text("selezionato")}};
  return rule;
}

TableInfo withAutomaticKey(TableInfo table, std::string_view column) {
  ColumnInfo& key = table.columns[static_cast<std::size_t>(table.columnIndex(column))];
  key.attributes |= autoIncrement;
  key.required = true;
  return table;
}

void addIndex(TableInfo& table, std::vector<std::string> columns, bool unique = false) {
  IndexInfo index;
  index.name = "ix_" + table.name;
  for (const std::string& column : columns) index.name += "_" + column;
  index.unique = unique;
  index.columns = std::move(columns);
  table.indexes.push_back(std::move(index));
}

TableInfo departments() {
  TableInfo table = withAutomaticKey(spreadTable(categorieRule()), "contatore");
  table.columns[static_cast<std::size_t>(table.columnIndex("ID"))].required = true;
  // `contatore` is the engine's row number, because the text key `ID` is formed from it; `ID` is unique as well.
  addIndex(table, {"ID"}, true);
  addIndex(table, {"genitore"});
  return table;
}

TableInfo articles() {
  TableInfo table = withAutomaticKey(spreadTable(articoliRule()), "ID");
  addIndex(table, {"catID", "ordinamento"});
  return table;
}

// The clipboard holds copies without their keys: nothing is required of `ID`, and nothing is looked up in it.
TableInfo clipDepartments() {
  TableInfo table = withAutomaticKey(spreadTable(categorieRule()), "contatore");
  table.name = "clipcategorie";
  for (ColumnInfo& column : spreadColumns(flag("incolla_articoli"))) table.columns.push_back(std::move(column));
  return table;
}

TableInfo clipArticles() {
  TableInfo table = withAutomaticKey(spreadTable(articoliRule()), "ID");
  table.name = "cliparticoli";
  return table;
}

TableInfo variantOptions() {
  TableInfo table = withAutomaticKey(spreadTable(dettagliopRule()), "ID");
  addIndex(table, {"OpID"});
  return table;
}

TableInfo languages() {
  TableRule rule{"lingue", {}};
  for (int i = 1; i <= maxLanguages; ++i) rule.columns.push_back(text("lingua" + std::to_string(i)));
  return spreadTable(rule);
}

TableInfo countries() {
  const TableRule rule{"paesi", {number("ID"), text("strID"), text("paese", shortName), smallNumber("zona")}};
  return withAutomaticKey(spreadTable(rule), "ID");
}

TableInfo zoneNames() {
  return withAutomaticKey(spreadTable({"zone", {number("ID"), smallNumber("zona"), text("nome")}}), "ID");
}

}  // namespace

const TableRule* languageViewRule(std::string_view table) {
  for (const TableRule* rule :
       {&articoliRule(), &categorieRule(), &opzioniRule(), &dettagliopRule(), &pagamentoRule(), &generaleRule()}) {
    if (equalsIgnoringCase(rule->name, table)) return rule;
  }
  return nullptr;
}

std::vector<TableInfo> catalogueTables() {
  std::vector<TableInfo> tables{spreadTable(generaleRule()),
                                departments(),
                                articles(),
                                clipDepartments(),
                                clipArticles(),
                                withAutomaticKey(spreadTable(opzioniRule()), "ID"),
                                variantOptions(),
                                languages(),
                                countries(),
                                spreadTable(pagamentoRule())};
  for (TableInfo& zone : zoneTables()) tables.push_back(std::move(zone));
  tables.push_back(zoneNames());
  return tables;
}

}  // namespace kv
