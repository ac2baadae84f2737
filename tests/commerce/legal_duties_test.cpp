// What the law asks of the shop, and what is told of each duty.
#include "commerce/settings/legal_duties.h"

#include <algorithm>

#include "commerce/commerce_shop.h"
#include "commerce/prices/price_history.h"
#include "store/catalogue/side_fields.h"

namespace kv::test {
namespace {

class LegalDuties : public CommerceShop {
 protected:
  LegalDuties() {
    sql("DELETE FROM articoli; INSERT INTO articoli (ID, catID) VALUES (1, 'cat001'), (2, 'cat001');"
        "INSERT INTO articoli (ID, catID, fuoricatalogo) VALUES (3, 'cat001', 1);"
        "UPDATE generale SET email = 'a@example.org', ivacompresa = 1, condizioni = 'C', condizioni_l2 = 'T',"
        " recesso = 'R', recesso_l2 = 'W', datipers = 'D', datipers_l2 = 'P'");
    session.languageCount = 2;
  }
  LegalDuty duty(std::string_view title) {
    auto duties = legalDuties(session, KORVANE_APP_DATA).value();
    const auto found = std::ranges::find(duties, title, &LegalDuty::title);
    EXPECT_NE(found, duties.end()) << title;
    return found == duties.end() ? LegalDuty{} : *found;
  }
  void set(SideField field, const std::string& key, const Value& value) {
    ASSERT_TRUE(prepareSideField(session.catalogue, field));
    ASSERT_TRUE(writeSideField(session.catalogue, field, key, value));
  }
  void maker(const std::string& columns, const std::string& values) {
    ASSERT_TRUE(prepareSideField(session.catalogue, SideField::Maker));
    sql("INSERT INTO produttori (" + columns + ") VALUES (" + values + ")");
  }
};

TEST_F(LegalDuties, ATextIsNeededInEachLanguage) {
  EXPECT_EQ(duty("Diritto di recesso").state, DutyState::Met);
  sql("UPDATE generale SET recesso_l2 = '  '");
  const LegalDuty missing = duty("Diritto di recesso");
  EXPECT_EQ(missing.state, DutyState::Missing);
  EXPECT_EQ(missing.text, "Scrivere come e fino a quando si può recedere, e chi paga la restituzione nella lingua 2.");
  EXPECT_EQ(missing.target.column, "recesso");
  EXPECT_EQ(missing.target.language, 2);
  session.languageCount = 1;
  EXPECT_EQ(duty("Diritto di recesso").state, DutyState::Met);
}

TEST_F(LegalDuties, PricesWithoutVatAndAMissingAddressLeadToTheirFields) {
  EXPECT_EQ(duty("Prezzi IVA compresa").state, DutyState::Met);
  EXPECT_EQ(duty("Indirizzo e-mail").state, DutyState::Met);
  sql("UPDATE generale SET ivacompresa = 0, email = ''");
  EXPECT_EQ(duty("Prezzi IVA compresa").target.column, "ivacompresa");
  EXPECT_EQ(duty("Prezzi IVA compresa").state, DutyState::Missing);
  EXPECT_EQ(duty("Indirizzo e-mail").state, DutyState::Missing);
}

TEST_F(LegalDuties, WhoSellsIsAskedFor) {
  EXPECT_EQ(duty("Chi vende").text, "Indicare ragione sociale e sede.");
  sql("CREATE TABLE identita (legale_sede TEXT, legale_piva TEXT);"
      "INSERT INTO identita VALUES ('Forno, Via Po 1', NULL)");
  EXPECT_EQ(duty("Chi vende").text, "Indicare la partita IVA.");
  sql("UPDATE identita SET legale_piva = '00000000000'");
  EXPECT_EQ(duty("Chi vende").text, "Indicare la partita IVA.");
  sql("UPDATE identita SET legale_piva = 'IT01234567890'");
  EXPECT_EQ(duty("Chi vende").state, DutyState::Met);
}

TEST_F(LegalDuties, WhatIsLeftOfTheModelShopsSellerIsNamedAndLeadsToItsField) {
  const LegalDuty untouched = duty("Dati propri");
  EXPECT_EQ(untouched.state, DutyState::Missing);
  EXPECT_EQ(untouched.text,
            "Sono ancora quelli del negozio modello: nome del negozio, e-mail per gli ordini, testo "
            "libero 2, testo del pagamento anticipato, firma delle e-mail.");
  EXPECT_EQ(untouched.target.column, "titolo");
  EXPECT_EQ(untouched.target.language, 1);
  sql("UPDATE generale SET titolo = 'Forno', titolo_l2 = 'Bakery', email_ordini = 'b@example.org', testo2 = 'Via Po',"
      " testo2_l2 = ' ', anticipato = 'IBAN', firma_email = NULL");
  EXPECT_EQ(duty("Dati propri").text, "Sono ancora quelli del negozio modello: testo del pagamento anticipato.");
  EXPECT_EQ(duty("Dati propri").target.column, "anticipato");
  EXPECT_EQ(duty("Dati propri").target.language, 2);
  sql("UPDATE generale SET anticipato_l2 = 'IBAN'");
  EXPECT_EQ(duty("Dati propri").state, DutyState::Met);
}

TEST_F(LegalDuties, ATextThatStillNamesTheModelShopsSellerIsNotTheShopsOwn) {
  sql("UPDATE generale SET titolo = 'Forno', titolo_l2 = 'Bakery', email_ordini = 'b@example.org', testo2 = '',"
      " testo2_l2 = '', anticipato = '', anticipato_l2 = '', firma_email = '',"
      " recesso = 'Scrivere a Bottega Montelune entro 30 giorni.'");
  EXPECT_EQ(duty("Dati propri").text, "Sono ancora quelli del negozio modello: diritto di recesso.");
  session.languageCount = 1;
  sql("UPDATE generale SET recesso = 'R', titolo_l2 = 'Bottega Montelune'");
  EXPECT_EQ(duty("Dati propri").state, DutyState::Met) << "a language that the shop hasn't";
}

TEST_F(LegalDuties, WithoutAModelShopNothingIsComparedWithIt) {
  const auto duties = legalDuties(session, root / "app").value();
  EXPECT_EQ(std::ranges::count(duties, "Dati propri", &LegalDuty::title), 0);
}

TEST_F(LegalDuties, WithoutAnyContentTheMerchantHasToTellWhetherOneIsNeeded) {
  const LegalDuty unit = duty("Prezzo per unità");
  EXPECT_EQ(unit.state, DutyState::Check);
  EXPECT_EQ(unit.target.subject, DutySubject::Article);
  EXPECT_EQ(unit.target.article, 1);
}

TEST_F(LegalDuties, AContentWithoutItsUnitIsMissingAndLeadsToTheArticle) {
  set(SideField::Content, "2", Value(Money::ofUnits(1)));
  EXPECT_EQ(duty("Prezzo per unità").state, DutyState::Missing);
  EXPECT_EQ(duty("Prezzo per unità").text, "Un articolo con il contenuto o l'unità, ma non entrambi.");
  EXPECT_EQ(duty("Prezzo per unità").target.article, 2);
  set(SideField::Measure, "2", Value("kg"));
  EXPECT_EQ(duty("Prezzo per unità").state, DutyState::Met);
  set(SideField::Content, "3", Value(Money::ofUnits(1)));
  EXPECT_EQ(duty("Prezzo per unità").state, DutyState::Met) << "not on sale";
}

TEST_F(LegalDuties, TheLowestPriceIsKnownOnceAPublishingWasNoted) {
  EXPECT_EQ(duty("Prezzo più basso dei 30 giorni").state, DutyState::Check);
  ASSERT_TRUE(writeBytes(priceHistoryPath(session.ShopFolder), ""));
  EXPECT_EQ(duty("Prezzo più basso dei 30 giorni").state, DutyState::Met);
}

TEST_F(LegalDuties, EachArticleOnSaleNeedsAMakerWithAddressAndContact) {
  EXPECT_EQ(duty("Sicurezza dei prodotti").target.command, "makers");
  maker("nome", "'Forno'");
  EXPECT_EQ(duty("Sicurezza dei prodotti").text, "Di Forno manca l'indirizzo o il contatto elettronico.");
  sql("UPDATE produttori SET indirizzo = 'Via Po 1', contatto = 'a@b.it'");
  set(SideField::Maker, "1", Value("Forno"));
  EXPECT_EQ(duty("Sicurezza dei prodotti").text, "Un articolo senza produttore, neppure nel reparto.");
  EXPECT_EQ(duty("Sicurezza dei prodotti").target.article, 2);
  EXPECT_EQ(duty("Sicurezza dei prodotti").target.column, "produttore");
  set(SideField::Maker, "cat001", Value("Forno"));
  EXPECT_EQ(duty("Sicurezza dei prodotti").state, DutyState::Met);
}

TEST_F(LegalDuties, TheMakerOfADepartmentAboveCounts) {
  maker("nome, indirizzo, contatto", "'Forno', 'Via Po 1', 'a@b.it'");
  const std::string parent = field("SELECT ID FROM categorie WHERE hafigli = 1 ORDER BY ID LIMIT 1");
  const std::string child = field("SELECT ID FROM categorie WHERE genitore = '" + parent + "' LIMIT 1");
  sql("UPDATE articoli SET catID = '" + child + "'");
  EXPECT_EQ(duty("Sicurezza dei prodotti").state, DutyState::Missing);
  set(SideField::Maker, parent, Value("Forno"));
  EXPECT_EQ(duty("Sicurezza dei prodotti").state, DutyState::Met);
}

TEST_F(LegalDuties, TheMakerOfADepartmentWithoutParentCounts) {
  maker("nome, indirizzo, contatto", "'Forno', 'Via Po 1', 'a@b.it'");
  const std::string top = field("SELECT ID FROM categorie WHERE genitore = '###' ORDER BY ID LIMIT 1");
  sql("UPDATE articoli SET catID = '" + top + "'; UPDATE categorie SET genitore = NULL WHERE ID = '" + top + "'");
  EXPECT_EQ(duty("Sicurezza dei prodotti").state, DutyState::Missing);
  set(SideField::Maker, top, Value("Forno"));
  EXPECT_EQ(duty("Sicurezza dei prodotti").state, DutyState::Met);
}

TEST_F(LegalDuties, TheShippedSiteHasTheButtonOfTheOrderAndTheFunctionOfWithdrawal) {
  session.templatePath = "template/chiaro";
  EXPECT_EQ(duty("Pulsante dell'ordine").state, DutyState::Met);
  EXPECT_EQ(duty("Funzione di recesso").state, DutyState::Met) << duty("Funzione di recesso").text;
  session.templatePath = "template/classico";
  EXPECT_EQ(duty("Pulsante dell'ordine").state, DutyState::Met);
  EXPECT_EQ(duty("Funzione di recesso").state, DutyState::Met);
  session.templatePath = "template/altro";
  EXPECT_EQ(duty("Pulsante dell'ordine").target.command, "template");
  EXPECT_EQ(duty("Funzione di recesso").state, DutyState::Missing);
}

TEST_F(LegalDuties, AButtonThatSaysNothingOfPayingIsToBeChecked) {
  const std::string application = root / "app";
  ASSERT_TRUE(createFolders(application + "/languages"));
  ASSERT_TRUE(createFolders(application + "/template/mio"));
  session.templatePath = "template/mio";
  ASSERT_TRUE(writeText(application + "/template/mio/order.htm", "<<4-invia_ordine>>"));
  ASSERT_TRUE(writeText(application + "/languages/italiano.lng", "<<4-invia_ordine>>\r\nPaga adesso\r\n"));
  ASSERT_TRUE(writeText(application + "/languages/inglese.lng", "<<4-invia_ordine>>\r\nSend\r\n"));
  const auto duties = legalDuties(session, application).value();
  const auto button = std::ranges::find(duties, "Pulsante dell'ordine", &LegalDuty::title);
  ASSERT_NE(button, duties.end());
  EXPECT_EQ(button->state, DutyState::Check);
  EXPECT_EQ(button->text, "In inglese il pulsante dice \"Send\": deve dire che ordinare obbliga a pagare.");
  EXPECT_EQ(button->target.command, "languages");
}

TEST_F(LegalDuties, TheSummaryCountsWhatIsMissingAndWhatIsToBeChecked) {
  const auto of = [](std::vector<DutyState> states) {
    std::vector<LegalDuty> duties;
    for (const DutyState state : states) duties.push_back({"", state, "", {}});
    return legalSummary(duties);
  };
  using enum DutyState;
  EXPECT_EQ(of({Met, Met}), "Nessun requisito manca.");
  EXPECT_EQ(of({Met, Missing}), "1 requisito manca.");
  EXPECT_EQ(of({Check, Missing, Missing}), "2 requisiti mancano, 1 è da verificare.");
  EXPECT_EQ(of({Check, Check}), "2 sono da verificare.");
}

}  // namespace
}  // namespace kv::test
