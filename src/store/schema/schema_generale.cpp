// The settings tables of the catalogue: `generale` with its single row, and `pagamento` with its own.
#include "store/schema/schema_parts.h"

namespace kv {

using namespace columns;  // the shorthands of a list of rules

namespace {

constexpr int paymentMethods = 4;
constexpr int zones = 8;

std::vector<ColumnRule> siteColumns() {
  return {text("URL", shortName),
          text("cartella"),
          perLanguage(memo("testo1")),
          perLanguage(memo("testo2")),
          perLanguage(memo("home1")),
          perLanguage(memo("home2")),
          perLanguage(memo("condizioni")),
          perLanguage(memo("datipers")),
          perLanguage(memo("recesso")),
          money("minimo"),
          text("CGIsearch"),
          text("CGIordine"),
          text("username"),
          text("password"),
          text("email"),
          text("immagine0"),
          smallNumber("imgX0"),
          smallNumber("imgY0"),
          perLanguage(text("titolo")),
          text("immagine1"),
          smallNumber("imgX1"),
          smallNumber("imgY1"),
          text("template"),
          text("valuta1", shortName),
          text("valuta2", shortName),
          single("cambio"),
          smallNumber("notazione"),
          flag("decimali1"),
          flag("decimali2"),
          text("email_ordini"),
          text("hostname"),
          flag("serverNT"),
          text("folderFTP"),
          text("folderCGI"),
          text("perl"),
          memo("firma_email"),
          perLanguage(memo("testo_email")),
          text("merchantid"),
          flag("codincart"),
          text("cartellaCGI"),
          flag("ivacompresa")};
}

std::vector<ColumnRule> pageColumns() {
  return {smallNumber("operatorericerca"),
          flag("ricercaparole"),
          text("siteonline"),
          text("sitescript"),
          smallNumber("livelliaperti"),
          flag("elenco_foto"),
          flag("elenco_codice"),
          flag("elenco_titolo"),
          flag("elenco_sottotitolo"),
          smallNumber("affiancati"),
          perLanguage(memo("keywords")),
          perLanguage(memo("content")),
          single("sconto"),
          flag("vis_offerta"),
          flag("vis_sconto"),
          flag("autoredirect"),
          flag("checkcookies"),
          perLanguage(memo("contrassegno")),
          perLanguage(memo("anticipato")),
          flag("usa_cambio"),
          flag("vis_percrep"),
          memo("personaltags"),
          memo("campi_obbligatori"),
          smallNumber("colonnevetrina"),
          text("vetalign"),
          text("vetalignstyle"),
          smallNumber("vetsize"),
          smallNumber("vetopzioni"),
          flag("searchusesCGI"),
          flag("nodiff"),
          smallNumber("ricartperpag"),
          flag("cercacodice"),
          text("estensione")};
}

std::vector<ColumnRule> serverColumns() {
  ColumnRule version = smallNumber("versione");
  version.inLanguageView = false;
  ColumnRule sendmail = text("sendmail");
  sendmail.inLanguageView = false;
  return {text("db_hostname"),
          text("db_username"),
          text("db_password"),
          text("db_dbname"),
          perListino(single("scimp")),
          perListino(money("importo")),
          perLanguage(memo("rifiutato")),
          number("qminima"),
          flag("regobbl"),
          text("bo_username"),
          text("bo_password"),
          text("db_security"),
          memo("p3p"),
          flag("subtitleincart"),
          flag("regprices"),
          flag("singleitem_search"),
          flag("singleitem_vet"),
          flag("showsigns"),
          flag("reglist"),
          version,
          sendmail};
}

}  // namespace

const TableRule& generaleRule() {
  static const TableRule rule = [] {
    TableRule made{"generale", siteColumns()};
    for (ColumnRule& column : pageColumns()) made.columns.push_back(std::move(column));
    for (ColumnRule& column : serverColumns()) made.columns.push_back(std::move(column));
    return made;
  }();
  return rule;
}

const TableRule& pagamentoRule() {
  static const TableRule rule = [] {
    TableRule made{"pagamento", {}};
    for (int i = 1; i <= paymentMethods; ++i) made.columns.push_back(text("metodo" + std::to_string(i)));
    for (int i = 1; i <= paymentMethods; ++i) made.columns.push_back(flag("attivo" + std::to_string(i)));
    for (int i = 1; i <= paymentMethods; ++i) made.columns.push_back(perLanguage(text("nome" + std::to_string(i))));
    for (ColumnRule& column :
         std::vector{smallNumber("selezionato"), number("paesesel"), smallNumber("zonasel"), smallNumber("imppeso")})
      made.columns.push_back(std::move(column));
    for (int i = 1; i <= zones; ++i) made.columns.push_back(flag("ivaok" + std::to_string(i)));
    made.columns.push_back(single("ivaspese"));
    made.columns.push_back(flag("alfabetico"));
    return made;
  }();
  return rule;
}

std::vector<TableInfo> zoneTables() {
  constexpr int weightSteps = 10;
  std::vector<TableInfo> tables;
  for (int zone = 1; zone <= zones; ++zone) {
    TableRule rule{"zona" + std::to_string(zone), {}};
    for (int method = 1; method <= paymentMethods; ++method) {
      const std::string m = "m" + std::to_string(method);
      rule.columns.push_back(flag("pag" + std::to_string(method)));
      for (int i = 1; i <= 2; ++i) rule.columns.push_back(money(m + "imp" + std::to_string(i)));
      for (int i = 1; i <= 3; ++i) rule.columns.push_back(money(m + "sp" + std::to_string(i)));
      for (int i = 1; i < weightSteps; ++i) rule.columns.push_back(single(m + "peso" + std::to_string(i)));
      for (int i = 1; i <= weightSteps; ++i) rule.columns.push_back(money(m + "spp" + std::to_string(i)));
    }
    tables.push_back(spreadTable(rule));
  }
  return tables;
}

}  // namespace kv
