#include "shell/workbench/fields/editor_rows.h"

namespace kv {
namespace {

using enum Control;

/// The settings of one group of a tab.
class Group {
 public:
  Group(std::vector<Editor>& rows, Tab tab, std::string_view group) : rows_(rows), tab_(tab), group_(group) {}

  Editor& add(std::string_view column, std::string_view label, Control control = Line,
              FieldKind kind = FieldKind::PlainText) {
    Editor& row = rows_.emplace_back(editorRow(EditedSet::Generale, tab_, column, group_, label));
    row.control = control;
    row.kind = kind;
    return row;
  }
  Editor& check(std::string_view column, std::string_view label, std::string_view toolTip = "") {
    Editor& row = add(column, label, Check);
    row.toolTip = toolTip;
    return row;
  }

 private:
  std::vector<Editor>& rows_;
  Tab tab_;
  std::string_view group_;
};

void shopEditors(std::vector<Editor>& rows) {
  Group shop(rows, Tab::Site, "Negozio");
  shop.add("titolo", "&Nome del negozio:").toolTip = "Il titolo delle pagine, in questa lingua";
  shop.add("email", "&E-mail:").toolTip = "L'indirizzo mostrato nelle pagine del negozio";
  shop.add("email_ordini", "E-mail per gli &ordini:").toolTip = "Qui arrivano gli ordini del negozio";
  shop.add("immagine0", "Logo:", Picture).number = 0;
  Editor& small = shop.add("immagine1", "Logo piccolo:", Picture);
  small.number = 1;
}

void identityEditors(std::vector<Editor>& rows) {
  Group identity(rows, Tab::Site, "Dati legali");
  const auto add = [&](std::string_view column, std::string_view label, std::string_view toolTip) {
    Editor& row = identity.add(column, label);
    row.toolTip = toolTip;
    row.beside = true;
  };
  add("legale_sede", "Ragione sociale e sede:", "In fondo a ogni pagina: nome, via, CAP, città e Paese");
  add("legale_piva", "Partita IVA:", "In fondo a ogni pagina");
  add("legale_registro", "Registro delle imprese:", "In fondo a ogni pagina, come REA MI-1234567, cap. soc. € 10.000");
}

void moneyEditors(std::vector<Editor>& rows) {
  Group money(rows, Tab::Site, "Valuta");
  money.add("valuta1", "Val&uta:", Line, FieldKind::ShortText).toolTip = "Il segno accanto ai prezzi, come EUR";
  money.check("decimali1", "Mostra i decimali");
  money.add("notazione", "Notazione dei numeri:", Choice).choices = "Italiana (1.000,00)|Inglese (1,000.00)";
  money.check("usa_cambio", "Mostra una &seconda valuta");
  money.add("valuta2", "Seconda valuta:", Line, FieldKind::ShortText);
  money.check("decimali2", "Mostra i decimali della seconda valuta");
  money.add("cambio", "Cambio:", Line, FieldKind::Rate).toolTip =
      "Quanta prima valuta vale un'unità della seconda: il prezzo diviso per il cambio è quello nella seconda valuta. "
      "Con 0,8 un prezzo di 10 diventa 12,5";
  money.add(reverseRateField, "Cambio inverso:", Line, FieldKind::Rate).toolTip =
      "Quanta seconda valuta vale un'unità della prima: con un cambio di 0,8 è 1,25";

  Group prices(rows, Tab::Site, "Prezzi e ordini");
  prices.check("ivacompresa", "Mostra i prezzi &IVA compresa");
  Editor& discount = prices.add("sconto", "Sconto del negozio:", Line, FieldKind::Percent);
  discount.unit = "%";
  discount.toolTip = "Vale per tutti gli articoli che non sono in offerta";
  prices.check("vis_sconto", "Mostra la percentuale di sconto");
  prices.check("vis_offerta", "Evidenzia le offerte");
  prices.add("minimo", "Ordine minimo:", Line, FieldKind::Amount).toolTip = "L'importo sotto il quale non si ordina";
  Editor& least = prices.add("qminima", "Quantità minima:", Line, FieldKind::Amount);
  least.unit = "pezzi";
  prices.check("subtitleincart", "Il carrello mostra il sottotitolo");

  Group lists(rows, Tab::Site, "Sconto sull'importo");
  Editor& percent = lists.add("scimp", "Sconto:", Line, FieldKind::Percent);
  percent.unit = "%";
  percent.per = Per::Listino;
  Editor& amount = lists.add("importo", "Per ordini oltre:", Line, FieldKind::Amount);
  amount.toolTip = "L'importo oltre il quale lo sconto si applica";
  amount.per = Per::Listino;
}

void pageEditors(std::vector<Editor>& rows) {
  Group pages(rows, Tab::Site, "Pagine dei reparti");
  pages.add("affiancati", "Articoli affian&cati:", Line, FieldKind::WholeNumber).toolTip =
      "Quanti articoli stanno sulla stessa riga di un reparto";
  pages.add("livelliaperti", "&Livelli sempre aperti:", Line, FieldKind::WholeNumber).toolTip =
      "Quanti livelli di reparti l'elenco mostra sempre";
  pages.check("vis_percrep", "Il titolo del reparto include il percorso e i sottoreparti");
  pages.check("elenco_foto", "L'elenco degli articoli mostra la foto");
  pages.check("elenco_codice", "L'elenco degli articoli mostra il codice");
  pages.check("elenco_titolo", "L'elenco degli articoli mostra il titolo");
  pages.check("elenco_sottotitolo", "L'elenco degli articoli mostra il sottotitolo",
              "Soltanto insieme a foto, codice o titolo");

  Group search(rows, Tab::Site, "Ricerca nel negozio");
  search.add("operatorericerca", "Trova gli articoli con:", Choice).choices = "tutti i termini|almeno un termine";
  search.check("ricercaparole", "Cerca solo parole intere");
  search.add("ricartperpag", "&Risultati per pagina:", Line, FieldKind::WholeNumber);
  search.check("singleitem_search", "I risultati portano al singolo articolo");

  Group customers(rows, Tab::Site, "Clienti registrati");
  customers.check("regobbl", "Per ordinare è necessario registrarsi");
  customers.check("regprices", "Solo i clienti registrati vedono i prezzi");
  customers.check("reglist", "Estendi i limiti ai clienti del listino base",
                  "Valgono anche per chi è registrato ma non ha ancora un listino proprio");
  customers.check("checkcookies", "Avvisa chi rifiuta i cookie", "Senza cookie il carrello non può funzionare");
  Editor& privacy = customers.add("p3p", "Compact Privacy Policy:");
  privacy.command = privacyCommand;
  privacy.toolTip = "Come il negozio tratta le informazioni personali, nella forma breve per i browser";
}

void textEditors(std::vector<Editor>& rows) {
  Group texts(rows, Tab::Site, longTexts);
  texts.add("home1", "Home page 1", Memo);
  texts.add("home2", "Home page 2", Memo);
  texts.add("testo1", "Testo libero 1", Memo);
  texts.add("testo2", "Testo libero 2", Memo);
  texts.add("condizioni", "Condizioni di vendita", Memo);
  texts.add("datipers", "Dati personali", Memo);
  texts.add("recesso", "Diritto di recesso", Memo);
  texts.add("rifiutato", "Reparto non accessibile", Memo).toolTip =
      "L'avviso per chi apre un reparto chiuso al suo listino";

  Group mail(rows, Tab::Site, "E-mail di conferma");
  mail.add("testo_email", "Testo dell'e-mail:", Memo).toolTip =
      "<<importo>>, <<codice>> e <<riepilogo>> sono sostituiti con i dati dell'ordine";
  mail.add("firma_email", "Firma:", Memo);

  Group pay(rows, Tab::Site, "Note sui pagamenti");
  pay.add("contrassegno", "Contrassegno:", Memo).toolTip = "Le informazioni per chi paga alla consegna";
  pay.add("anticipato", "Pagamento anticipato:", Memo).toolTip = "Le informazioni per chi paga in anticipo";

  Group engines(rows, Tab::Site, "Motori di ricerca");
  engines.add("keywords", "Parole chiave:", Memo);
  engines.add("content", "Descrizione del sito:", Memo);
}

void connectionEditors(std::vector<Editor>& rows) {
  Group web(rows, Tab::Internet, "Indirizzi");
  web.add("URL", "&URL del sito:", Line, FieldKind::ShortText).toolTip = "Come www.miosito.it";
  web.add("cartella", "&Cartella del negozio:").toolTip = "La cartella in cui il negozio è raggiungibile via web";
  web.add("cartellaCGI", "Cartella del &BackOffice:").toolTip =
      "La cartella in cui il BackOffice e gli script sono raggiungibili via web";
  web.add(shopAddressField, "Indirizzo del negozio:", Shown);
  web.add(backOfficeAddressField, "Indirizzo del BackOffice:", Shown);
  web.check("autoredirect", "Reindirizzamento automatico",
            "Con più domini porta sempre a quello indicato come URL del sito");

  Group ftp(rows, Tab::Internet, "Spazio web (FTP)");
  ftp.add("hostname", "&Host FTP:").toolTip = "Il nome o il numero IP del server";
  ftp.add("username", "&Nome utente:");
  ftp.add("password", "&Password:", Password);
  ftp.add("folderFTP", "Cartella FTP del ne&gozio:", Line, FieldKind::Folder).toolTip = "Come /public_html/negozio";
  ftp.add("folderCGI", "Cartella FTP degli &script:", Line, FieldKind::Folder);
  ftp.check("serverNT", "Il server è Windows NT o 2000");
  Editor& perl = ftp.add("perl", "Percorso di Perl:", Combo);
  perl.choices = "/usr/bin/perl|/usr/local/bin/perl";

  Group database(rows, Tab::Internet, "Database MySQL");
  database.add("db_hostname", "Host del &database:").toolTip = "Spesso localhost";
  database.add("db_username", "Nome utente:");
  database.add("db_password", "Password:", Password);
  database.add("db_dbname", "Nome del database:");

  Group office(rows, Tab::Internet, "Accesso al BackOffice");
  office.add("bo_username", "Nome utente:");
  office.add("bo_password", "Password:", Password);
}

}  // namespace

std::vector<Editor> siteEditors() {
  std::vector<Editor> rows;
  shopEditors(rows);
  identityEditors(rows);
  moneyEditors(rows);
  pageEditors(rows);
  textEditors(rows);
  return rows;
}

std::vector<Editor> internetEditors() {
  std::vector<Editor> rows;
  connectionEditors(rows);
  return rows;
}

}  // namespace kv
