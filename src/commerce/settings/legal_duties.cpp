#include "commerce/settings/legal_duties.h"

#include <algorithm>
#include <optional>

#include "commerce/prices/price_history.h"
#include "commerce/settings/legal_model.h"
#include "commerce/settings/legal_site.h"
#include "platform/files/files.h"
#include "platform/text/text.h"
#include "store/catalogue/side_fields.h"

namespace kv {
namespace {

constexpr std::string_view onSale = "COALESCE(a.fuoricatalogo, 0) = 0";

/// A text of the shop that each language needs.
struct LegalText {
  std::string_view title, column, met, missing;
};
constexpr LegalText legalTexts[] = {
    {"Condizioni di vendita", "condizioni", "Il testo c'è in ogni lingua.", "Scrivere le condizioni di vendita"},
    {"Diritto di recesso", "recesso", "Il testo c'è in ogni lingua.",
     "Scrivere come e fino a quando si può recedere, e chi paga la restituzione"},
    {"Trattamento dei dati personali", "datipers", "Il testo c'è in ogni lingua.",
     "Scrivere quali dati si raccolgono, perché e per quanto tempo"}};

DutyTarget setting(std::string_view column, int language = 1) {
  return {DutySubject::Settings, std::string(column), 0, language, {}};
}
DutyTarget articleField(std::int64_t ID, std::string_view column) {
  return {DutySubject::Article, std::string(column), ID, 1, {}};
}
DutyTarget makersDialog() { return {DutySubject::Command, {}, 0, 1, "makers"}; }

/// How many rows a condition of articles `a` finds on sale, and the first of them.
struct FoundArticles {
  std::int64_t count = 0;
  std::int64_t first = 0;
};
Result<FoundArticles> articlesWith(Database& catalogue, const std::string& joins, const std::string& condition) {
  auto row = catalogue.prepare("SELECT COUNT(*), MIN(a.ID) FROM articoli a " + joins + " WHERE " + std::string(onSale) +
                               " AND " + condition);
  if (!row) return fail(row.error());
  const auto found = row->step();
  if (!found) return fail(found.error());
  return FoundArticles{row->integer(0), row->integer(1)};
}

std::string articlesText(std::int64_t count) {
  return count == 1 ? "Un articolo" : std::to_string(count) + " articoli";
}

class DutyReader {
 public:
  explicit DutyReader(Session& session) : session_(session), catalogue_(session.catalogue) {}

  Result<std::vector<LegalDuty>> read() {
    using Step = Result<> (DutyReader::*)();
    for (const Step step : {&DutyReader::identity, &DutyReader::texts, &DutyReader::mail, &DutyReader::vat,
                            &DutyReader::units, &DutyReader::reductions, &DutyReader::makers}) {
      if (auto done = (this->*step)(); !done) return fail(done.error());
    }
    return std::move(duties_);
  }

 private:
  void add(std::string_view title, DutyState state, std::string text, DutyTarget target) {
    duties_.push_back({std::string(title), state, std::move(text), std::move(target)});
  }
  Result<std::string> text(const std::string& column, std::string_view table = "generale") {
    auto value = catalogue_.scalar("SELECT \"" + column + "\" FROM " + std::string(table));
    if (!value) return fail(value.error());
    return std::string(trim(asText(*value)));
  }

  Result<> identity();
  Result<> texts();
  Result<> mail();
  Result<> vat();
  Result<> units();
  Result<> reductions();
  Result<> makers();

  Session& session_;
  Database& catalogue_;
  std::vector<LegalDuty> duties_;
};

/// Whether a VAT number is one: zeros alone, as in the terms of the model shop, are nobody's.
bool isVatNumber(std::string_view number) { return number.find_first_of("123456789") != std::string_view::npos; }

/// Directive 2000/31/EC, article 5: who sells is named on the site.
Result<> DutyReader::identity() {
  constexpr std::string_view title = "Chi vende";
  auto name = text("titolo");
  if (!name) return fail(name.error());
  const bool kept = hasSideTable(catalogue_, "identita");
  auto number = kept ? text("legale_piva", "identita") : Result<std::string>(std::string());
  if (!number) return fail(number.error());
  auto seat = kept ? text("legale_sede", "identita") : Result<std::string>(std::string());
  if (!seat) return fail(seat.error());
  if (name->empty()) {
    add(title, DutyState::Missing, "Scrivere il nome del negozio.", setting("titolo"));
  } else if (seat->empty()) {
    add(title, DutyState::Missing, "Indicare ragione sociale e sede.", setting("legale_sede"));
  } else if (!isVatNumber(*number)) {
    add(title, DutyState::Missing, "Indicare la partita IVA.", setting("legale_piva"));
  } else {
    add(title, DutyState::Met, "Nome, sede e partita IVA compaiono in ogni pagina.", setting("legale_sede"));
  }
  return {};
}

/// Directive 2011/83/EU, article 6; Regulation (EU) 2016/679, article 13.
Result<> DutyReader::texts() {
  for (const LegalText& row : legalTexts) {
    int missing = 0;
    for (int language = 1; language <= session_.languageCount && missing == 0; ++language) {
      const std::string_view suffix = languageSuffixes[static_cast<std::size_t>(language - 1)];
      auto found = text(std::string(row.column) + std::string(suffix));
      if (!found) return fail(found.error());
      if (found->empty()) missing = language;
    }
    std::string what(missing == 0 ? row.met : row.missing);
    if (missing > 0) what += missing == 1 ? "." : " nella lingua " + std::to_string(missing) + ".";
    add(row.title, missing == 0 ? DutyState::Met : DutyState::Missing, std::move(what),
        setting(row.column, std::max(missing, 1)));
  }
  return {};
}

/// Directive 2000/31/EC, article 5, paragraph 1, point (c).
Result<> DutyReader::mail() {
  auto address = text("email");
  if (!address) return fail(address.error());
  const bool met = address->find('@') != std::string::npos;
  add("Indirizzo e-mail", met ? DutyState::Met : DutyState::Missing,
      met ? "I clienti possono scrivere al negozio." : "Indicare l'indirizzo a cui i clienti possono scrivere.",
      setting("email"));
  return {};
}

/// Directive 98/6/EC, article 2: the selling price is the final price, with VAT.
Result<> DutyReader::vat() {
  auto included = catalogue_.scalar("SELECT ivacompresa FROM generale");
  if (!included) return fail(included.error());
  const bool met = asFlag(*included);
  add("Prezzi IVA compresa", met ? DutyState::Met : DutyState::Missing,
      met ? "I prezzi comprendono l'IVA." : "Ai consumatori i prezzi si mostrano IVA compresa.",
      setting("ivacompresa"));
  return {};
}

/// Directive 98/6/EC, article 3.
Result<> DutyReader::units() {
  constexpr std::string_view title = "Prezzo per unità";
  FoundArticles half, whole;
  if (hasSideTable(catalogue_, "unita")) {
    const std::string joined = "INNER JOIN unita u ON u.ID = a.ID";
    auto incomplete = articlesWith(catalogue_, joined, "(u.contenuto IS NULL OR COALESCE(u.misura, '') = '')");
    if (!incomplete) return fail(incomplete.error());
    auto complete = articlesWith(catalogue_, joined, "u.contenuto > 0 AND u.misura <> ''");
    if (!complete) return fail(complete.error());
    half = *incomplete;
    whole = *complete;
  }
  auto all = articlesWith(catalogue_, "", "1");
  if (!all) return fail(all.error());
  if (half.count > 0) {
    add(title, DutyState::Missing, articlesText(half.count) + " con il contenuto o l'unità, ma non entrambi.",
        articleField(half.first, "contenuto"));
  } else if (whole.count == 0 && all->count > 0) {
    add(title, DutyState::Check,
        "Nessun articolo ha un contenuto: serve per ciò che si vende a peso, volume o lunghezza, anche confezionato.",
        articleField(all->first, "contenuto"));
  } else {
    add(title, DutyState::Met, articlesText(whole.count) + " con il prezzo per unità.", {});
  }
  return {};
}

/// Directive 98/6/EC, article 6a.
Result<> DutyReader::reductions() {
  constexpr std::string_view title = "Prezzo più basso dei 30 giorni";
  const bool noted = fileExists(priceHistoryPath(session_.ShopFolder));
  add(title, noted ? DutyState::Met : DutyState::Check,
      noted
          ? "I prezzi pubblicati sono annotati: accanto a una riduzione compare il più basso dei 30 giorni precedenti."
          : "I prezzi saranno annotati dalla prossima pubblicazione: iniziare offerte e sconti soltanto dopo.",
      {DutySubject::Nothing, {}, 0, 1, {}});
  return {};
}

/// Regulation (EU) 2023/988, article 19.
Result<> DutyReader::makers() {
  constexpr std::string_view title = "Sicurezza dei prodotti";
  if (!hasSideTable(catalogue_, "produttori") || makerNames(catalogue_).empty()) {
    add(title, DutyState::Missing, "Inserire i produttori e sceglierli nei reparti o negli articoli.", makersDialog());
    return {};
  }
  auto bare = catalogue_.scalar(
      "SELECT nome FROM produttori WHERE COALESCE(indirizzo, '') = '' OR COALESCE(contatto, '') = '' ORDER BY nome");
  if (!bare) return fail(bare.error());
  if (!isNull(*bare)) {
    add(title, DutyState::Missing, "Di " + asText(*bare) + " manca l'indirizzo o il contatto elettronico.",
        makersDialog());
    return {};
  }
  auto without = articlesWith(
      catalogue_, "",
      "NOT EXISTS (SELECT 1 FROM sicurezza s WHERE s.chiave = CAST(a.ID AS TEXT)) AND NOT EXISTS ("
      "WITH RECURSIVE sopra (ID, genitore, livelli) AS (SELECT ID, genitore, 0 FROM categorie WHERE ID = a.catID"
      " UNION ALL SELECT c.ID, c.genitore, livelli + 1 FROM categorie c INNER JOIN sopra ON c.ID = sopra.genitore"
      " WHERE livelli < 100) SELECT 1 FROM sopra INNER JOIN sicurezza s ON s.chiave = sopra.ID)");
  if (!without) return fail(without.error());
  if (without->count > 0) {
    add(title, DutyState::Missing, articlesText(without->count) + " senza produttore, neppure nel reparto.",
        articleField(without->first, "produttore"));
  } else {
    add(title, DutyState::Met, "Ogni articolo mostra il suo produttore.", makersDialog());
  }
  return {};
}

std::string counted(std::int64_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

}  // namespace

std::string_view dutyStateName(DutyState state) {
  if (state == DutyState::Met) return "A posto";
  return state == DutyState::Missing ? "Manca" : "Da verificare";
}

Result<std::vector<LegalDuty>> legalDuties(Session& session, const std::string& applicationFolder) {
  auto duties = DutyReader(session).read();
  if (!duties) return duties;
  auto ownData = ownDataDuty(session, applicationFolder);
  if (!ownData) return fail(ownData.error());
  // After "Chi vende", which it belongs to.
  if (*ownData) duties->insert(duties->begin() + 1, std::move(**ownData));
  auto ofSite = siteDuties(session, applicationFolder);
  if (!ofSite) return fail(ofSite.error());
  std::ranges::move(*ofSite, std::back_inserter(*duties));
  return duties;
}

std::string legalSummary(const std::vector<LegalDuty>& duties) {
  const auto missing = std::ranges::count(duties, DutyState::Missing, &LegalDuty::state);
  const auto open = std::ranges::count(duties, DutyState::Check, &LegalDuty::state);
  if (missing + open == 0) return "Nessun requisito manca.";
  std::string text;
  if (missing > 0) text = counted(missing, "requisito manca", "requisiti mancano");
  if (open > 0) text += (text.empty() ? "" : ", ") + counted(open, "è da verificare", "sono da verificare");
  return text + ".";
}

}  // namespace kv
