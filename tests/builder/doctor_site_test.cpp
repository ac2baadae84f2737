// The shop doctor on texts, template, shipping, payment, settings and the age of the site; silence, JSON and the
// property that a mending leaves nothing of its kind.
#include <random>

#include "builder/doctor_shop.h"
#include "commerce/gateways/gateway_table.h"
#include "store/catalogue/undo_history.h"
#include "support/failing_files.h"
#include "support/test_seed.h"

namespace kv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using DoctorSite = DoctorShop;

TEST_F(DoctorSite, TagsThatNobodyReplacesAreTold) {
  sql("UPDATE articoli SET note = 'a <<5-mio>>', note_l2 = 'a';"
      "UPDATE generale SET home1_l2 = 'x', home1 = '<<1-Titolo>> <<1-niente>> <<4-pay_ok>>'");
  EXPECT_THAT(told(), ElementsAre("tag.unknown: Negozio: il tag <<1-niente>> non è sostituito e resta visibile",
                                  "tag.unknown: Articolo V1 Vaso: il tag <<5-mio>> non è sostituito e resta visibile"));
}

TEST_F(DoctorSite, AMerchantsOwnTagIsKnownWhileTheyAreOn) {
  shop.shopFile("shoptag.tag", "<<5-mio>>\r\nciao\r\n");
  sql("UPDATE generale SET home1_l2 = 'x', home1 = '&lt;&lt;5-mio&gt;&gt;'");
  EXPECT_EQ(told().size(), 1U);
  sql("UPDATE generale SET personaltags = '1'");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorSite, AnEndlessTagIsAnError) {
  sql("UPDATE categorie SET descrizione = 'x <<1-titolo'");
  const Findings found = findings();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].text, "Reparto Reparto cat001: il tag <<1-titolo non è chiuso, la costruzione si interromperà");
  EXPECT_EQ(found[0].severity, Severity::Error);
  EXPECT_EQ(found[0].target.column, "descrizione");
}

TEST_F(DoctorSite, TheTemplateNeedsItsMarksAndKnownTags) {
  shop.templateFile("modello1.htm", "<KV_START><<2-scaglioni>><<1-titulo>>");
  shop.templateFile("index.htm", "<<1-vetrina>><<3-ric_titolo>>");
  shop.templateFile("results.htm", "<<3-ric_titolo>>");
  EXPECT_THAT(
      told(),
      ElementsAre("tag.unknown: Template, file index.htm: il tag <<3-ric_titolo>> non è sostituito e resta visibile",
                  "tag.unknown: Template, file modello1.htm: il tag <<1-titulo>> non è sostituito e resta visibile",
                  "template: Template, file modello1.htm: manca il tag <KV_END>, gli articoli non compaiono"));
  shop.templateFile("modello1.htm", "<KV_END><KV_START>");
  shop.templateFile("index.htm", "");
  EXPECT_THAT(told(), ElementsAre("template: Template, file modello1.htm: il tag <KV_END> precede il tag <KV_START>"));
}

TEST_F(DoctorSite, TheTemplateMayShowWhoSells) {
  shop.templateFile("index.htm", "<<1-legale_sede>> <<1-Legale_PIVA>> <<1-legale_registro>>");
  EXPECT_THAT(told(), IsEmpty()) << "these tags are replaced whether they hold something or not";
}

TEST_F(DoctorSite, AMissingTemplateOrLanguageModuleIsTold) {
  shop.session.templatePath = "template/altro";
  ASSERT_TRUE(deleteFile(joinPath(shop.applicationFolder(), "languages/inglese.lng")));
  EXPECT_THAT(told(), ElementsAre("template: Il negozio non ha un template installato",
                                  "language.module: Lingua inglese: il modulo linguistico non è installato"));
}

TEST_F(DoctorSite, AFolderThatCantBeListedIsNoReasonForAFinding) {
  shop.shopFile("work/Foto.gif", "GIF89a");
  sql("UPDATE articoli SET immagine0 = 'foto.gif'");
  for (const std::string folder : {"/work", "/prova", "/code", "/online"}) {
    FailingFiles files(1, AfterFailure::FailsToo);
    files.onlyAt({FileStep::List});
    files.onlyFor(folder);
    EXPECT_FALSE(examineShop(shop.session, shop.applicationFolder())) << folder;
    EXPECT_TRUE(files.hasFailed()) << folder;
  }
}

TEST_F(DoctorSite, CharactersThatBecomeReferencesAreToldInTitlesAlone) {
  sql("UPDATE articoli SET titolo = 'Vaso €', descrizione = '<b>→</b>', descrizione_l2 = 'x'");
  EXPECT_THAT(told(), IsEmpty());
  sql("UPDATE articoli SET titolo = 'Vaso →'");
  EXPECT_THAT(told(),
              ElementsAre("title.reference: Articolo V1 Vaso →: il carattere → del titolo può apparire come codice"));
}

TEST_F(DoctorSite, LinksToPagesOfTheShopAreFollowed) {
  sql("UPDATE articoli SET link = 'cat001_l2.php?n=2#3', note_l2 = 'x', note = '<a href=\"index.php\">a</a> <a "
      "href=http://x/y.htm>b</a>'");
  EXPECT_THAT(told(), IsEmpty());
  sql("UPDATE articoli SET link = 'vecchia.htm', note = '<a HREF = ''./cat002.php''>a</a>'");
  EXPECT_THAT(told(),
              ElementsAre("link.dead: Articolo V1 Vaso: il link ./cat002.php porta a una pagina che non esiste",
                          "link.dead: Articolo V1 Vaso: il link vecchia.htm porta a una pagina che non esiste"));
}

TEST_F(DoctorSite, CountriesAndZonesAreChecked) {
  sql("INSERT INTO paesi (ID, strID, paese, zona) VALUES (1, '1', 'Italia', 1), (2, '2', 'Malta', 0)");
  EXPECT_THAT(told(), ElementsAre("country.stray: Paese Malta: non ha una zona, chi vi abita non può ordinare"));
  sql("UPDATE paesi SET zona = 2; UPDATE zona2 SET pag1 = 0");
  EXPECT_THAT(told(), ElementsAre("zone.closed: Zona 2: nessun metodo è ammesso"));
  sql("UPDATE zona2 SET pag1 = 1, m1imp1 = 500000, m1imp2 = 100000");
  EXPECT_THAT(told(), ElementsAre("zone.steps: Zona 2, Contrassegno: i limiti non sono in ordine crescente"));
}

TEST_F(DoctorSite, PaymentMustBeOnAndSetUp) {
  sql("UPDATE pagamento SET attivo1 = 0");
  EXPECT_THAT(told(), ElementsAre("payment.none: Nessun metodo di pagamento è attivo, nessuno può ordinare"));
  sql("UPDATE pagamento SET attivo1 = 1, metodo1 = 'Paypal'");
  EXPECT_THAT(told(),
              ElementsAre("payment.unfinished: Metodo di pagamento Paypal: è in uso, ma non è ancora configurato"));
}

TEST_F(DoctorSite, AServerPaymentNeedsAnEncryptedAddress) {
  sql("UPDATE generale SET URL = 'http://www.bottega.example'");
  EXPECT_THAT(told(), IsEmpty());
  sql("UPDATE pagamento SET metodo1 = 'Banca Sella'");
  EXPECT_THAT(told(),
              ::testing::Contains("setting.plain: Negozio: il pagamento con Banca Sella richiede un indirizzo che "
                                  "comincia con https://"));
}

TEST_F(DoctorSite, SettingsOfTheServerAreNeeded) {
  sql("UPDATE generale SET email_ordini = ' ', db_hostname = NULL");
  EXPECT_THAT(told(), ElementsAre("setting.missing: Negozio: manca l'indirizzo e-mail a cui arrivano gli ordini",
                                  "setting.missing: Negozio: manca il server del database"));
}

TEST_F(DoctorSite, AnAddressGetsTheSchemeThatTheBuildAdds) {
  sql("UPDATE generale SET URL = 'www.bottega.example'");
  EXPECT_THAT(told(), ElementsAre("setting.scheme: Negozio: l'indirizzo www.bottega.example non comincia con http:// o "
                                  "https://"));
  EXPECT_EQ(mendAll("setting.scheme"), 1);
  EXPECT_EQ(field("SELECT URL FROM generale"), "http://www.bottega.example");
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(DoctorSite, TheAgeOfSiteAndServerIsTold) {
  makeAt("db/last.mdb", 1000);
  EXPECT_THAT(told(), ElementsAre("server.old: Il sito è stato costruito dopo l'ultimo aggiornamento del server: i "
                                  "visitatori vedono quello vecchio"));
  makeAt("kvftp.dat", 1000);
  ASSERT_TRUE(deleteFile(joinPath(shop.folder(), "db/last.mdb")));
  EXPECT_THAT(told(), ElementsAre("site.old: Il catalogo è stato modificato dopo l'ultima costruzione: il sito mostra "
                                  "dati vecchi",
                                  "server.old: Il sito costruito non è mai stato messo online"));
  ASSERT_TRUE(deleteFile(joinPath(shop.folder(), "kvftp.dat")));
  EXPECT_THAT(told(), ElementsAre("site.old: Il sito non è mai stato costruito"));
}

TEST_F(DoctorSite, ASilencedFindingIsLeftOutUntilTheSilenceEnds) {
  sql("UPDATE articoli SET prezzo = 0, codice = ''");
  const Findings found = findings();
  ASSERT_EQ(found.size(), 2U);
  ASSERT_TRUE(silenceFinding(shop.session.catalogue, found[1]));
  const auto rest = examineShop(shop.session, shop.applicationFolder());
  ASSERT_TRUE(rest);
  EXPECT_EQ(rest->silenced, 1U);
  ASSERT_EQ(rest->findings.size(), 1U);
  EXPECT_EQ(rest->findings[0].check, "code.missing");
  ASSERT_TRUE(endSilence(shop.session.catalogue));
  EXPECT_EQ(findings().size(), 2U);
}

TEST_F(DoctorSite, AShopWithoutSilenceHasNoTableForIt) {
  EXPECT_THAT(told(), IsEmpty());
  ASSERT_TRUE(endSilence(shop.session.catalogue));
  const auto table = shop.session.catalogue.table("controllosilenzi");
  EXPECT_FALSE(table);
}

TEST_F(DoctorSite, FindingsAreValidJson) {
  sql("UPDATE articoli SET codice = '', titolo = 'a\"b\\c' || char(10) || 'd', prezzo = 0");
  const std::string json = findingsAsJson(findings());
  EXPECT_THAT(json, StartsWith("[\n {\"check\": \"code.missing\", \"severity\": \"warning\", \"text\": \"Articolo "
                               "a\\\"b\\\\c\\u000ad: manca il codice"));
  ASSERT_TRUE(writeBytes(joinPath(shop.folder(), "x.json"), json));
  const std::string read = "python3 -c \"import json,sys; assert len(json.load(open(sys.argv[1]))) == 2\" '" +
                           joinPath(shop.folder(), "x.json") + "'";
  EXPECT_EQ(std::system(read.c_str()), 0);
  EXPECT_EQ(findingsAsJson({}), "[]\n");
}

TEST_F(DoctorSite, EveryMethodWithAServiceNeedsAnEncryptedAddressAndNoOther) {
  sql("UPDATE generale SET URL = 'http://www.bottega.example'");
  for (const auto& gateway : gatewayModules()) {
    sql("UPDATE pagamento SET metodo1 = '" + std::string(gateway.folder) + "'");
    const auto all = findings();
    const bool isTold = std::ranges::any_of(all, [](const Finding& one) { return one.check == "setting.plain"; });
    EXPECT_EQ(isTold, gateway.column.empty()) << gateway.folder;
  }
}

TEST_F(DoctorSite, TheShopsOwnTextsAreMissedInAnotherLanguage) {
  sql("UPDATE generale SET testo1 = 'Benvenuti', home1 = 'Casa', home1_l2 = 'Home', titolo = 'Bottega', titolo_l2 = "
      "''");
  EXPECT_THAT(told(), ElementsAre("shop.untranslated: Negozio: manca il nome del negozio in inglese",
                                  "shop.untranslated: Negozio: manca il testo \"Testo libero 1\" in inglese"));
  EXPECT_EQ(findings()[1].target.column, "testo1");
  EXPECT_EQ(findings()[1].target.language, 2);
}

TEST_F(DoctorSite, WhatTheLawAsksIsToldWithItsField) {
  sql("UPDATE generale SET ivacompresa = 0, recesso_l2 = ''; UPDATE produttori SET contatto = ''");
  const Findings found = findings();
  EXPECT_THAT(told(),
              ElementsAre("law.missing: Requisiti di legge, Diritto di recesso: Scrivere come e fino a quando si "
                          "può recedere, e chi paga la restituzione nella lingua 2",
                          "law.missing: Requisiti di legge, Prezzi IVA compresa: Ai consumatori i prezzi si "
                          "mostrano IVA compresa",
                          "law.missing: Requisiti di legge, Sicurezza dei prodotti: Di Forno manca l'indirizzo "
                          "o il contatto elettronico"));
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].target.column, "recesso");
  EXPECT_EQ(found[0].target.language, 2);
  EXPECT_EQ(found[2].target.subject, FindingSubject::Command);
  EXPECT_EQ(found[2].target.key, "makers");
}

TEST_F(DoctorSite, TheButtonOfTheOrderAndTheFunctionOfWithdrawalAreLookedForInTheFiles) {
  shop.templateFile("order.htm", "<button>Ordina</button>");
  EXPECT_THAT(told(), ElementsAre("law.missing: Requisiti di legge, Pulsante dell'ordine: La pagina dell'ordine del "
                                  "template non ha il pulsante \"Ordine con obbligo di pagare\"",
                                  "law.missing: Requisiti di legge, Funzione di recesso: Nessuna pagina del template "
                                  "porta alla funzione di recesso (kvrecesso.php)"));
  shop.templateFile("order.htm", "<<4-invia_ordine>> kvrecesso.php");
  shop.application("languages/inglese.lng", "<<4-pay_ok>>\r\nok\r\n");
  ASSERT_TRUE(deleteFile(joinPath(shop.folder(), "code/kvrecesso.php")));
  EXPECT_THAT(told(),
              ElementsAre("law.missing: Requisiti di legge, Pulsante dell'ordine: Nel modulo linguistico inglese "
                          "manca il testo del pulsante",
                          "law.missing: Requisiti di legge, Funzione di recesso: Negli script del negozio manca "
                          "la pagina con cui si recede da un ordine"));
}

TEST_F(DoctorSite, TheSummaryCountsInItalian) {
  EXPECT_EQ(findingSummary({}), "Nessun avviso");
  EXPECT_EQ(findingSummary({3, 0}), "3 avvisi");
  EXPECT_EQ(findingSummary({1, 1}), "un errore, un avviso");
  EXPECT_EQ(findingSummary({1, 2}), "2 errori, un avviso");
}

/// Gives the rows of the shop random faults that have a mending.
class DoctorProperty : public DoctorShop {
 protected:
  void spoil(std::mt19937& random) {
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    sql("DELETE FROM articoli; DELETE FROM opzioni WHERE ID > 1; DELETE FROM dettagliop");
    for (int variant = 2; variant < 2 + below(4); ++variant) {
      sql("INSERT INTO opzioni (ID, nome) VALUES (" + std::to_string(variant) + ", 'V')");
      for (int value = below(4); value > 0; --value) {
        sql("INSERT INTO dettagliop (OpID, testo, selezionato) VALUES (" + std::to_string(variant) + ", 'x', '" +
            (below(2) == 0 ? "." : " ") + "')");
      }
    }
    for (int article = 0; article < 4; ++article) {
      const std::string list(listinoSuffixes[static_cast<std::size_t>(below(10))]);
      sql("INSERT INTO articoli (catID, codice, titolo, prezzo" + list + ", offerta" + list + ", offertaprezzo" + list +
          ", fuoricatalogo, " + variantColumn(1 + below(4), below(10)) + ") VALUES ('cat001', 'c', 't', " +
          std::to_string(below(3)) + ", " + std::to_string(below(2)) + ", " + std::to_string(below(3)) + ", " +
          std::to_string(below(2)) + ", " + std::to_string(below(7)) + ")");
    }
    sql(below(2) == 0 ? "UPDATE generale SET URL = 'bottega.example'" : "UPDATE categorie SET template = 'x'");
  }
};

TEST_F(DoctorProperty, MendingLeavesNothingOfItsKindAndUndoBringsTheRowsBack) {
  std::mt19937 random(seed());
  CatalogueSets sets(shop.session);
  ASSERT_TRUE(sets.bind());
  UndoHistory history(sets);
  history.begin();
  for (unsigned round = 0; round < seeds(8); ++round) {
    spoil(random);
    const std::string before = rowsAsText();
    int mended = 0;
    for (const Finding& finding : findings()) {
      if (!finding.canMend()) continue;
      ASSERT_TRUE(history.record("Correggi", [&] { return mendFinding(shop.session.catalogue, finding); }));
      ++mended;
    }
    for (const Finding& finding : findings()) EXPECT_FALSE(finding.canMend()) << finding.text;
    for (; mended > 0; --mended) ASSERT_TRUE(history.undo());
    EXPECT_EQ(rowsAsText(), before);
    history.clear();
  }
  history.end();
  sets.release();
}

}  // namespace
}  // namespace kv::test
